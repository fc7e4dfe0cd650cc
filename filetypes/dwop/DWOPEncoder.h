#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

#include "filetypes/dwop/DWOPBitWriter.h"
#include "filetypes/dwop/DWOPHeader.h"
#include "filetypes/dwop/DWOPPredictor.h"
#include "filetypes/dwop/SampleSource.h"

namespace NSTambraPacking {

/// Codes samples into the residual bit stream at the cursor, which must outlive the encoder. All
/// functions throw as Write of the cursor's media.
class CDWOPEncoder {
 public:
  /// `channels` is 1 or 2, else XFormatViolation.
  CDWOPEncoder(NSBigFilePackage::CMediaCursor& output, unsigned channels);

  /// Codes whole frames, left before right; the predictors go on from the last call. The bits do
  /// not depend on how the frames are spread over calls.
  void Encode(std::span<const std::int32_t> interleaved);

  /// Completes the last word and writes what is buffered; nothing may be coded after it.
  void Finish();

 private:
  void EncodeValue(CDWOPPredictor& predictor, std::uint32_t value);

  CDWOPBitWriter fWriter;
  unsigned fChannels;
  /// The left channel (or the only one), and the difference of right and left.
  std::array<CDWOPPredictor, 2> fPredictors;
};

/// Writes header and residual bit stream of fLength frames from `source`; the cursor moves on
/// behind them. `checkStop` is called before each block and stops the work by throwing. Throws
/// XFormatViolation for a header that cannot be written, and XRead when the source ends too early.
void EncodeDWOP(const CDWOPHeader& header, ISampleSource& source,
                NSBigFilePackage::CMediaCursor& output, const std::function<void()>& checkStop);

}  // namespace NSTambraPacking
