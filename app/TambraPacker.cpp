#include "app/TambraPacker.h"

#include <array>
#include <span>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/InputFolder.h"
#include "app/JobAlerts.h"
#include "app/NameLists.h"
#include "app/PackPhases.h"
#include "app/PackingLog.h"

namespace NSTambraPacking {

struct CTambraPacker::CPhase {
  void (*fRun)(const CPhaseContext& context);
  ESituation fSituation;
};

namespace {

/// Gives up the packed entries at the end of a run, however it ends: the state lives on, the
/// working file must not.
class CWorkingFileEnd {
 public:
  explicit CWorkingFileEnd(CPackJobState& state) : fState(state) {}
  CWorkingFileEnd(const CWorkingFileEnd&) = delete;
  CWorkingFileEnd& operator=(const CWorkingFileEnd&) = delete;
  ~CWorkingFileEnd() { End(); }

  void End() {
    fState.RemovePackedEntries();
    if (fState.fSettings.fCache != nullptr) fState.fSettings.fCache->Close();
  }

 private:
  CPackJobState& fState;
};

}  // namespace

CTambraPacker::CTambraPacker(const CTextResources& texts, IAlertPresenter& presenter,
                             const NSTolbrook::IClock& clock)
    : fTexts(texts), fPresenter(presenter), fClock(clock) {}

CTambraPacker::~CTambraPacker() = default;

EPackEnding CTambraPacker::Run(const CPackSettings& settings, CPackageInformation& information,
                               CTambraPackProgress& progress) {
  static constexpr std::array kPhases = {
      CPhase{ScanInputFolder, ESituation::kScanning},
      CPhase{TakePackageInformation, ESituation::kScanning},
      CPhase{BuildFolderStructure, ESituation::kScanning},
      CPhase{VerifyEntries, ESituation::kVerifying},
      CPhase{PackEntries, ESituation::kPacking},
      CPhase{ListPackageEntries, ESituation::kComposing},
      CPhase{PlacePackageEntries, ESituation::kComposing},
      CPhase{ComposePackage, ESituation::kComposing},
      CPhase{VerifyPackage, ESituation::kFinalVerification},
  };
  Prepare(settings);
  PrepareOutput();
  CWorkingFileEnd workingFileEnd(*fState);
  try {
    RunPhases(kPhases, progress);
  } catch (const NSMordel::XAbort&) {
    workingFileEnd.End();
    CloseAborted();
    throw NSMordel::XSilentAbort();
  }
  information = fState->fInformation;
  WriteLog(kLogComplete);
  KeepPackedEntries(*fState, progress);
  workingFileEnd.End();
  return ShowEnding();
}

void CTambraPacker::Check(const CPackSettings& settings, CPackageInformation& information,
                          CTambraPackProgress& progress) {
  static constexpr std::array kPhases = {
      CPhase{ScanInputFolder, ESituation::kScanning},
      CPhase{TakePackageInformation, ESituation::kScanning},
      CPhase{BuildFolderStructure, ESituation::kScanning},
      CPhase{VerifyEntries, ESituation::kVerifying},
  };
  Prepare(settings);
  PassFolderFault(settings, [this] { fState->fInformation.OutputFileName(); });
  std::exception_ptr verdict;
  try {
    RunPhases(kPhases, progress);
  } catch (const NSMordel::XAbort&) {
    verdict = std::current_exception();
  }
  if (settings.fAdviceRules != nullptr) Advise(*settings.fAdviceRules, progress);
  if (verdict) std::rethrow_exception(verdict);
  information = fState->fInformation;
}

void CTambraPacker::Advise(const CAdviceRules& rules, CTambraPackProgress& progress) {
  static constexpr std::array kPhases = {CPhase{GiveAdvice, ESituation::kVerifying}};
  fState->fSettings.fAdviceRules = &rules;
  RunPhases(kPhases, progress);
}

void CTambraPacker::Prepare(const CPackSettings& settings) {
  fSituation = ESituation::kGeneral;
  fState = std::make_unique<CPackJobState>();
  fState->fSettings = settings;
  fState->fInformationFiles = ReadInformationFiles(settings.fInputFolder.Path());
  CPackageTexts texts = ReadPackageTexts(fState->fInformationFiles);
  fState->fInformation = std::move(texts.fInformation);
  fState->fOptions = std::move(texts.fOptions);
}

void CTambraPacker::PrepareOutput() {
  const NSTolbrook::NativePath folder = fState->fSettings.fOutputFolder.Path();
  const std::u16string name = fState->fInformation.OutputFileName();
  CheckOutputFolder(fState->fSettings.fInputFolder.Path(), folder);
  fState->fOutputFile = fState->fSettings.fOutputFolder.Child(name);
  NSTolbrook::MakeFolders(folder);
  NSBigFilePackage::CTemporaryFile::RemoveLeftovers(folder);
  // A folder that cannot be written to is found out before anything in it is replaced.
  { const NSBigFilePackage::CTemporaryFile probe(folder); }
  const NSTolbrook::NativePath& file = fState->fOutputFile.Path();
  if (NSTolbrook::FileStatus(file, false).fKind != NSTolbrook::EFileKind::kMissing) {
    if (!Ask(kAlertReplace, {name})) throw NSMordel::XSilentAbort();
    NSTolbrook::RemoveFile(file);
  }
}

void CTambraPacker::RunPhases(std::span<const CPhase> phases, CTambraPackProgress& progress) {
  progress.Attach(*this);
  const CJobAlerts alerts(fTexts, fPresenter, &progress);
  const CPhaseContext context{*fState, this, &progress, alerts};
  for (const CPhase& phase : phases) {
    fSituation = phase.fSituation;
    phase.fRun(context);
  }
  fSituation = ESituation::kGeneral;
}

void CTambraPacker::CheckEntries() {
  const CPackLists& lists = fState->fLists;
  if (!lists.fFailed.empty()) throw NSMordel::XAbort("tambra has failed entries");
  if (!lists.fUnresolved.empty()) throw NSMordel::XAbort("tambra has unresolved entries");
}

void CTambraPacker::CheckExternalReferences(bool warn) {
  if (!warn) return;
  for (const CPackLists::CEntryNames& file : fState->fLists.fExternal) {
    const std::vector<std::u16string> packages = DistinctNames(file.fNames);
    const CAlertNumber number = packages.size() == 1 ? kAlertRefersToTambra : kAlertRefersToTambras;
    if (!Ask(number, {file.fEntry, JoinNames(fTexts, packages)})) throw NSMordel::XAbort();
  }
}

EPackEnding CTambraPacker::ShowEnding() const {
  const CPackLists& lists = fState->fLists;
  const std::u16string count =
      NSTolbrook::TextFromUtf8(std::to_string(fState->fInformation.fFileCount));
  if (lists.HasProblems()) {
    ShowAlert(fTexts, fPresenter, {kAlertProblems, {}});
    return EPackEnding::kProblems;
  }
  if (lists.HasNotes()) {
    ShowAlert(fTexts, fPresenter, {kAlertPackedWithNotes, {count}});
    return EPackEnding::kPackedWithNotes;
  }
  ShowAlert(fTexts, fPresenter, {kAlertPacked, {count}});
  return EPackEnding::kPacked;
}

void CTambraPacker::CloseAborted() {
  if (!fState->fLists.HasProblems() && !fState->fLists.HasNotes()) return;
  WriteLog(kLogAborted);
  ShowAlert(fTexts, fPresenter, {kAlertProblems, {}});
}

void CTambraPacker::WriteLog(CStringNumber closingLine) {
  const CPackingLog log(fTexts, fClock);
  fState->fLogFile.emplace(log.Write(fState->fSettings.fOutputFolder.Path(),
                                     fState->fInformation.fName, fState->fLists, closingLine));
}

bool CTambraPacker::Ask(CAlertNumber number, const std::vector<std::u16string>& arguments) const {
  return ShowAlert(fTexts, fPresenter, {number, arguments}) == kLastButton;
}

void CTambraPacker::ShowFailure(const std::exception_ptr& failure) const {
  std::u16string file = fState == nullptr ? std::u16string() : fState->fCurrentFile;
  if (fSituation == ESituation::kFinalVerification) file = fState->fOutputFile.Name();
  // A failure that packing no entry raised names the working file, which the user does not know.
  if (file.empty() && fSituation != ESituation::kPacking) file = FailingFile(failure);
  if (file.empty() && fSituation == ESituation::kComposing) file = fState->fOutputFile.Name();
  if (const auto choice = ChooseAlert(failure, fSituation, file)) {
    ShowAlert(fTexts, fPresenter, *choice);
  }
}

}  // namespace NSTambraPacking
