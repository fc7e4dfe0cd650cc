#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/AlertPresenter.h"
#include "app/TextResources.h"
#include "cli/Console.h"
#include "cli/ProgressViews.h"

namespace NSTambraCli {

/// The answers that the command line gives in advance.
struct CPreparedAnswers {
  /// Button labels by the number of the alert in table 128.
  std::map<int, std::u16string> fAnswers;
  bool fYes = false;  ///< the last-listed button for every question without its own answer
};

/// Parses "ALERT=BUTTON" into `answers`. Throws XFormatViolation when it is no such pair or the
/// alert is none that asks.
void AddAnswer(CPreparedAnswers& answers, std::string_view pair);

/// Every pair that AddAnswer takes and CheckAnswers lets pass.
std::vector<std::string> PossibleAnswers(const NSTambraPacking::CTextResources& texts);

/// Throws XWrongUsage when an alert has no button of the label that is prepared for it.
void CheckAnswers(const CPreparedAnswers& answers, const NSTambraPacking::CTextResources& texts);

/// Shows alerts as lines of text. Questions are asked on a terminal; elsewhere they are answered
/// by the prepared answers, else by the careful button.
class CConsoleAlertPresenter : public NSTambraPacking::IAlertPresenter {
 public:
  /// `view` steps aside before something is shown; it may be null. Questions are asked on a
  /// terminal when `canAsk` is true. Both objects must outlive the presenter.
  CConsoleAlertPresenter(const CConsole& console, CPreparedAnswers answers, bool canAsk,
                         ICliProgressView* view = nullptr);

  int Show(NSTambraPacking::CAlertNumber number, const NSTambraPacking::CAlertText& alert) override;

 private:
  std::optional<int> PreparedAnswer(NSTambraPacking::CAlertNumber number,
                                    const NSTambraPacking::CAlertText& alert) const;
  int Ask(const NSTambraPacking::CAlertText& alert) const;
  void Report(NSTambraPacking::CAlertNumber number, const NSTambraPacking::CAlertText& alert,
              std::optional<int> answer) const;

  const CConsole& fConsole;
  CPreparedAnswers fAnswers;
  bool fCanAsk;
  ICliProgressView* fView;
};

}  // namespace NSTambraCli
