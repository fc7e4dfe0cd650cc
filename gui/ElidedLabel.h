#pragma once

#include <QLabel>

namespace NSTambraGui {

/// Lines of plain text, each cut in its middle where it is wider than the label, which never asks
/// for more width than it gets. The tool tip and programs for blind users have the whole text.
class CElidedLabel : public QLabel {
 public:
  /// Keeps the room of as many lines, whether they are there or not.
  explicit CElidedLabel(int lines, QWidget* parent = nullptr);

  void SetWholeText(const QString& text);

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void Fit();

  int fLines;
  QString fWhole;
};

}  // namespace NSTambraGui
