#pragma once

#include <QLabel>
#include <QWidget>

#include "app/AlertText.h"
#include "app/TextResources.h"

namespace NSTambraGui {

/// Stands in the place of a package that cannot be opened and says why.
class CFaultPage : public QWidget {
  Q_OBJECT

 public:
  CFaultPage(const NSTambraPacking::CTextResources& texts, QWidget* parent);

  void Show(const NSTambraPacking::CAlertText& alert);

 signals:
  void Closed();

 private:
  QLabel* fTitle;
  QLabel* fText;
};

}  // namespace NSTambraGui
