#include "app/FolderAdvice.h"

#include <set>
#include <unordered_map>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/PortablePath.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/FileTypeNames.h"
#include "filetypes/FileTypeRegistry.h"
#include "package/PackageFormat.h"

namespace NSTambraPacking {

namespace {

bool IsStray(const CJobEntry& entry) {
  if (entry.fLeftOut == ELeftOut::kUnsupported) return true;
  return entry.TakesPart() && entry.fFailed && entry.fFile.fFault.empty() &&
         CFileTypeRegistry::Instance().FindVerifier(entry.fFile.fItem) == nullptr;
}

/// The first spelling of each path, of folders and files.
class CSpellings {
 public:
  /// The path as far as it is spelled in another way than before; each spelling is told once.
  std::pair<std::u16string, std::u16string> FirstClash(const std::u16string& path) {
    for (std::size_t end = path.find(u'/'); end != std::u16string::npos;
         end = path.find(u'/', end + 1)) {
      const std::u16string folder = path.substr(0, end);
      if (!fFolders.insert(folder).second) continue;
      const std::u16string& first = FirstSpelling(folder);
      if (first != folder) return {folder, first};
    }
    const std::u16string& first = FirstSpelling(path);
    return first == path ? std::pair<std::u16string, std::u16string>() : std::pair{path, first};
  }

 private:
  const std::u16string& FirstSpelling(const std::u16string& path) {
    return fFirsts.try_emplace(NSTolbrook::ComparisonKey(path), path).first->second;
  }

  std::set<std::u16string> fFolders;  ///< seen before
  std::unordered_map<std::u16string, std::u16string> fFirsts;
};

/// The path up to its first component that not every system takes; empty when all do.
std::u16string UnportablePart(const std::u16string& path) {
  for (std::size_t end = path.find(u'/');; end = path.find(u'/', end + 1)) {
    std::u16string part = path.substr(0, end);
    if (!NSTolbrook::FaultOfPortablePath(part).empty()) return part;
    if (end == std::u16string::npos) return {};
  }
}

/// Under a name that no file can have, as far as that goes: the check tells of it.
std::u16string PackageName(const CPackageInformation& information) {
  try {
    return information.OutputFileName();
  } catch (const NSMordel::XFormatViolation&) {
    return information.fName;
  }
}

}  // namespace

void AdviseOnStrayFiles(const CPackJobState& state, CAdviceList& advice) {
  for (const CJobEntry& entry : state.fEntries) {
    if (IsStray(entry)) advice.Add(EAdvice::kStrayFile, entry.fFile.fPath);
  }
}

void AdviseOnReferencesFoundBySearch(const CPackJobState& state, CAdviceList& advice) {
  for (const CJobEntry& entry : state.fEntries) {
    if (!entry.TakesPart()) continue;
    std::set<std::u16string> told;
    for (const CResolvedReference& reference : entry.fReferences) {
      if (!reference.fResolution.fBySearch || !told.insert(reference.fPrinted).second) continue;
      advice.Add(EAdvice::kSearchedReference, entry.fFile.fPath,
                 {{"reference", reference.fPrinted}, {"found", reference.fResolution.fPath}});
    }
  }
}

void AdviseOnCase(const CPackJobState& state, CAdviceList& advice) {
  CSpellings spellings;
  for (const CJobEntry& entry : state.fEntries) {
    if (!entry.TakesPart()) continue;
    const auto [path, first] = spellings.FirstClash(entry.fFile.fPath);
    if (!path.empty()) advice.Add(EAdvice::kCaseClash, path, {{"first", first}});
  }
}

void AdviseOnNames(const CPackJobState& state, CAdviceList& advice) {
  std::set<std::u16string> told;
  for (const CJobEntry& entry : state.fEntries) {
    if (!entry.TakesPart() || !entry.fFile.fFault.empty()) continue;
    const std::u16string path = UnportablePart(entry.fFile.fPath);
    if (path.empty() || !told.insert(path).second) continue;
    const std::string fault = NSTolbrook::FaultOfPortablePath(path);
    advice.Add(EAdvice::kUnportableName, path, {{"fault", NSTolbrook::TextFromUtf8(fault)}});
  }
}

void AdviseOnSize(const CPackJobState& state, std::uint64_t sampleBytes, CAdviceList& advice) {
  std::uint64_t size = sampleBytes;
  for (const CJobEntry& entry : state.fEntries) {
    const bool isSample = entry.fEntry->TypeCode() == kSampleEntryType;
    if (entry.TakesPart() && !isSample) size += entry.fSize;
  }
  if (size <= kPackageLimit / 10 * 9) return;
  advice.Add(EAdvice::kSizeLimit, PackageName(state.fInformation),
             {{"megabytes", size / 1'000'000}, {"limit_megabytes", kPackageLimit / 1'000'000}});
}

}  // namespace NSTambraPacking
