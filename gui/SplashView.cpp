#include "gui/SplashView.h"

#include <QDragEnterEvent>
#include <QMimeData>

#include "gui/FolderChooser.h"
#include "gui/QtText.h"
#include "gui/WindowTexts.h"
#include "package/SplashCheck.h"

namespace NSTambraGui {

namespace {

constexpr int kEdge = static_cast<int>(NSTambraPacking::kSplashEdge);
/// A picture of another size is shown up to this one; its tool tip tells the size.
constexpr int kMostShown = 128;

}  // namespace

CSplashView::CSplashView(const NSTambraPacking::CTextResources& texts, QWidget* parent)
    : QLabel(parent), fTexts(texts) {
  setAcceptDrops(true);
  setAlignment(Qt::AlignCenter);
  setFrameShape(QFrame::StyledPanel);
  setWordWrap(true);
  setMinimumSize(kEdge + 2 * frameWidth() + 24, kEdge + 2 * frameWidth() + 24);
  setAccessibleName(ToQt(texts.Text(kTextSplash)));
  Show({});
}

void CSplashView::Show(const CSplashPicture& splash) {
  const QImage& picture = splash.fImage;
  fSize = splash.fSize;
  if (picture.isNull()) {
    setText(ToQt(fTexts.Text(kTextNoSplash)));
    setToolTip({});
  } else {
    const bool isLarge = picture.width() > kMostShown || picture.height() > kMostShown;
    setPixmap(QPixmap::fromImage(
        isLarge
            ? picture.scaled(kMostShown, kMostShown, Qt::KeepAspectRatio, Qt::SmoothTransformation)
            : picture));
    setToolTip(ToQt(fTexts.Text(kTextSplashSize, {FromQt(QString::number(fSize.width())),
                                                  FromQt(QString::number(fSize.height()))})));
  }
  setAccessibleDescription(picture.isNull() ? text() : toolTip());
}

void CSplashView::dragEnterEvent(QDragEnterEvent* event) {
  if (QFileInfo(DraggedPath(*event->mimeData())).isFile()) event->acceptProposedAction();
}

void CSplashView::dropEvent(QDropEvent* event) {
  event->acceptProposedAction();
  emit Dropped(DraggedPath(*event->mimeData()));
}

}  // namespace NSTambraGui
