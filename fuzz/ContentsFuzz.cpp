#include "app/EntryDetails.h"
#include "app/WaveformSummary.h"
#include "fuzz/FuzzInput.h"
#include "tests/support/TemporaryFolder.h"

using namespace NSTambraPacking;

/// What a window shows of a package: each entry is described, or said to be at fault, and a
/// sample's waveform has all its stretches.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const CTextResources texts;
  static const NSTest::CTemporaryFolder folder;
  const auto path = folder.Write("package.tmb", NSFuzz::CFuzzInput(data, size).View());
  return NSFuzz::Try([&] {
    const CPackageContents package(path);
    DescribePackage(texts, package);
    for (const auto& entry : package.Entries()) {
      const auto details = DescribeEntry(texts, package, *entry, [] { return false; });
      if (!details.fSample) continue;
      NSFuzz::Try([&] {
        CWaveformSummary summary(entry->Data());
        std::size_t extents = 0;
        while (!summary.IsAtEnd()) extents += summary.DecodeNext().size();
        NSFuzz::Require(extents == summary.StretchCount() * summary.Header().fChannels);
      });
    }
  });
}
