// Reads a package as a window does that shows all of it: shown_package FILE. Ends with 0, or with 4
// when the file is refused; standard error then has the words.

#include <cstdio>
#include <exception>
#include <fmt/format.h>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/EntryDetails.h"
#include "app/PrintableText.h"
#include "app/WaveformSummary.h"

namespace {

using namespace NSTambraPacking;

struct CCounts {
  std::size_t fEntries = 0, fLines = 0, fFaults = 0, fExtents = 0;
};

void Draw(const CPackageEntry& sample, CCounts& counts) {
  try {
    CWaveformSummary summary(sample.Data());
    while (!summary.IsAtEnd()) counts.fExtents += summary.DecodeNext().size();
  } catch (const NSMordel::XFormatViolation&) {
    ++counts.fFaults;
  }
}

CCounts Show(const NSTolbrook::NativePath& path) {
  CCounts counts;
  const CTextResources texts;
  const CPackageContents package(path);
  counts.fLines += DescribePackage(texts, package).fLines.size();
  for (const auto& entry : package.EntriesBelow({CEntryTree::kRoot})) {
    const CEntryDetails details = DescribeEntry(texts, package, *entry, [] { return false; });
    ++counts.fEntries;
    counts.fLines += details.fLines.size() + details.fItems.size();
    counts.fFaults += details.fFault.empty() ? 0 : 1;
    if (details.fSample) Draw(*entry, counts);
  }
  return counts;
}

}  // namespace

int main(int argc, char** argv) {
  constexpr int kRefused = 4;
  if (argc != 2) return 2;
  try {
    const CCounts counts = Show(argv[1]);
    fmt::print("{} entries, {} lines, {} faults, {} extents\n", counts.fEntries, counts.fLines,
               counts.fFaults, counts.fExtents);
    return 0;
  } catch (const std::exception& e) {
    fmt::print(stderr, "{}\n",
               NSTolbrook::Utf8FromText(PrintableText(NSTolbrook::TextFromUtf8(e.what()))));
    return kRefused;
  }
}
