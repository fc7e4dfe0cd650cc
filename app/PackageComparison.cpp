#include "app/PackageComparison.h"

#include <map>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/PortablePath.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/EntryComparison.h"
#include "package/PackageReader.h"

namespace NSTambraPacking {

namespace {

using CEntries = std::vector<std::shared_ptr<CPackageEntry>>;
using CEntriesByPath = std::map<std::u16string, std::shared_ptr<CPackageEntry>>;

CEntriesByPath ByPath(const CEntries& entries) {
  CEntriesByPath map;
  for (const auto& entry : entries) {
    if (map.emplace(entry->Path(), entry).second) continue;
    throw NSMordel::XFormatViolation("the package holds two entries with one name: \"" +
                                     NSTolbrook::EscapedText(entry->Path()) + "\"");
  }
  return map;
}

/// Counts what it hands on.
class CReport {
 public:
  explicit CReport(const std::function<void(const CChange&)>& report) : fReport(report) {}
  void Add(const CChange& change) {
    ++fCount;
    fReport(change);
  }
  std::size_t Count() const { return fCount; }

 private:
  const std::function<void(const CChange&)>& fReport;
  std::size_t fCount = 0;
};

void CompareHeaderTexts(const CPackageHeader& before, const CPackageHeader& after,
                        CReport& report) {
  const auto compare = [&report](const char16_t* name, const std::u16string& old,
                                 const std::u16string& young) {
    if (old == young) return;
    report.Add({CChange::EKind::kHeader, name, {{EDifference::kContent, old, young}}});
  };
  compare(u"name", before.fTambraName, after.fTambraName);
  compare(u"version", NSTolbrook::TextFromUtf8(before.fVersion.Text()),
          NSTolbrook::TextFromUtf8(after.fVersion.Text()));
  compare(u"url", before.fURL, after.fURL);
  compare(u"copyright", before.fCopyright, after.fCopyright);
  compare(u"comment", before.fComment, after.fComment);
}

}  // namespace

std::size_t ComparePackages(const NSBigFilePackage::SharedMedia& before,
                            const NSBigFilePackage::SharedMedia& after,
                            const std::function<void(const CChange&)>& report,
                            const std::function<void()>& checkStop) {
  const CPackageReader oldReader(before);
  const CPackageReader youngReader(after);
  const CEntries oldEntries = oldReader.ReadEntries();
  const CEntries youngEntries = youngReader.ReadEntries();
  const CEntriesByPath oldByPath = ByPath(oldEntries);
  const CEntriesByPath youngByPath = ByPath(youngEntries);
  CReport changes(report);
  CompareHeaderTexts(oldReader.Header(), youngReader.Header(), changes);
  for (const auto& old : oldEntries) {
    const auto young = youngByPath.find(old->Path());
    if (young == youngByPath.end()) {
      changes.Add({CChange::EKind::kRemoved, old->Path(), {}});
      continue;
    }
    std::vector<CDifference> differences = CompareEntries(*old, *young->second, checkStop);
    if (differences.empty()) continue;
    changes.Add({CChange::EKind::kChanged, old->Path(), std::move(differences)});
  }
  for (const auto& young : youngEntries) {
    if (oldByPath.contains(young->Path())) continue;
    changes.Add({CChange::EKind::kAdded, young->Path(), {}});
  }
  return changes.Count();
}

}  // namespace NSTambraPacking
