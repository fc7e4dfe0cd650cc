#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "app/EntryDetails.h"

namespace NSTambraGui {

/// What an entry holds or refers to, one thing a row.
class CDetailItemModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  CDetailItemModel(const NSTambraPacking::CTextResources& texts, QObject* parent)
      : QAbstractTableModel(parent), fTexts(texts) {}

  void SetItems(std::vector<NSTambraPacking::CDetailItem> items);
  bool HasPlaces() const { return fHasPlaces; }
  /// Where a row leads; empty when nowhere.
  const std::u16string& TargetOf(const QModelIndex& index) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& = {}) const override { return fHasPlaces ? 2 : 1; }
  QVariant data(const QModelIndex& index, int role) const override;

 private:
  const NSTambraPacking::CTextResources& fTexts;
  std::vector<NSTambraPacking::CDetailItem> fItems;
  bool fHasPlaces = false;
};

}  // namespace NSTambraGui
