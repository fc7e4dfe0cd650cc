#pragma once

#include <QAbstractTableModel>

#include "app/FolderLook.h"
#include "app/TextResources.h"

namespace NSTambraGui {

/// What was found in a folder, a row each; nothing is made for rows that are not in view.
class CFindingsModel : public QAbstractTableModel {
 public:
  /// The texts must outlive the model.
  CFindingsModel(const NSTambraPacking::CTextResources& texts, QObject* parent);

  void SetFindings(std::vector<NSTambraPacking::CFolderFinding> findings);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  QString CellText(const NSTambraPacking::CFolderFinding& finding, int column) const;
  QString KindText(NSTambraPacking::EFinding kind) const;

  const NSTambraPacking::CTextResources& fTexts;
  std::vector<NSTambraPacking::CFolderFinding> fFindings;
};

}  // namespace NSTambraGui
