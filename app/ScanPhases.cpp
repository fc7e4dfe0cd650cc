#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/PackPhases.h"
#include "app/SpecialNames.h"
#include "app/VersionText.h"
#include "codecs/JpegReader.h"
#include "filetypes/FileTypeRegistry.h"
#include "package/MemoryMedia.h"
#include "package/PackageIndex.h"
#include "package/SplashCheck.h"

namespace NSTambraPacking {

namespace {

CJobEntry MakeEntry(CScannedFile file) {
  const CFileTypeRegistry& registry = CFileTypeRegistry::Instance();
  CJobEntry entry;
  entry.fPacker = file.fIsInformation ? nullptr : registry.FindPacker(file.fItem);
  const std::int32_t typeCode = entry.fPacker == nullptr ? 0 : entry.fPacker->EntryTypeCode();
  const std::uint8_t flag = registry.HasReferences(typeCode) ? std::uint8_t{0} : kEntryTakenAsItIs;
  entry.fEntry = MakePackageEntry(file.fPath, typeCode, flag, nullptr);
  if (file.fSkipped) entry.fLeftOut = ELeftOut::kSkipItem;
  entry.fFile = std::move(file);
  return entry;
}

/// The information file as it was first read, for the composer to take its text from.
NSBigFilePackage::SharedMedia FirstReading(const CPackJobState& state, const std::u16string& path) {
  for (const CInformationFile& file : state.fInformationFiles) {
    if (file.fName != path) continue;
    return std::make_shared<NSBigFilePackage::CMemoryMedia>(
        std::vector<std::uint8_t>(file.fBytes.begin(), file.fBytes.end()));
  }
  return nullptr;
}

bool IsUsableSplash(const CJobEntry& entry) {
  return entry.TakesPart() && entry.fFile.fFault.empty() && IsSplash(entry.fFile.fPath);
}

/// What the scan asks and tells.
CScanRules ScanRules(const CPackJobState& state, const CPhaseReport& report) {
  CScanRules rules{
      [&state](const std::u16string& path) { return state.fOptions.fSkipItems.Hold(path); },
      [&report](std::size_t) { report.CheckStop(); }};
  if (const auto& take = state.fSettings.fFolderFault) {
    rules.fBadShortcut = [&take](const std::u16string& path) {
      take(std::make_exception_ptr(
          NSMordel::XResolve("the shortcut leads nowhere or cannot be read",
                             {{NSMordel::kTargetObjectType, "file"},
                              {NSMordel::kTargetObjectId, NSTolbrook::Utf8FromText(path)}})));
    };
  }
  return rules;
}

}  // namespace

void PassFolderFault(const CPackSettings& settings, const std::function<void()>& work) {
  try {
    work();
  } catch (const NSMordel::XSilentAbort&) {
    throw;
  } catch (const NSMordel::CExceptionBodyMixin&) {
    if (!settings.fFolderFault) throw;
    settings.fFolderFault(std::current_exception());
  }
}

void ScanInputFolder(const CPhaseContext& context) {
  CPackJobState& state = context.fState;
  const CPhaseReport report = context.Report(0);
  report.CheckStop();
  report.Begin(0);
  CScannedFolder scanned =
      ScanFolder(state.fSettings.fInputFolder.Path(), ScanRules(state, report));
  state.fShortcuts = std::move(scanned.fShortcuts);
  for (CScannedFile& file : scanned.fFiles) {
    state.fEntries.push_back(MakeEntry(std::move(file)));
    report.Item(state.fEntries.size() - 1, *state.fEntries.back().fEntry);
  }
  report.End();
}

void TakePackageInformation(const CPhaseContext& context) {
  CPackJobState& state = context.fState;
  const CPhaseReport report = context.Report(1);
  report.CheckStop();
  report.Begin(state.fEntries.size());
  bool splashFound = false;
  for (std::size_t index = 0; index < state.fEntries.size(); ++index) {
    const CJobEntry& entry = state.fEntries[index];
    report.Item(index, *entry.fEntry);
    if (entry.fFile.fIsInformation) {
      entry.fEntry->SetData(FirstReading(state, entry.fFile.fPath));
    } else if (!splashFound && IsUsableSplash(entry)) {
      PassFolderFault(state.fSettings, [&entry] {
        CheckSplashSize(entry.fFile.fPath, entry.fEntry->TypeCode(), OpenSource(entry.fFile.fItem),
                        CJpegReader());
      });
      splashFound = true;
    }
  }
  PassFolderFault(state.fSettings, [&state] {
    if (!state.fInformation.fName.empty()) return;
    throw NSMordel::XNotFound("tambra name not found", {{kTambraNameKey, ""}});
  });
  PassFolderFault(state.fSettings, [splashFound] {
    if (!splashFound) throw NSMordel::XNotFound("splash file not found", {{kSplashKey, ""}});
  });
  PassFolderFault(state.fSettings, [&state] { ParseVersionText(state.fInformation.fVersion); });
  report.End();
}

void BuildFolderStructure(const CPhaseContext& context) {
  CPackJobState& state = context.fState;
  const CPhaseReport report = context.Report(2);
  report.CheckStop();
  report.Begin(state.fEntries.size());
  for (std::size_t index = 0; index < state.fEntries.size(); ++index) {
    const CJobEntry& entry = state.fEntries[index];
    report.Item(index, *entry.fEntry);
    if (entry.fFile.fIsInformation || !entry.fFile.fFault.empty()) continue;
    state.fTree.AddFile(entry.fFile.fPath, entry.fEntry->IsContainer());
    state.fEntryOfPath.emplace(entry.fFile.fPath, index);
  }
  for (const CScannedShortcut& shortcut : state.fShortcuts) {
    state.fTree.AddShortcut(shortcut.fPath, shortcut.fTarget);
  }
  report.End();
}

}  // namespace NSTambraPacking
