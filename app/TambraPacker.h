#pragma once

#include <memory>
#include <optional>

#include "Parts/TolbrookPackage/Core/Clock.h"

#include "app/ExceptionAlerts.h"
#include "app/PackJobChecks.h"
#include "app/PackJobState.h"
#include "app/TambraPackProgress.h"

namespace NSTambraPacking {

/// How a run that went through all its phases closed.
enum class EPackEnding {
  kPacked,           ///< nothing to report
  kPackedWithNotes,  ///< whole, and the log has something to tell
  kProblems,         ///< the log tells what went wrong
};

/// Turns an input folder into a package file, or checks what would come of it. One run at a time.
class CTambraPacker : private IPackJobChecks {
 public:
  /// All three must outlive the packer.
  CTambraPacker(const CTextResources& texts, IAlertPresenter& presenter,
                const NSTolbrook::IClock& clock);
  ~CTambraPacker() override;

  /// Packs. Asks, reports and shows the closing alert as it goes; `information` is filled with the
  /// package's texts and its file count. Throws
  /// - XSilentAbort when the run ended without a package and the user knows why: on a stop request,
  ///   a refused question, or after the log of an XAbort was written and its alert shown;
  /// - whatever else ended the run: ShowFailure shows it.
  /// When it throws before phase 8 reads the finished package back, no package is left; the working
  /// file never is.
  EPackEnding Run(const CPackSettings& settings, CPackageInformation& information,
                  CTambraPackProgress& progress);

  /// Does what a run does up to the verification of the input folder and writes nothing; gives
  /// advice, whatever was found, when the settings have rules for it. Throws
  /// XAbort when entries have failed or have unresolved references, and as Run.
  void Check(const CPackSettings& settings, CPackageInformation& information,
             CTambraPackProgress& progress);

  /// Behind a Check that came to its verdict: gives advice on what it found, by rules that must
  /// outlive the packer. Throws as GiveAdvice.
  void Advise(const CAdviceRules& rules, CTambraPackProgress& progress);

  /// Shows the failure that Run or Check ended with as an alert; none for XAbort and XSilentAbort.
  void ShowFailure(const std::exception_ptr& failure) const;

  /// What the last run found out, up to the point where it ended; null before the first.
  const CPackJobState* State() const { return fState.get(); }

 private:
  struct CPhase;

  const CPackageInformation& Information() const override { return fState->fInformation; }
  void CheckEntries() override;
  void CheckExternalReferences(bool warn) override;

  void Prepare(const CPackSettings& settings);
  void PrepareOutput();
  void RunPhases(std::span<const CPhase> phases, CTambraPackProgress& progress);
  EPackEnding ShowEnding() const;
  void CloseAborted();
  void WriteLog(CStringNumber closingLine);
  bool Ask(CAlertNumber number, const std::vector<std::u16string>& arguments) const;

  const CTextResources& fTexts;
  IAlertPresenter& fPresenter;
  const NSTolbrook::IClock& fClock;
  std::unique_ptr<CPackJobState> fState;
  ESituation fSituation = ESituation::kGeneral;
};

}  // namespace NSTambraPacking
