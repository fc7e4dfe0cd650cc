#pragma once

#include <QDialog>
#include <QMenu>

#include "app/TextResources.h"

namespace NSTambraGui {

/// What program this is, and whom to turn to.
class CAboutDialog : public QDialog {
  Q_OBJECT

 public:
  /// `contacts` is shown by a button and becomes the dialog's.
  CAboutDialog(const NSTambraPacking::CTextResources& texts, QMenu* contacts, QWidget* parent);
};

}  // namespace NSTambraGui
