#pragma once

#include <QRectF>
#include <QWidget>
#include <vector>

#include "app/TextResources.h"
#include "app/WaveformSummary.h"

class QPainter;

namespace NSTambraGui {

/// Draws a sample's waveform, a lane for each channel, with its loop, as far as it is decoded.
class CWaveformView : public QWidget {
  Q_OBJECT

 public:
  CWaveformView(const NSTambraPacking::CTextResources& texts, QWidget* parent);

  /// Shows a sample of which nothing is decoded yet.
  void Begin(const NSTambraPacking::CDWOPHeader& header);
  /// How many stretches the sample is cut into, and the next ones, as CWaveformSummary hands them
  /// out.
  void Add(std::size_t stretchCount, const std::vector<NSTambraPacking::CSampleExtent>& extents);
  bool IsComplete() const { return fStretchCount * fHeader.fChannels == fExtents.size(); }

  QSize sizeHint() const override { return {420, 160}; }
  QSize minimumSizeHint() const override { return {160, 90}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void PaintLane(QPainter& painter, const QRectF& lane, std::size_t channel) const;
  void PaintLoop(QPainter& painter, const QRectF& area) const;
  void PaintNotes(QPainter& painter, const QRectF& area) const;
  bool HasLoop() const;

  const NSTambraPacking::CTextResources& fTexts;
  NSTambraPacking::CDWOPHeader fHeader;
  std::size_t fStretchCount = 0;
  std::vector<NSTambraPacking::CSampleExtent> fExtents;  ///< channels one behind the other
};

}  // namespace NSTambraGui
