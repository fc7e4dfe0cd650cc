#pragma once

#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QTreeView>
#include <memory>

#include "app/EntryDetails.h"
#include "gui/package/BackgroundTask.h"
#include "gui/package/DetailItemModel.h"
#include "gui/package/PackageListing.h"
#include "gui/package/PictureView.h"
#include "gui/package/SamplePlayer.h"
#include "gui/package/WaveformView.h"

namespace NSTambraGui {

/// What there is to see of the chosen entry. It is read and decoded beside the window's thread,
/// until another one is chosen.
class CDetailsPane : public QScrollArea {
  Q_OBJECT

 public:
  using Node = CPackageListing::Node;

  /// The texts must outlive the pane.
  CDetailsPane(const NSTambraPacking::CTextResources& texts, QWidget* parent);

  /// The package itself for the root, for a folder how much it holds.
  void Show(std::shared_ptr<const CPackageListing> listing, Node node);

 signals:
  /// The user follows a reference to the entry of this path.
  void Followed(const QString& path);

 private:
  void Clear(const QString& title);
  void ShowFolder(const CPackageListing& listing, Node node);
  void ShowDetails(NSTambraPacking::CEntryDetails details, const QImage& picture);
  void AddLine(const QString& label, const QString& value);
  void ShowFault(const QString& text);
  void ShowFailure(const std::exception_ptr& failure);
  void Follow(const QModelIndex& index);

  const NSTambraPacking::CTextResources& fTexts;
  CBackgroundTask fTask;
  QLabel* fTitle;
  CWaveformView* fWaveform;
  CSamplePlayer* fPlayer;
  CPictureView* fPicture;
  QFormLayout* fLines;
  QLabel* fFault;
  QLabel* fItemsTitle;
  QTreeView* fItems;
  CDetailItemModel* fItemModel;
};

}  // namespace NSTambraGui
