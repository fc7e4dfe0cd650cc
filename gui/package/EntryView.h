#pragma once

#include <QTreeView>

#include "gui/package/PackageModel.h"

namespace NSTambraGui {

/// The tree of a package's entries. The names have what room the other columns leave, and never so
/// little that they cannot be read.
class CEntryView : public QTreeView {
  Q_OBJECT

 public:
  using Node = CPackageModel::Node;

  CEntryView(CPackageModel& model, QWidget* parent);

  /// Those whose rows are selected.
  std::vector<Node> ChosenNodes() const;

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void PutAside();
  void TakeBack();

  CPackageModel& fModel;
  std::vector<Node> fAside;  ///< chosen, while the model is sorted
};

}  // namespace NSTambraGui
