#pragma once

#include <QMainWindow>

#include "app/TextResources.h"

namespace NSTambraGui {

/// The window in which a folder is chosen, looked at and packed.
class CMainWindow : public QMainWindow {
  Q_OBJECT

 public:
  /// The texts must outlive the window.
  explicit CMainWindow(const NSTambraPacking::CTextResources& texts);

 private:
  const NSTambraPacking::CTextResources& fTexts;
};

}  // namespace NSTambraGui
