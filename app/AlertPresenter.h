#pragma once

#include "app/AlertText.h"
#include "app/TextNumbers.h"

namespace NSTambraPacking {

/// Shows alerts and gives the user's answers: a window, a terminal, a script.
class IAlertPresenter {
 public:
  virtual ~IAlertPresenter() = default;
  /// Shows `alert`, the entry `number` with its arguments filled in, and waits for the answer:
  /// kLastButton, kButtonBefore, or CAlertText::Answer of a button before those.
  virtual int Show(CAlertNumber number, const CAlertText& alert) = 0;
};

}  // namespace NSTambraPacking
