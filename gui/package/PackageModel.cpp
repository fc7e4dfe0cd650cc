#include "gui/package/PackageModel.h"

#include <QApplication>
#include <QLocale>
#include <QStyle>
#include <algorithm>
#include <array>

#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/PackageTextNumbers.h"
#include "gui/QtText.h"

namespace NSTambraGui {

CPackageModel::CPackageModel(const NSTambraPacking::CTextResources& texts, QObject* parent)
    : QAbstractItemModel(parent), fTexts(texts) {}

void CPackageModel::SetListing(std::shared_ptr<const CPackageListing> listing) {
  beginResetModel();
  fListing = std::move(listing);
  const NSTambraPacking::CEntryTree& tree = fListing->fContents->Tree();
  fSizes.assign(tree.NodeCount(), std::nullopt);
  fPackedSizes.assign(tree.NodeCount(), 0);
  // A folder has a lower number than what lies in it.
  for (Node node = tree.NodeCount(); --node > 0;) {
    if (!fListing->IsFolder(node)) {
      fPackedSizes[node] = fListing->fContents->EntryAt(node)->Data()->Size();
    }
    fPackedSizes[tree.Parent(node)] += fPackedSizes[node];
  }
  Arrange();
  endResetModel();
}

void CPackageModel::SetSizes(Node first, const Sizes& sizes) {
  std::copy(sizes.begin(), sizes.end(), fSizes.begin() + first);
  const bool isLast = first + sizes.size() == fSizes.size();
  if (isLast) SumFolders();
  if (isLast && (fSortColumn == kSize || fSortColumn == kRatio)) {
    sort(fSortColumn, fSortOrder);
  }
  // A view draws all that it shows anew, however many the rows are.
  if (rowCount() > 0) emit dataChanged(index(0, kSize), index(rowCount() - 1, kRatio));
}

void CPackageModel::SumFolders() {
  std::vector<bool> isKnown(fSizes.size(), true);
  for (Node node = static_cast<Node>(fSizes.size()); --node > 0;) {
    const Node parent = fListing->fContents->Tree().Parent(node);
    if (fListing->IsFolder(node) && isKnown[node] && !fSizes[node]) fSizes[node] = 0;
    if (fSizes[node] && isKnown[node]) {
      fSizes[parent] = fSizes[parent].value_or(0) + *fSizes[node];
    } else {
      isKnown[parent] = false;
    }
    if (!isKnown[node]) fSizes[node].reset();
  }
}

void CPackageModel::SetFilter(const QString& text, std::optional<std::int32_t> type) {
  beginResetModel();
  fFilterText = NSTolbrook::ComparisonKey(FromQt(text));
  fFilterType = type;
  if (fListing) Arrange();
  endResetModel();
}

bool CPackageModel::Passes(Node node) const {
  if (fListing->IsFolder(node)) return fFilterText.empty() && !fFilterType;
  if (fFilterType && fListing->fContents->EntryAt(node)->TypeCode() != *fFilterType) return false;
  return fListing->fFolded[node].find(fFilterText) != std::u16string::npos;
}

void CPackageModel::Arrange() {
  const Node count = fListing->fContents->Tree().NodeCount();
  fChildren.assign(count, {});
  fRows.assign(count, -1);
  fShownFileCount = 0;
  std::vector<bool> isShown(count);
  for (Node node = count; --node > 0;) {
    if (!fListing->fIsShown[node]) continue;
    isShown[node] = isShown[node] || Passes(node);
    if (!isShown[node]) continue;
    if (!fListing->IsFolder(node)) ++fShownFileCount;
    isShown[fListing->fShownParents[node]] = true;
    fChildren[fListing->fShownParents[node]].push_back(node);
  }
  Sort();
}

bool CPackageModel::ComesBefore(Node left, Node right) const {
  const bool isFolder = fListing->IsFolder(left);
  if (isFolder != fListing->IsFolder(right)) return isFolder;
  const auto byName = [&] { return fListing->fRanks[left] < fListing->fRanks[right]; };
  const auto decide = [&](const auto& a, const auto& b) {
    if (a == b) return byName();
    return fSortOrder == Qt::AscendingOrder ? a < b : b < a;
  };
  switch (fSortColumn) {
    case kType:
      return decide(fListing->fTypeRanks[left], fListing->fTypeRanks[right]);
    case kSize:
      return decide(fSizes[left], fSizes[right]);
    case kPacked:
      return decide(fPackedSizes[left], fPackedSizes[right]);
    case kRatio:
      return decide(Ratio(left), Ratio(right));
    default:
      return decide(fListing->fRanks[left], fListing->fRanks[right]);
  }
}

void CPackageModel::Sort() {
  for (std::vector<Node>& children : fChildren) {
    std::sort(children.begin(), children.end(),
              [this](Node left, Node right) { return ComesBefore(left, right); });
    for (std::size_t row = 0; row < children.size(); ++row) {
      fRows[children[row]] = static_cast<int>(row);
    }
  }
}

void CPackageModel::sort(int column, Qt::SortOrder order) {
  fSortColumn = column;
  fSortOrder = order;
  if (!fListing) return;
  emit AboutToSort();
  emit layoutAboutToBeChanged({}, VerticalSortHint);
  Sort();
  const QModelIndexList before = persistentIndexList();
  QModelIndexList after;
  for (const QModelIndex& index : before) {
    after.append(createIndex(fRows[NodeOf(index)], index.column(), index.internalId()));
  }
  changePersistentIndexList(before, after);
  emit layoutChanged({}, VerticalSortHint);
  emit Sorted();
}

CPackageModel::Node CPackageModel::NodeOf(const QModelIndex& index) const {
  return index.isValid() ? static_cast<Node>(index.internalId())
                         : NSTambraPacking::CEntryTree::kRoot;
}

QModelIndex CPackageModel::IndexOf(Node node) const {
  if (node == NSTambraPacking::CEntryTree::kRoot || fRows[node] < 0) return {};
  return createIndex(fRows[node], kName, quintptr{node});
}

QModelIndexList CPackageModel::ShownFolders() const {
  QModelIndexList folders;
  for (Node node = 1; node < fChildren.size(); ++node) {
    if (!fChildren[node].empty()) folders.append(IndexOf(node));
  }
  return folders;
}

QModelIndex CPackageModel::index(int row, int column, const QModelIndex& parent) const {
  if (!hasIndex(row, column, parent)) return {};
  return createIndex(row, column,
                     quintptr{fChildren[NodeOf(parent)][static_cast<std::size_t>(row)]});
}

QModelIndex CPackageModel::parent(const QModelIndex& index) const {
  if (!index.isValid()) return {};
  return IndexOf(fListing->fShownParents[NodeOf(index)]);
}

int CPackageModel::rowCount(const QModelIndex& parent) const {
  if (!fListing || parent.column() > 0) return 0;
  return static_cast<int>(fChildren[NodeOf(parent)].size());
}

std::optional<double> CPackageModel::Ratio(Node node) const {
  const std::optional<std::uint64_t>& size = fSizes[node];
  if (!size || *size == 0) return std::nullopt;
  return static_cast<double>(fPackedSizes[node]) / static_cast<double>(*size);
}

QString CPackageModel::Text(Node node, int column) const {
  switch (column) {
    case kType:
      return fListing->TypeName(node);
    case kSize:
      return fSizes[node] ? SizeText(*fSizes[node]) : QString();
    case kPacked:
      return SizeText(fPackedSizes[node]);
    case kRatio: {
      const std::optional<double> ratio = Ratio(node);
      return ratio ? QLocale().toString(100 * *ratio, 'f', 0) + QStringLiteral(" %") : QString();
    }
    default:
      return fListing->fNames[node];
  }
}

/// A view need not ask for what is in each file.
Qt::ItemFlags CPackageModel::flags(const QModelIndex& index) const {
  const Qt::ItemFlags flags = QAbstractItemModel::flags(index);
  return index.isValid() && !fListing->IsFolder(NodeOf(index)) ? flags | Qt::ItemNeverHasChildren
                                                               : flags;
}

QVariant CPackageModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const Node node = NodeOf(index);
  if (role == Qt::DisplayRole) return Text(node, index.column());
  if (role == Qt::TextAlignmentRole && index.column() >= kSize) {
    return QVariant(Qt::AlignRight | Qt::AlignVCenter);
  }
  if (role == Qt::DecorationRole && index.column() == kName) {
    return QApplication::style()->standardIcon(fListing->IsFolder(node) ? QStyle::SP_DirIcon
                                                                        : QStyle::SP_FileIcon);
  }
  if (role == Qt::ToolTipRole && index.column() <= kType) {
    return ToolTipOf(Text(node, index.column()));
  }
  if (role == Qt::ToolTipRole && index.column() == kSize && fSizes[node]) {
    return QLocale().toString(static_cast<qulonglong>(*fSizes[node]));
  }
  if (role == Qt::ToolTipRole && index.column() == kPacked) {
    return QLocale().toString(static_cast<qulonglong>(fPackedSizes[node]));
  }
  return {};
}

QVariant CPackageModel::headerData(int section, Qt::Orientation orientation, int role) const {
  using namespace NSTambraPacking;
  if (orientation != Qt::Horizontal) return {};
  if (role == Qt::TextAlignmentRole) {
    return QVariant((section >= kSize ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
  }
  static constexpr std::array kTitles = {kInfoName, kColumnType, kInfoSize, kColumnPacked,
                                         kColumnRatio};
  if (role != Qt::DisplayRole) return {};
  return ToQt(fTexts.Text(kTitles.at(static_cast<std::size_t>(section))));
}

}  // namespace NSTambraGui
