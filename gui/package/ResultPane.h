#pragma once

#include <QLabel>
#include <QStandardItemModel>
#include <QTreeView>
#include <QWidget>
#include <vector>

#include "app/TextResources.h"

namespace NSTambraGui {

/// A line of what a verification, comparison or extraction found.
struct CResultLine {
  QString fWhat;
  QString fName;    ///< harmless to show
  QString fDetail;  ///< what is told beside it; may have lines
  QString fPath;    ///< of the entry that the line is about; empty when about none of this package
};

/// What was found, as a list from which the user goes to the entries.
class CResultPane : public QWidget {
  Q_OBJECT

 public:
  /// The texts must outlive the pane.
  CResultPane(const NSTambraPacking::CTextResources& texts, QWidget* parent);

  /// Shows the pane without lines.
  void Begin(const QString& heading);
  void Add(const std::vector<CResultLine>& lines);
  void SetHeading(const QString& heading) { fHeading->setText(heading); }
  QString Heading() const { return fHeading->text(); }

  /// With all lines that the heading has at the present width: the splitter around the pane asks
  /// for no more than this, and takes a wrapped text for one line.
  QSize minimumSizeHint() const override;
  QSize sizeHint() const override;

 signals:
  void Followed(const QString& path);

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void Follow(const QModelIndex& index);

  QLabel* fHeading;
  QTreeView* fList;
  QStandardItemModel* fModel;
};

}  // namespace NSTambraGui
