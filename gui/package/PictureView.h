#pragma once

#include <QImage>
#include <QWidget>

namespace NSTambraGui {

/// Shows a picture at its size, or smaller where there is less room.
class CPictureView : public QWidget {
  Q_OBJECT

 public:
  explicit CPictureView(QWidget* parent) : QWidget(parent) {}

  void SetImage(QImage image);

  QSize sizeHint() const override;
  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QImage fImage;
};

}  // namespace NSTambraGui
