#include "gui/package/PictureView.h"

#include <QPainter>
#include <utility>

namespace NSTambraGui {

void CPictureView::SetImage(QImage image) {
  fImage = std::move(image);
  updateGeometry();
  update();
}

QSize CPictureView::sizeHint() const {
  return fImage.size().scaled(fImage.size().boundedTo({480, 360}), Qt::KeepAspectRatio);
}

int CPictureView::heightForWidth(int width) const {
  return fImage.size()
      .scaled(sizeHint().boundedTo({width, sizeHint().height()}), Qt::KeepAspectRatio)
      .height();
}

void CPictureView::paintEvent(QPaintEvent*) {
  if (fImage.isNull()) return;
  QPainter painter(this);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  const QSize shown = fImage.size().scaled(fImage.size().boundedTo(size()), Qt::KeepAspectRatio);
  painter.drawImage(QRect(QPoint(0, 0), shown), fImage);
}

}  // namespace NSTambraGui
