#pragma once

#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/AlertPresenter.h"

namespace NSTest {

/// Answers alerts by a script and remembers them. A question that the script does not know fails
/// the test.
class CScriptedAlerts : public NSTambraPacking::IAlertPresenter {
 public:
  /// True stands for the last-listed button, by the alert's number.
  using CAnswers = std::map<int, bool>;

  explicit CScriptedAlerts(CAnswers answers = {}) : fAnswers(std::move(answers)) {}

  int Show(NSTambraPacking::CAlertNumber number,
           const NSTambraPacking::CAlertText& alert) override {
    fShown.push_back(std::to_string(number.fEntry) + " " +
                     NSTolbrook::Utf8FromText(alert.fMessage));
    const bool tells = alert.fButtons.size() == 1 || alert.fButtons.front() == u"Open Log File";
    if (tells) return NSTambraPacking::kLastButton;
    const auto answer = fAnswers.find(number.fEntry);
    if (answer == fAnswers.end()) ADD_FAILURE() << "nobody answers " << fShown.back();
    const bool goesOn = answer != fAnswers.end() && answer->second;
    return goesOn ? NSTambraPacking::kLastButton : NSTambraPacking::kButtonBefore;
  }

  /// "number message", in the order of their showing.
  std::vector<std::string> fShown;

 private:
  CAnswers fAnswers;
};

}  // namespace NSTest
