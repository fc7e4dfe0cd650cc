#include "gui/package/WaveformView.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "app/EntryDetails.h"
#include "app/PackageTextNumbers.h"
#include "gui/QtText.h"

namespace NSTambraGui {

namespace {

constexpr qreal kMargin = 4;  // pixels

QColor Faint(QColor colour, qreal opacity) {
  colour.setAlphaF(static_cast<float>(opacity));
  return colour;
}

}  // namespace

CWaveformView::CWaveformView(const NSTambraPacking::CTextResources& texts, QWidget* parent)
    : QWidget(parent), fTexts(texts) {
  setAccessibleName(ToQt(fTexts.Text(NSTambraPacking::kWaveformName)));
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
}

void CWaveformView::Begin(const NSTambraPacking::CDWOPHeader& header) {
  fHeader = header;
  fStretchCount = 0;
  fExtents.clear();
  setAccessibleDescription(ToQt(fTexts.Text(NSTambraPacking::kSampleLoop)) + QStringLiteral(": ") +
                           ToQt(NSTambraPacking::LoopText(fTexts, header)));
  update();
}

void CWaveformView::Add(std::size_t stretchCount,
                        const std::vector<NSTambraPacking::CSampleExtent>& extents) {
  fStretchCount = stretchCount;
  fExtents.insert(fExtents.end(), extents.begin(), extents.end());
  update();
}

bool CWaveformView::HasLoop() const {
  return fHeader.fLoopMode != 0 && fHeader.fLoopStart < fHeader.fLoopEnd &&
         fHeader.fLoopEnd <= fHeader.fLength;
}

void CWaveformView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().base());
  painter.setPen(Faint(palette().color(QPalette::Text), 0.25));
  painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
  const qreal noteHeight = fontMetrics().height() + kMargin;
  const QRectF area = QRectF(rect()).adjusted(kMargin, kMargin + noteHeight, -kMargin, -kMargin);
  if (area.height() < 8) return;
  PaintLoop(painter, area);
  const qreal height = area.height() / fHeader.fChannels;
  for (std::size_t channel = 0; channel < fHeader.fChannels; ++channel) {
    const QRectF lane(area.left(), area.top() + height * static_cast<qreal>(channel), area.width(),
                      height);
    PaintLane(painter, lane.adjusted(0, 2, 0, -2), channel);
  }
  PaintNotes(painter, area);
}

void CWaveformView::PaintLane(QPainter& painter, const QRectF& lane, std::size_t channel) const {
  const qreal middle = lane.center().y();
  painter.setPen(Faint(palette().color(QPalette::Text), 0.25));
  painter.drawLine(QPointF(lane.left(), middle), QPointF(lane.right(), middle));
  if (fStretchCount == 0) return;
  const std::size_t channels = fHeader.fChannels;
  const std::size_t known = fExtents.size() / channels;
  const qreal scale = lane.height() / 2 / std::ldexp(1.0, fHeader.fWidth - 1);
  // One line for each pixel of the screen, or for each stretch when those are fewer.
  const auto pixels = static_cast<std::size_t>(std::ceil(lane.width() * devicePixelRatioF()));
  const std::size_t columns = std::min(pixels, fStretchCount);
  QList<QLineF> lines;
  QPointF last;
  for (std::size_t column = 0; column < columns; ++column) {
    const std::size_t begin = column * fStretchCount / columns;
    const std::size_t end = std::min(known, (column + 1) * fStretchCount / columns);
    if (begin >= end) break;
    NSTambraPacking::CSampleExtent extent = fExtents[begin * channels + channel];
    for (std::size_t i = begin + 1; i < end; ++i) {
      extent.fLow = std::min(extent.fLow, fExtents[i * channels + channel].fLow);
      extent.fHigh = std::max(extent.fHigh, fExtents[i * channels + channel].fHigh);
    }
    const qreal x = lane.left() +
                    (static_cast<qreal>(column) + 0.5) * lane.width() / static_cast<qreal>(columns);
    const QPointF high(x, middle - extent.fHigh * scale);
    const QPointF low(x, middle - extent.fLow * scale);
    if (column > 0) lines.append(QLineF(last, high));
    lines.append(QLineF(high, low));
    last = low;
  }
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(palette().color(QPalette::Text), 1 / devicePixelRatioF()));
  painter.drawLines(lines);
  painter.setRenderHint(QPainter::Antialiasing, false);
}

void CWaveformView::PaintLoop(QPainter& painter, const QRectF& area) const {
  if (!HasLoop()) return;
  const auto x = [&](std::uint32_t frame) {
    return area.left() + area.width() * frame / fHeader.fLength;
  };
  const QRectF loop(QPointF(x(fHeader.fLoopStart), area.top()),
                    QPointF(x(fHeader.fLoopEnd), area.bottom()));
  const QColor colour = palette().color(QPalette::Highlight);
  painter.fillRect(loop, Faint(colour, 0.2));
  painter.setPen(QPen(colour, 2));
  painter.drawLine(loop.topLeft(), loop.bottomLeft());
  painter.drawLine(loop.topRight(), loop.bottomRight());
}

void CWaveformView::PaintNotes(QPainter& painter, const QRectF& area) const {
  using namespace NSTambraPacking;
  const QRectF line(area.left(), kMargin, area.width(), fontMetrics().height());
  painter.setPen(palette().color(QPalette::Text));
  const auto labelled = [this](CStringNumber label, const std::u16string& value) {
    return ToQt(fTexts.Text(label)) + QStringLiteral(": ") + ToQt(value);
  };
  QString notes = labelled(kSampleRootKey, KeyText(fTexts, fHeader.fRootKey));
  if (HasLoop()) {
    notes += QStringLiteral("   ") + labelled(kSampleLoop, LoopText(fTexts, fHeader));
  }
  painter.drawText(line, Qt::AlignLeft, notes);
  if (fStretchCount == 0 || IsComplete()) return;
  const std::size_t percent = 100 * fExtents.size() / (fStretchCount * fHeader.fChannels);
  painter.drawText(line, Qt::AlignRight,
                   ToQt(fTexts.Text(kWaveformDecoding, {FromQt(QString::number(percent))})));
}

}  // namespace NSTambraGui
