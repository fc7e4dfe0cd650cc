#include "app/FolderLook.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <iterator>
#include <map>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/ExceptionAlerts.h"
#include "app/FolderScan.h"
#include "app/InputFolder.h"
#include "app/NameLists.h"
#include "app/ReferenceAdvice.h"
#include "app/TambraPacker.h"
#include "filetypes/FileTypeDescriptor.h"
#include "filetypes/FileTypeTable.h"

namespace NSTambraPacking {

namespace {

/// Goes on wherever a run would ask, and keeps what it would tell.
class CLookPresenter : public IAlertPresenter {
 public:
  int Show(CAlertNumber, const CAlertText& alert) override {
    if (alert.fButtons.size() == 1) fTold.push_back(alert.fMessage);
    return kLastButton;
  }
  std::vector<std::u16string> fTold;
};

/// Hands the wish to stop on to the check, which asks at each item.
class CLookView : public IProgressView {
 public:
  explicit CLookView(std::function<bool()> stopRequested)
      : fStopRequested(std::move(stopRequested)) {}
  void SetStageLine(const std::u16string&) override { Pass(); }
  void SetItemLine(const std::u16string&) override { Pass(); }
  void SetBar(int) override {}
  void SetTimeLine(const std::u16string&) override {}
  void SetInformation(const CPackageInformation&) override {}

  CTambraPackProgress* fProgress = nullptr;

 private:
  void Pass() const {
    if (fStopRequested()) fProgress->RequestStop();
  }

  std::function<bool()> fStopRequested;
};

/// Names the types of files; each extension is looked up once.
class CTypeNames {
 public:
  explicit CTypeNames(const CTextResources& texts) : fTexts(texts) {}

  const std::u16string& NameOf(const CScannedFile& file) {
    if (file.fIsInformation) return Remember(u"//information", kLookInformationFile);
    const std::u16string& name = file.fItem.Name();
    const std::size_t dot = name.rfind(u'.');
    const std::u16string key =
        dot == name.npos ? std::u16string() : NSTolbrook::FoldCase(name.substr(dot));
    if (const auto known = fNames.find(key); known != fNames.end()) return known->second;
    int entry = 1;
    for (const auto* rows : {&RegisteredFileTypes(), &UnregisteredFileTypes()}) {
      for (const CFileTypeRow& row : *rows) {
        if (CFileTypeDescriptor(row.fExtensions, row.fTypeCode).Matches(file.fItem)) {
          return Remember(key, {kFileTypeNameTable, entry});
        }
        ++entry;
      }
    }
    return Remember(key, kLookUnknownType);
  }

 private:
  const std::u16string& Remember(const std::u16string& key, CStringNumber number) {
    return fNames.try_emplace(key, fTexts.Text(number)).first->second;
  }

  const CTextResources& fTexts;
  std::map<std::u16string, std::u16string> fNames;
};

/// FNV-1a, 64 bits.
class CFingerprint {
 public:
  void Add(std::uint64_t value) {
    for (int shift = 0; shift < 64; shift += 8) AddByte(value >> shift & 0xFF);
  }
  void Add(const std::u16string& text) {
    for (const char16_t unit : text) Add(std::uint64_t{unit});
  }
  std::uint64_t Value() const { return fValue; }

 private:
  void AddByte(std::uint64_t byte) { fValue = (fValue ^ byte) * 0x100000001B3ULL; }

