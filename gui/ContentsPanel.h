#pragma once

#include <QGroupBox>
#include <QPlainTextEdit>
#include <QTableView>
#include <QTreeWidget>

#include "app/FolderLook.h"
#include "app/TextResources.h"
#include "gui/FindingsModel.h"

namespace NSTambraGui {

/// What is in the input folder: its files by type, and what was found in them.
class CContentsPanel : public QWidget {
  Q_OBJECT

 public:
  /// The texts must outlive the panel.
  CContentsPanel(const NSTambraPacking::CTextResources& texts, QWidget* parent);

  void Show(const SharedLook& look);

  /// What room is left is welcome, none is asked for.
  QSize sizeHint() const override { return minimumSizeHint(); }

 private:
  void BuildTypes();
  QWidget* BuildFindings();
  QString Text(NSTambraPacking::CStringNumber number) const;

  const NSTambraPacking::CTextResources& fTexts;
  QTreeWidget* fTypes;
  QTreeView* fFindings;
  CFindingsModel* fModel;
  QPlainTextEdit* fDetail;
  /// By the user; it stays the current one when the folder is looked at again.
  NSTambraPacking::CFolderFinding fChosen;
};

}  // namespace NSTambraGui
