#include "gui/package/DetailItemModel.h"

#include <QApplication>
#include <QFont>
#include <QPalette>
#include <algorithm>

#include "app/PackageTextNumbers.h"
#include "app/PrintableText.h"
#include "gui/QtText.h"

namespace NSTambraGui {

void CDetailItemModel::SetItems(std::vector<NSTambraPacking::CDetailItem> items) {
  beginResetModel();
  fItems = std::move(items);
  fHasPlaces = std::ranges::any_of(fItems, [](const auto& item) { return !item.fPlace.empty(); });
  endResetModel();
}

const std::u16string& CDetailItemModel::TargetOf(const QModelIndex& index) const {
  return fItems.at(static_cast<std::size_t>(index.row())).fTarget;
}

int CDetailItemModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(fItems.size());
}

QVariant CDetailItemModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const NSTambraPacking::CDetailItem& item = fItems[static_cast<std::size_t>(index.row())];
  const bool isPlace = index.column() == 1;
  const auto text = [&] {
    return ToQt(NSTambraPacking::PrintableText(isPlace ? item.fPlace : item.fText));
  };
  if (role == Qt::DisplayRole) return text();
  if (role == Qt::ToolTipRole) return ToolTipOf(text());
  if (!isPlace || item.fTarget.empty()) return {};
  if (role == Qt::ForegroundRole) return QApplication::palette().link();
  if (role == Qt::AccessibleDescriptionRole) {
    return ToQt(fTexts.Text(NSTambraPacking::kReferenceFollow));
  }
  if (role == Qt::FontRole) {
    QFont font = QApplication::font();
    font.setUnderline(true);
    return font;
  }
  return {};
}

}  // namespace NSTambraGui
