#include "gui/ElidedLabel.h"

#include <QEvent>

#include "gui/QtText.h"

namespace NSTambraGui {

CElidedLabel::CElidedLabel(int lines, QWidget* parent) : QLabel(parent), fLines(lines) {
  setTextFormat(Qt::PlainText);
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  setAlignment(Qt::AlignTop | Qt::AlignLeft);
  Fit();
}

void CElidedLabel::SetWholeText(const QString& text) {
  if (text == fWhole) return;
  fWhole = text;
  setAccessibleName(text);
  Fit();
}

void CElidedLabel::resizeEvent(QResizeEvent* event) {
  QLabel::resizeEvent(event);
  Fit();
}

void CElidedLabel::changeEvent(QEvent* event) {
  QLabel::changeEvent(event);
  if (event->type() == QEvent::FontChange) Fit();
}

void CElidedLabel::Fit() {
  setMinimumHeight(fontMetrics().lineSpacing() * fLines);
  QStringList lines = fWhole.split('\n');
  for (QString& line : lines) line = fontMetrics().elidedText(line, Qt::ElideMiddle, width());
  const QString shown = lines.join('\n');
  setToolTip(shown == fWhole ? QString() : ToolTipOf(fWhole));
  setText(shown);
}

}  // namespace NSTambraGui
