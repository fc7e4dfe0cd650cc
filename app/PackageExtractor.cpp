#include "app/PackageExtractor.h"

#include <algorithm>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/PortablePath.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/FileTypeNames.h"
#include "app/NamePattern.h"
#include "filetypes/dwop/SourceRebuilder.h"
#include "package/EntryPath.h"
#include "package/TemporaryFile.h"

namespace NSTambraPacking {

namespace {

constexpr std::size_t kCopyPiece = 65536;

/// Looks at the names before the folder is made; clears away what a killed run left in it.
NSTolbrook::NativePath Prepare(const CPackageEntries& entries,
                               const NSTolbrook::NativePath& folder) {
  std::vector<std::u16string> paths;
  for (const auto& entry : entries) paths.push_back(entry->Path());
  NSTolbrook::CheckPortablePaths(paths);
  NSTolbrook::MakeFolders(folder);
  NSBigFilePackage::CTemporaryFile::RemoveLeftovers(folder);
  return folder;
}

void Copy(const NSBigFilePackage::IMedia& source, NSBigFilePackage::IMedia& output,
          const std::function<void()>& checkStop) {
  std::vector<std::uint8_t> buffer(kCopyPiece);
  for (std::uint64_t position = 0; position < source.Size();) {
    if (checkStop) checkStop();
    const auto count =
        static_cast<std::size_t>(std::min<std::uint64_t>(source.Size() - position, kCopyPiece));
    const std::span<std::uint8_t> piece = std::span(buffer).first(count);
    NSBigFilePackage::ReadExactly(source, position, piece);
    output.Write(position, piece);
    position += count;
  }
}

}  // namespace

CPackageEntries SelectEntries(const CPackageEntries& entries,
                              const std::vector<std::u16string>& names) {
  if (names.empty()) return entries;
  std::vector<bool> isWanted(entries.size());
  for (const std::u16string& name : names) {
    bool isFound = false;
    for (std::size_t i = 0; i < entries.size(); ++i) {
      if (!MatchesPattern(entries[i]->Path(), name)) continue;
      isWanted[i] = isFound = true;
    }
    if (isFound) continue;
    throw NSMordel::XNotFound("no entry of the package has this name",
                              {{NSMordel::kTargetObjectType, "file"},
                               {NSMordel::kTargetObjectId, NSTolbrook::Utf8FromText(name)}});
  }
  CPackageEntries selected;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (isWanted[i]) selected.push_back(entries[i]);
  }
  return selected;
}

CPackageExtractor::CPackageExtractor(CPackageEntries entries, const NSTolbrook::NativePath& folder,
                                     EExisting existing)
    : fEntries(std::move(entries)), fFolder(Prepare(fEntries, folder)), fExisting(existing) {
  for (const auto& entry : fEntries) fFolder.CheckFree(SplitEntryPath(entry->Path()), fExisting);
}

void CPackageExtractor::Extract(const CObserver& observer) const {
  for (std::size_t index = 0; index < fEntries.size(); ++index) {
    const CPackageEntry& entry = *fEntries[index];
    if (observer.fCheckStop) observer.fCheckStop();
    if (observer.fBegun) observer.fBegun(index, entry);
    const CExtractedEntry outcome = ExtractEntry(entry, observer.fCheckStop);
    if (observer.fDone) observer.fDone(entry, outcome);
  }
}

CExtractedEntry CPackageExtractor::ExtractEntry(const CPackageEntry& entry,
                                                const std::function<void()>& checkStop) const {
  using EKind = CExtractedEntry::EKind;
  const auto file = fFolder.NewFile();
  CExtractedEntry outcome;
  if (entry.TypeCode() == kSampleEntryType) {
    try {
      const CRebuildReport report = RebuildSource(entry.Data(), *file, checkStop);
      if (!report.fByteForByte) outcome = {EKind::kDifferent, report.fReason};
    } catch (const NSMordel::XFormatViolation& e) {
      return {EKind::kDamaged, e.Message()};
    } catch (const NSMordel::XVersionTooNew& e) {
      return {EKind::kDamaged, e.Message()};
    } catch (const NSMordel::XVersionTooOld& e) {
      return {EKind::kDamaged, e.Message()};
    }
  } else {
    Copy(*entry.Data(), *file, checkStop);
  }
  file->CommitAs(SplitEntryPath(entry.Path()), fExisting);
  return outcome;
}

}  // namespace NSTambraPacking
