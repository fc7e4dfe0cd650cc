#pragma once

#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/ExceptionResponder.h"

#include "app/AlertPresenter.h"
#include "app/TextNumbers.h"
#include "app/TextResources.h"

namespace NSTambraPacking {

/// Context key of the failure that the output folder, its value, is or lies inside the input
/// folder. A failure with this key has an alert of its own, as has one with kSplashKey,
/// kTambraNameKey, kVersionKey or kPackageSizeKey.
inline constexpr const char* kOutputFolderKey = "outputfolder";

/// What the pack job was doing when a failure left it.
enum class ESituation {
  kGeneral,
  kScanning,
  kVerifying,
  kPacking,
  kComposing,
  kFinalVerification,
};

struct CAlertChoice {
  CAlertNumber fNumber;
  std::vector<std::u16string> fArguments;
};

/// The alert that a failure is shown as; none for XAbort and XSilentAbort. `fileName` is what the
/// job was working on (a file, or the package), or empty. Names the splash, the package's name and
/// version, the output folder and the package's size come from the failure itself; a shortcut that
/// cannot be resolved while scanning, a file that cannot be verified or packed and a package that
/// cannot be composed or fails the final verification have alerts that name `fileName`. Failures
/// in none of these situations are shown by their kind and the type of the failing object, and so
/// are memory that runs out, whatever the job was doing, and a disk that is full while it packs.
std::optional<CAlertChoice> ChooseAlert(const std::exception_ptr& failure, ESituation situation,
                                        const std::u16string& fileName);

/// The file that a failure names, as far as it names one.
std::u16string FailingFile(const std::exception_ptr& failure);

/// Shows the alert of `choice` and returns the answer.
int ShowAlert(const CTextResources& texts, IAlertPresenter& presenter, const CAlertChoice& choice);

/// Shows failures that reached the top as alerts, by their kind.
class CExceptionResponder : public NSMordel::IExceptionResponder {
 public:
  /// Both must outlive the responder.
  CExceptionResponder(const CTextResources& texts, IAlertPresenter& presenter)
      : fTexts(texts), fPresenter(presenter) {}

  void Respond(std::exception_ptr failure) override;

 private:
  const CTextResources& fTexts;
  IAlertPresenter& fPresenter;
};

}  // namespace NSTambraPacking
