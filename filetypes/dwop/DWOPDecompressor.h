#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "filetypes/dwop/DWOPHeader.h"
#include "filetypes/dwop/DWOPPredictor.h"
#include "filetypes/dwop/DWOPWordSource.h"

namespace NSTambraPacking {

/// Decodes a residual bit stream. A derived class supplies its words.
class COptimizedDWOPDecompressor {
 public:
  virtual ~COptimizedDWOPDecompressor() = default;

  /// Decodes the next whole frames, left before right, each sample right-justified in the header's
  /// width and sign-extended. Throws XFormatViolation "zero length sample" when the words end
  /// before the frames, and for an escape that no encoder writes. After a fault the samples and the
  /// decompressor's state are unspecified.
  void Decode(std::span<std::int32_t> interleaved);

  /// The words of which at least one bit was used: after the last frame, the length of the residual
  /// bit stream.
  std::uint64_t WordsConsumed() const { return fWordsConsumed; }

 protected:
  /// Decodes channels and width of `header`.
  explicit COptimizedDWOPDecompressor(const CDWOPHeader& header);
  COptimizedDWOPDecompressor(const COptimizedDWOPDecompressor&) = delete;
  COptimizedDWOPDecompressor& operator=(const COptimizedDWOPDecompressor&) = delete;

  /// The next words, at least one, valid until the next call; throws when there are none.
  virtual std::span<const std::uint32_t> ReadWords() = 0;

 private:
  void Refill();
  std::uint32_t ReadBits(unsigned count);
  /// Zero bits up to seven; fewer than seven are followed by a one bit, which is taken too.
  std::uint32_t ReadZeros();
  std::uint32_t ReadResidual(std::uint32_t modulus);
  std::uint32_t DecodeValue(CDWOPPredictor& predictor);
  std::int32_t Narrow(std::uint32_t value) const;

  unsigned fChannels;
  unsigned fWidth;
  std::array<CDWOPPredictor, 2> fPredictors;
  std::span<const std::uint32_t> fWords;
  std::uint64_t fWordsConsumed = 0;
  /// The next fAvailable (0 to 63) bits of the stream, the first in the highest bit; zeros below.
  std::uint64_t fBits = 0;
  unsigned fAvailable = 0;
};

/// Decodes the residual bit stream that begins at a position of a media, which must outlive it.
class COptimizedDWOPDecompressorFromMedia final : public COptimizedDWOPDecompressor {
 public:
  COptimizedDWOPDecompressorFromMedia(const CDWOPHeader& header,
                                      const NSBigFilePackage::IMedia& media,
                                      std::uint64_t position);

 private:
  std::span<const std::uint32_t> ReadWords() override;

  CDWOPWordSource fSource;
};

}  // namespace NSTambraPacking
