#include "fuzz/FuzzInput.h"
#include "package/PackageHeader.h"
#include "package/PackageIndex.h"

using namespace NSTambraPacking;

namespace {

/// What can be read is the same when it was written and read again.
template <class Value, class Reader, class Writer>
bool ReadAgain(NSBigFilePackage::CMediaCursor& input, const Reader& read, const Writer& write) {
  const std::optional<Value> value = NSFuzz::Read([&] { return read(input); });
  if (!value) return false;
  NSBigFilePackage::CMemoryMedia media;
  NSBigFilePackage::CMediaCursor output(media);
  write(output, *value);
  NSBigFilePackage::CMediaCursor again(media);
  NSFuzz::Require(read(again) == *value && again.Remaining() == 0);
  return true;
}

}  // namespace

/// A version, a header and index entries, each read where the one before it ended, or at the start
/// where that was refused.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto media = NSFuzz::CFuzzInput(data, size).Media();
  NSBigFilePackage::CMediaCursor input(*media);
  const auto writeVersion = [](NSBigFilePackage::CMediaCursor& output, const auto& version) {
    NSTolbrook::WriteFormatVersion(output, version);
    NSFuzz::Require(output.Position() == NSTolbrook::FormatVersionLength(version));
  };
  ReadAgain<NSTolbrook::CFormatVersion>(input, NSTolbrook::ReadFormatVersion, writeVersion);
  input.SetPosition(0);
  if (!ReadAgain<CPackageHeader>(input, ReadPackageHeader, WritePackageHeader)) {
    input.SetPosition(0);
  }
  while (ReadAgain<CIndexEntry>(input, ReadIndexEntry, WriteIndexEntry)) continue;
  return 0;
}
