#include "app/JobAlerts.h"

#include <optional>

namespace NSTambraPacking {

CJobAlerts::CJobAlerts(const CTextResources& texts, IAlertPresenter& presenter,
                       CTambraPackProgress* progress)
    : fTexts(texts), fPresenter(presenter), fProgress(progress) {}

bool CJobAlerts::Ask(CAlertNumber number, const std::vector<std::u16string>& arguments) const {
  std::optional<CTambraPackProgress::CWait> wait;
  if (fProgress != nullptr) wait.emplace(*fProgress);
  return fPresenter.Show(number, fTexts.Alert(number, arguments)) == kLastButton;
}

}  // namespace NSTambraPacking
