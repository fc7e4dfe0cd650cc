#include "app/WaveformSummary.h"

#include <algorithm>
#include <limits>
#include <span>
#include <utility>

namespace NSTambraPacking {

namespace {

/// What every sample widens.
constexpr CSampleExtent kNothing{std::numeric_limits<std::int32_t>::max(),
                                 std::numeric_limits<std::int32_t>::min()};

}  // namespace

CWaveformSummary::CWaveformSummary(NSBigFilePackage::SharedMedia stream)
    : fStream(std::move(stream)) {
  NSBigFilePackage::CMediaCursor input(*fStream);
  fHeader = ReadDWOPHeader(input);
  fDecompressor =
      std::make_unique<COptimizedDWOPDecompressorFromMedia>(fHeader, *fStream, input.Position());
  fFramesInStretch = std::max<std::uint64_t>(
      1, (std::uint64_t{fHeader.fLength} + kMostStretches - 1) / kMostStretches);
  fLeftInStretch = fFramesInStretch;
  fStretch.assign(fHeader.fChannels, kNothing);
  fPiece.resize(kDWOPBlockFrames * fHeader.fChannels);
}

std::size_t CWaveformSummary::StretchCount() const {
  return static_cast<std::size_t>((fHeader.fLength + fFramesInStretch - 1) / fFramesInStretch);
}

std::vector<CSampleExtent> CWaveformSummary::DecodeNext() {
  std::vector<CSampleExtent> completed;
  const auto frames = static_cast<std::size_t>(
      std::min<std::uint64_t>(fHeader.fLength - fDecoded, kDWOPBlockFrames));
  fDecompressor->Decode(std::span(fPiece).first(frames * fHeader.fChannels));
  for (std::size_t i = 0; i < frames; ++i) Take(&fPiece[i * fHeader.fChannels], completed);
  return completed;
}

void CWaveformSummary::Take(const std::int32_t* frame, std::vector<CSampleExtent>& completed) {
  for (std::size_t channel = 0; channel < fStretch.size(); ++channel) {
    CSampleExtent& extent = fStretch[channel];
    extent.fLow = std::min(extent.fLow, frame[channel]);
    extent.fHigh = std::max(extent.fHigh, frame[channel]);
  }
  ++fDecoded;
  if (--fLeftInStretch > 0 && !IsAtEnd()) return;
  completed.insert(completed.end(), fStretch.begin(), fStretch.end());
  fStretch.assign(fStretch.size(), kNothing);
  fLeftInStretch = fFramesInStretch;
}

}  // namespace NSTambraPacking
