#include "gui/package/EntryView.h"

#include <QHeaderView>
#include <algorithm>
#include <utility>

namespace NSTambraGui {

namespace {

// In average characters.
constexpr int kLeastName = 30;
/// A selection follows its rows through a sort at a price for each of them.
constexpr std::size_t kManyRows = 500;
constexpr std::pair<CPackageModel::EColumn, int> kWidths[] = {{CPackageModel::kType, 24},
                                                              {CPackageModel::kSize, 12},
                                                              {CPackageModel::kPacked, 12},
                                                              {CPackageModel::kRatio, 9}};

}  // namespace

CEntryView::CEntryView(CPackageModel& model, QWidget* parent) : QTreeView(parent), fModel(model) {
  setUniformRowHeights(true);
  setAlternatingRowColors(true);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setTextElideMode(Qt::ElideMiddle);
  setModel(&model);
  connect(&model, &CPackageModel::AboutToSort, this, &CEntryView::PutAside);
  connect(&model, &CPackageModel::Sorted, this, &CEntryView::TakeBack);
  setSortingEnabled(true);
  sortByColumn(CPackageModel::kName, Qt::AscendingOrder);
  header()->setStretchLastSection(false);
  for (const auto& [column, width] : kWidths) {
    header()->resizeSection(column, width * fontMetrics().averageCharWidth());
  }
}

std::vector<CEntryView::Node> CEntryView::ChosenNodes() const {
  std::vector<Node> nodes;
  for (const QItemSelectionRange& range : selectionModel()->selection()) {
    for (int row = range.top(); row <= range.bottom(); ++row) {
      nodes.push_back(fModel.NodeOf(fModel.index(row, CPackageModel::kName, range.parent())));
    }
  }
  return nodes;
}

void CEntryView::PutAside() {
  fAside = ChosenNodes();
  if (fAside.size() < kManyRows) return fAside.clear();
  const QSignalBlocker quiet(selectionModel());  // it is the same again at the end
  selectionModel()->clearSelection();
}

void CEntryView::TakeBack() {
  if (fAside.empty()) return;
  QItemSelection selection;
  QModelIndexList folders = fModel.ShownFolders();
  folders.append(QModelIndex());
  std::ranges::sort(fAside);
  for (const QModelIndex& folder : std::as_const(folders)) {
    const int count = fModel.rowCount(folder);
    int first = -1;  // of the chosen rows that follow each other
    for (int row = 0; row <= count; ++row) {
      const bool isChosen =
          row < count &&
          std::ranges::binary_search(
              fAside, fModel.NodeOf(fModel.index(row, CPackageModel::kName, folder)));
      if (isChosen && first < 0) first = row;
      if (isChosen || first < 0) continue;
      selection.append({fModel.index(first, CPackageModel::kName, folder),
                        fModel.index(row - 1, CPackageModel::kRatio, folder)});
      first = -1;
    }
  }
  fAside.clear();
  const QSignalBlocker quiet(selectionModel());
  selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void CEntryView::resizeEvent(QResizeEvent* event) {
  QTreeView::resizeEvent(event);
  const int others = header()->length() - header()->sectionSize(CPackageModel::kName);
  header()->resizeSection(
      CPackageModel::kName,
      qMax(viewport()->width() - others, kLeastName * fontMetrics().averageCharWidth()));
}

}  // namespace NSTambraGui
