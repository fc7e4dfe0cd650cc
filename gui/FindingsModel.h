#pragma once

#include <QAbstractTableModel>
#include <memory>

#include "app/FolderLook.h"
#include "app/TextResources.h"

namespace NSTambraGui {

/// Looks are long: the parts of a window share one, and it goes where it came from.
using SharedLook = std::shared_ptr<const NSTambraPacking::CFolderLook>;

/// What was found in a folder, a row each; nothing is made for rows that are not in view.
class CFindingsModel : public QAbstractTableModel {
 public:
  /// The texts must outlive the model.
  CFindingsModel(const NSTambraPacking::CTextResources& texts, QObject* parent);

  void SetLook(SharedLook look);

  const NSTambraPacking::CFolderFinding& Finding(int row) const;
  /// -1 when there is no such finding.
  int RowOf(const NSTambraPacking::CFolderFinding& finding) const;

  /// The whole finding, its file and hints on lines of their own; empty for a row that is not
  /// there.
  QString Detail(int row) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  QString CellText(const NSTambraPacking::CFolderFinding& finding, int column) const;
  QString FileText(const NSTambraPacking::CFolderFinding& finding) const;
  QString KindText(NSTambraPacking::EFinding kind) const;

  const NSTambraPacking::CTextResources& fTexts;
  SharedLook fLook;
};

}  // namespace NSTambraGui
