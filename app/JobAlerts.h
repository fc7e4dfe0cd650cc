#pragma once

#include <string>
#include <vector>

#include "app/AlertPresenter.h"
#include "app/TambraPackProgress.h"
#include "app/TextResources.h"

namespace NSTambraPacking {

/// Shows the alerts of a run and takes the time that the user needs out of its estimate.
class CJobAlerts {
 public:
  /// All must outlive the object; without `progress` no time is kept.
  CJobAlerts(const CTextResources& texts, IAlertPresenter& presenter,
             CTambraPackProgress* progress = nullptr);

  /// True when the user chose the last-listed button, which is the one that goes on.
  bool Ask(CAlertNumber number, const std::vector<std::u16string>& arguments) const;

 private:
  const CTextResources& fTexts;
  IAlertPresenter& fPresenter;
  CTambraPackProgress* fProgress;
};

}  // namespace NSTambraPacking
