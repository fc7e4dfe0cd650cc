#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "filetypes/dwop/DWOPDecompressor.h"

namespace NSTambraPacking {

/// The least and the greatest sample of a stretch of frames, one channel's.
struct CSampleExtent {
  std::int32_t fLow = 0;
  std::int32_t fHigh = 0;
};

/// Sums a packed sample up for a picture of its waveform: it is cut into stretches of equal length,
/// and of each only the extents are kept. Decodes in order and piece by piece, in memory that does
/// not grow with the sample.
class CWaveformSummary {
 public:
  static constexpr std::size_t kMostStretches = 4096;

  /// Reads the header; throws as ReadDWOPHeader.
  explicit CWaveformSummary(NSBigFilePackage::SharedMedia stream);

  const CDWOPHeader& Header() const { return fHeader; }
  /// Of a frame; the last stretch may be shorter.
  std::uint64_t FramesInStretch() const { return fFramesInStretch; }
  std::size_t StretchCount() const;

  /// Decodes the next piece and returns the extents of the stretches that it completes, in order,
  /// the channels of each one behind the other. Throws as COptimizedDWOPDecompressor::Decode.
  std::vector<CSampleExtent> DecodeNext();
  bool IsAtEnd() const { return fDecoded == fHeader.fLength; }

 private:
  void Take(const std::int32_t* frame, std::vector<CSampleExtent>& completed);

  NSBigFilePackage::SharedMedia fStream;
  CDWOPHeader fHeader;
  std::unique_ptr<COptimizedDWOPDecompressorFromMedia> fDecompressor;
  std::uint64_t fFramesInStretch = 1;
  std::uint64_t fDecoded = 0;        ///< frames
  std::uint64_t fLeftInStretch = 0;  ///< frames until the stretch is complete
  std::vector<CSampleExtent> fStretch;
  std::vector<std::int32_t> fPiece;
};

}  // namespace NSTambraPacking
