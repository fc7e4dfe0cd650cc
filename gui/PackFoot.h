#pragma once

#include <QAction>
#include <QPushButton>
#include <QWidget>

#include "gui/ElidedLabel.h"

namespace NSTambraGui {

/// What stands below all else in the main window: whether the folder can be packed, what the
/// package will be called, what the last run made, and the button that packs.
class CPackFoot : public QWidget {
 public:
  explicit CPackFoot(QWidget* parent);

  /// The button does the same as `create` and is enabled when it is.
  void SetCommand(QAction& create);
  /// The last run's line has no room of its own while it is empty.
  void Show(const QString& state, const QString& outputName, const QString& lastRun);

 private:
  QLabel* fState;
  CElidedLabel* fOutputName;
  CElidedLabel* fLastRun;
  QPushButton* fCreateTambraButton;
};

}  // namespace NSTambraGui
