#pragma once

#include <QLabel>

#include "app/TextResources.h"
#include "gui/SplashFile.h"

namespace NSTambraGui {

/// The splash picture at its size; takes pictures that are dropped on it.
class CSplashView : public QLabel {
  Q_OBJECT

 public:
  /// The texts must outlive the view.
  CSplashView(const NSTambraPacking::CTextResources& texts, QWidget* parent);

  /// A picture without pixels stands for none.
  void Show(const CSplashPicture& splash);
  QSize PictureSize() const { return fSize; }

 signals:
  void Dropped(const QString& path);

 protected:
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  const NSTambraPacking::CTextResources& fTexts;
  QSize fSize;
};

}  // namespace NSTambraGui
