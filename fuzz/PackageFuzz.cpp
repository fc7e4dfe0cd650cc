#include "filetypes/PackedEntryVerifier.h"
#include "fuzz/FuzzInput.h"
#include "package/PackageReader.h"
#include "package/PackageVerifier.h"

using namespace NSTambraPacking;

/// Every entry of a package that can be opened is told to be sound, broken or failed, once.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto media = NSFuzz::CFuzzInput(data, size).Media();
  return NSFuzz::Try([&] {
    const CPackageReader reader(media);
    const auto entries = reader.ReadEntries();
    NSFuzz::Require(entries.size() == reader.Header().fFileCount && entries.size() < size / 14);
    for (const auto& entry : entries) {
      NSFuzz::Require(!entry->Path().empty() && entry->Data()->Size() <= size);
    }
    CPackedEntryVerifier verifier(reader.Header().fTambraName, nullptr, [] { return false; });
    CVerificationOptions options;
    options.fExpectedHeader = &reader.Header();
    const auto result = CPackageVerifier(verifier, nullptr, nullptr).Verify(media, options);
    NSFuzz::Require(result.fVerifiedCount == entries.size());
    NSFuzz::Require(result.fFailed.size() + result.fBroken.size() <= entries.size());
  });
}
