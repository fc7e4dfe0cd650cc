#pragma once

#include <QAbstractItemModel>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "gui/package/PackageListing.h"

namespace NSTambraGui {

/// The tree of a package's entries, filtered and sorted. An index's internal id is its node.
class CPackageModel : public QAbstractItemModel {
  Q_OBJECT

 public:
  using Node = CPackageListing::Node;
  enum EColumn { kName, kType, kSize, kPacked, kRatio, kColumnCount };

  CPackageModel(const NSTambraPacking::CTextResources& texts, QObject* parent);

  void SetListing(std::shared_ptr<const CPackageListing> listing);
  /// What the files from node `first` on will be once they are extracted, in bytes; folders and
  /// files that cannot be read have none.
  void SetSizes(Node first, const std::vector<std::optional<std::uint64_t>>& sizes);
  /// Shows files whose path holds `text`, in any case, and which are of the type.
  void SetFilter(const QString& text, std::optional<std::int32_t> type);

  Node NodeOf(const QModelIndex& index) const;
  /// Invalid for the root and for what is not shown.
  QModelIndex IndexOf(Node node) const;
  /// Those that hold something that is shown, outer ones first.
  QModelIndexList ShownFolders() const;
  /// Files, without the folders.
  std::size_t ShownFileCount() const { return fShownFileCount; }

  QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  QModelIndex parent(const QModelIndex& index) const override;
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& = {}) const override { return kColumnCount; }
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  void sort(int column, Qt::SortOrder order) override;

 signals:
  void AboutToSort();
  void Sorted();

 private:
  using Sizes = std::vector<std::optional<std::uint64_t>>;

  QString Text(Node node, int column) const;
  std::optional<double> Ratio(Node node) const;
  bool Passes(Node node) const;
  void Arrange();
  void Sort();
  bool ComesBefore(Node left, Node right) const;
  void SumFolders();

  const NSTambraPacking::CTextResources& fTexts;
  std::shared_ptr<const CPackageListing> fListing;
  Sizes fSizes;  ///< of files and, once all below them are known, of folders
  std::vector<std::uint64_t> fPackedSizes;
  std::vector<std::vector<Node>> fChildren;  ///< those shown, in their order
  std::vector<int> fRows;                    ///< -1 for what is not shown
  std::size_t fShownFileCount = 0;
  std::u16string fFilterText;
  std::optional<std::int32_t> fFilterType;
  int fSortColumn = kName;
  Qt::SortOrder fSortOrder = Qt::AscendingOrder;
};

}  // namespace NSTambraGui