  std::uint64_t fValue = 0xCBF29CE484222325ULL;
};

void AddFile(const CScannedFile& file, CTypeNames& names,
             std::map<std::u16string, CTypeCount>& types, CFingerprint& fingerprint) {
  const std::uint64_t size = NSTolbrook::FileStatus(file.fItem.Path(), true).fSize;
  const std::u16string& name = names.NameOf(file);
  CTypeCount& type = types[name];
  type.fName = name;
  ++type.fCount;
  type.fSize += size;
  std::error_code noTime;  // a file that is gone again is found out about by the check
  const auto time = std::filesystem::last_write_time(file.fItem.Path(), noTime);
  fingerprint.Add(file.fPath);
  fingerprint.Add(size);
  fingerprint.Add(static_cast<std::uint64_t>(time.time_since_epoch().count()));
}

void ListFiles(const CTextResources& texts, const NSTolbrook::NativePath& folder,
               const CFolderLookReport& report, CFolderLook& look,
               std::vector<std::u16string>& badShortcuts) {
  const auto checkStop = [&] {
    if (report.fStopRequested()) throw NSMordel::XSilentAbort("User aborted");
  };
  look.fTexts = ReadPackageTexts(ReadInformationFiles(folder));
  CFingerprint fingerprint;
  CScannedFolder scanned = ScanFolder(
      folder,
      {[&](const std::u16string& path) { return look.fTexts.fOptions.fSkipItems.Hold(path); },
       [&](std::size_t) { checkStop(); },
       [&](const std::u16string& path) { badShortcuts.push_back(path); }});
  CTypeNames names(texts);
  std::map<std::u16string, CTypeCount> types;
  for (const CScannedFile& file : scanned.fFiles) {
    checkStop();
    AddFile(file, names, types, fingerprint);
  }
  for (const auto* const paths : {&scanned.fFolders, &badShortcuts}) {
    for (const std::u16string& path : *paths) fingerprint.Add(path);
  }
  for (const CScannedShortcut& shortcut : scanned.fShortcuts) {
    fingerprint.Add(shortcut.fPath);
    fingerprint.Add(shortcut.fTarget.value_or(u"/"));
  }
  for (const auto& [name, type] : types) {
    look.fTypes.push_back(type);
    look.fCount += type.fCount;
    look.fSize += type.fSize;
  }
  std::stable_sort(look.fTypes.begin(), look.fTypes.end(),
                   [](const auto& left, const auto& right) { return left.fSize > right.fSize; });
  look.fFolders = std::move(scanned.fFolders);
  look.fFingerprint = fingerprint.Value();
}

CStringNumber LeftOutText(ELeftOut why) {
  return {kFirstLookLeftOut.fTable, kFirstLookLeftOut.fEntry + static_cast<int>(why) - 1};
}

/// `texts` about a file of `state`, as far as its reason tells.
std::vector<std::u16string> ReasonOf(const CJobEntry& entry) {
  if (entry.fReason.empty()) return {};
  return {NSTolbrook::TextFromUtf8(entry.fReason)};
}

void AddProblems(const CTextResources& texts, const CPackJobState& state,
                 std::vector<CFolderFinding>& findings) {
  for (const CJobEntry& entry : state.fEntries) {
    if (!entry.fFailed || !entry.TakesPart()) continue;
    findings.push_back(
        {EFinding::kProblem, entry.fFile.fPath, texts.Text(kLookFailed), ReasonOf(entry)});
  }
  std::map<std::pair<std::u16string, std::u16string>, std::vector<std::u16string>> hints;
  for (CReferenceAdvice& advice : AdviseOnReferences(texts, state)) {
    hints[{advice.fEntry, advice.fReference}] = std::move(advice.fHints);
  }
  for (const auto& [file, references] : state.fLists.fUnresolved) {
    for (const std::u16string& reference : references) {
      findings.push_back({EFinding::kProblem, file, texts.Text(kLookUnresolved, {reference}),
                          hints[{file, reference}]});
    }
  }
}

void AddLeftOut(const CTextResources& texts, const CPackJobState& state,
                std::vector<CFolderFinding>& findings) {
  for (const CJobEntry& entry : state.fEntries) {
    if (entry.fLeftOut == ELeftOut::kNo) continue;
    findings.push_back({EFinding::kLeftOut, entry.fFile.fPath,
                        texts.Text(LeftOutText(entry.fLeftOut)), ReasonOf(entry)});
  }
}

void AddNotes(const CTextResources& texts, const CPackJobState& state,
              std::vector<CFolderFinding>& findings) {
  for (const auto& [file, names] : state.fLists.fExternal) {
    findings.push_back({EFinding::kNote,
                        file,
                        texts.Text(kLookExternal, {JoinNames(texts, DistinctNames(names))}),
                        {}});
  }
  for (const auto& [file, names] : state.fLists.fProhibited) {
    findings.push_back(
        {EFinding::kNote, file, texts.Text(kLookProhibited, {JoinNames(texts, names)}), {}});
  }
  for (const std::u16string& file : state.fLists.fUnreferenced) {
    findings.push_back({EFinding::kNote, file, texts.Text(kLookUnreferenced), {}});
  }
  std::ranges::move(RemarksAsFindings(texts, state), std::back_inserter(findings));
}

}  // namespace

std::vector<CFolderFinding> RemarksAsFindings(const CTextResources& texts,
                                              const CPackJobState& state) {
  std::vector<CFolderFinding> findings;
  for (const CJobEntry& entry : state.fEntries) {
    if (!entry.TakesPart()) continue;
    for (const ERemark remark : entry.fRemarks) {
      const CStringNumber number{kFirstLookRemark.fTable,
                                 kFirstLookRemark.fEntry + static_cast<int>(remark)};
      findings.push_back({EFinding::kNote, entry.fFile.fPath, texts.Text(number), {}});
    }
  }
  return findings;
}

CFolderLook LookAtFolder(const CTextResources& texts, const CPackSettings& settings,
                         const CFolderLookReport& report) {
  CFolderLook look;
  std::vector<std::u16string> badShortcuts;
  CLookPresenter presenter;
  const NSTolbrook::CSystemClock clock;
  CTambraPacker packer(texts, presenter, clock);
  try {
    ListFiles(texts, settings.fInputFolder.Path(), report, look, badShortcuts);
    if (!report.fListed(look)) return look;
    CLookView view(report.fStopRequested);
    CTambraPackProgress progress(texts, clock, view, {.fShowTime = false});
    view.fProgress = &progress;
    CPackageInformation information;
    // A check would end at the first bad shortcut.
    if (badShortcuts.empty()) packer.Check(settings, information, progress);
  } catch (const NSMordel::XSilentAbort&) {
    throw;
  } catch (const NSMordel::XAbort&) {  // the lists tell why
  } catch (...) {
    packer.ShowFailure(std::current_exception());
  }
  for (const std::u16string& path : badShortcuts) {
    look.fFindings.push_back({EFinding::kProblem, path, texts.Text(kLookBadShortcut), {}});
  }
  for (const std::u16string& told : presenter.fTold) {
    look.fFindings.push_back({EFinding::kProblem, {}, told, {}});
  }
  if (const CPackJobState* const state = packer.State()) {
    AddProblems(texts, *state, look.fFindings);
    AddLeftOut(texts, *state, look.fFindings);
    AddNotes(texts, *state, look.fFindings);
    for (const CJobEntry& entry : state->fEntries) look.fPackable += entry.TakesPart() ? 1 : 0;
  }
  look.fIsChecked = true;
  return look;
}

}  // namespace NSTambraPacking
