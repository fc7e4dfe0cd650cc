#include "app/PackageComparison.h"
#include "app/PackageExtractor.h"
#include "fuzz/FuzzInput.h"
#include "package/PackageReader.h"
#include "tests/support/TemporaryFolder.h"

using namespace NSTambraPacking;

namespace {

/// Extracts into a folder below `folder` and returns how many files that gave.
std::size_t Extract(const CPackageEntries& entries, const std::filesystem::path& folder) {
  std::size_t written = 0;
  const auto done = [&](const CPackageEntry&, const CExtractedEntry& outcome) {
    written += outcome.fKind != CExtractedEntry::EKind::kDamaged;
  };
  NSFuzz::Try([&] {
    CPackageExtractor(entries, folder / "out", CPackageExtractor::EExisting::kRefuse)
        .Extract({[](std::size_t, const CPackageEntry&) {}, done, [] {}});
  });
  return written;
}

}  // namespace

/// Whatever a package says: all files that are written, and no others, lie in the folder; and it
/// does not differ from itself.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto media = NSFuzz::CFuzzInput(data, size).Media();
  const auto entries = NSFuzz::Read([&] { return CPackageReader(media).ReadEntries(); });
  if (!entries) return 0;
  const NSTest::CTemporaryFolder folder;
  const std::size_t written = Extract(*entries, folder.Path());
  std::size_t found = 0;
  for (const auto& file : std::filesystem::recursive_directory_iterator(folder.Path())) {
    const bool isInside = *file.path().lexically_relative(folder.Path()).begin() == "out";
    NSFuzz::Require(isInside && !file.is_symlink());
    found += file.is_regular_file();
  }
  NSFuzz::Require(found == written);
  return NSFuzz::Try([&] {
    const auto changes = ComparePackages(
        media, media, [](const CChange&) {}, [] {});
    NSFuzz::Require(changes == 0);
  });
}
