#include "app/FolderLook.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <iterator>
#include <map>
#include <set>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/FolderScan.h"
#include "app/InputFolder.h"
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
  /// Its size, which comes back, who may read it, and the time when it was last written to.
  std::uint64_t AddFile(const NSTolbrook::NativePath& path) {
    const std::uint64_t size = NSTolbrook::FileStatus(path, true).fSize;
    std::error_code gone;  // a file that is gone again is found out about by the check
    const auto time = std::filesystem::last_write_time(path, gone);
    Add(size);
    Add(static_cast<std::uint64_t>(std::filesystem::status(path, gone).permissions()));
    Add(static_cast<std::uint64_t>(time.time_since_epoch().count()));
    return size;
  }
  std::uint64_t Value() const { return fValue; }

 private:
  void AddByte(std::uint64_t byte) { fValue = (fValue ^ byte) * 0x100000001B3ULL; }

  std::uint64_t fValue = 0xCBF29CE484222325ULL;
};

void AddFile(const CScannedFile& file, CTypeNames& names,
             std::map<std::u16string, CTypeCount>& types, CFingerprint& fingerprint) {
  const std::u16string& name = names.NameOf(file);
  CTypeCount& type = types[name];
  type.fName = name;
  ++type.fCount;
  fingerprint.Add(file.fPath);
  type.fSize += fingerprint.AddFile(file.fItem.Path());
}

void ListFiles(const CTextResources& texts, const NSTolbrook::NativePath& folder,
               const CFolderLookReport& report, CFolderLook& look) {
  const auto checkStop = [&] {
    if (report.fStopRequested()) throw NSMordel::XSilentAbort("User aborted");
  };
  look.fTexts = ReadPackageTexts(ReadInformationFiles(folder));
  CFingerprint fingerprint;
  CScannedFolder scanned = ScanFolder(
      folder,
      {[&](const std::u16string& path) { return look.fTexts.fOptions.fSkipItems.Hold(path); },
       [&](std::size_t) { checkStop(); },
       [&](const std::u16string& path) { fingerprint.Add(path); }});
  CTypeNames names(texts);
  std::map<std::u16string, CTypeCount> types;
  for (const CScannedFile& file : scanned.fFiles) {
    checkStop();
    AddFile(file, names, types, fingerprint);
  }
  for (const std::u16string& path : scanned.fFolders) fingerprint.Add(path);
  for (const CScannedShortcut& shortcut : scanned.fShortcuts) {
    fingerprint.Add(shortcut.fPath);
    fingerprint.Add(shortcut.fTarget.value_or(u"/"));
  }
  fingerprint.AddFile(folder / NSTolbrook::NativePath(kAdviceRulesName));
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

/// `file` from the folder on, when it lies there; links on the way to it may have been followed.
std::u16string InnerPath(const std::u16string& file, const NSTolbrook::NativePath& folder) {
  std::error_code unknown;
  for (const auto& root : {folder, std::filesystem::weakly_canonical(folder, unknown)}) {
    const std::u16string outer = NSTolbrook::TextFromUtf8(NSTolbrook::DisplayText(root));
    if (outer.empty() || !file.starts_with(outer)) continue;
    const std::size_t inner = file.find_first_not_of(u"/\\", outer.size());
    if (inner > outer.size() && inner < file.size()) return file.substr(inner);
  }
  return file;
}

/// A check of the listed folder.
class CLookCheck {
 public:
  CLookCheck(const CTextResources& texts, const CFolderLookReport& report, CFolderLook& look)
      : fTexts(texts),
        fLook(look),
        fView(report.fStopRequested),
        fPacker(texts, fPresenter, fClock),
        fProgress(texts, fClock, fView, {.fShowTime = false}) {
    fView.fProgress = &fProgress;
  }

  void Check(CPackSettings settings) {
    fFolder = settings.fInputFolder.Path();
    settings.fFolderFault = [this](const std::exception_ptr& fault) { AddFault(fault); };
    CPackageInformation information;
    fHasVerdict =
        Attempt(EFinding::kProblem, [&] { fPacker.Check(settings, information, fProgress); });
    const CPackJobState* const state = fPacker.State();
    if (state == nullptr) return;
    std::set<std::u16string> told;  // a splash that is no picture cannot be verified, either
    for (const CFolderFinding& fault : fLook.fFindings) told.insert(fault.fFile);
    for (CFolderFinding& finding : CheckAsFindings(fTexts, *state)) {
      const bool isTold = finding.fKind == EFinding::kProblem && told.contains(finding.fFile);
      if (!isTold) fLook.fFindings.push_back(std::move(finding));
    }
    fLook.fPackable =
        static_cast<std::size_t>(std::ranges::count_if(state->fEntries, &CJobEntry::TakesPart));
  }

  void Advise() {
    if (!fHasVerdict) return;
    CAdviceRules rules;
    try {
      rules.AddFileOf(fFolder);
    } catch (const NSMordel::CExceptionBodyMixin& e) {
      const std::u16string reason = NSTolbrook::TextFromUtf8(e.Message());
      const std::u16string file(kAdviceRulesName);
      fLook.fFindings.push_back(
          {EFinding::kAdvice, file, fTexts.Text(kLookBadRules, {reason}), {}});
      return;
    }
    Attempt(EFinding::kAdvice, [&] { fPacker.Advise(rules, fProgress); });
    std::ranges::move(AdviceAsFindings(fTexts, *fPacker.State()),
                      std::back_inserter(fLook.fFindings));
  }

 private:
  void AddFault(const std::exception_ptr& fault) {
    CFolderFinding finding = FaultAsFinding(fTexts, fault);
    finding.fFile = InnerPath(finding.fFile, fFolder);
    fLook.fFindings.push_back(std::move(finding));
  }

  /// What `work` fails with becomes a finding of that kind; an XAbort is none, since the lists tell
  /// why. False when it broke off.
  bool Attempt(EFinding kind, const std::function<void()>& work) {
    bool isDone = true;
    try {
      work();
    } catch (const NSMordel::XSilentAbort&) {
      throw;
    } catch (const NSMordel::XAbort&) {
    } catch (...) {
      isDone = false;
      fPacker.ShowFailure(std::current_exception());
    }
    for (std::u16string& told : fPresenter.fTold) {
      fLook.fFindings.push_back({kind, {}, std::move(told), {}});
    }
    fPresenter.fTold.clear();
    return isDone;
  }

  const CTextResources& fTexts;
  CFolderLook& fLook;
  const NSTolbrook::CSystemClock fClock;
  CLookPresenter fPresenter;
  CLookView fView;
  CTambraPacker fPacker;
  CTambraPackProgress fProgress;
  NSTolbrook::NativePath fFolder;
  bool fHasVerdict = false;
};

}  // namespace

CFolderLook LookAtFolder(const CTextResources& texts, const CPackSettings& settings,
                         const CFolderLookReport& report) {
  CFolderLook look;
  try {
    ListFiles(texts, settings.fInputFolder.Path(), report, look);
  } catch (const NSMordel::XSilentAbort&) {
    throw;
  } catch (...) {
    CFolderFinding fault = FaultAsFinding(texts, std::current_exception());
    fault.fFile = InnerPath(fault.fFile, settings.fInputFolder.Path());
    look.fFindings.push_back(std::move(fault));
    look.fIsChecked = true;
    return look;
  }
  if (!report.fListed(look)) return look;
  CLookCheck check(texts, report, look);
  check.Check(settings);
  look.fIsChecked = true;
  report.fChecked(look);
  check.Advise();
  return look;
}

}  // namespace NSTambraPacking
