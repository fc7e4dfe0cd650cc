#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "filetypes/dwop/DWOPDecodeState.h"
#include "filetypes/dwop/DWOPForm.h"
#include "filetypes/dwop/DWOPHeader.h"
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
  std::uint64_t WordsConsumed() const;

 protected:
  /// Decodes channels and width of `header`, by a form that this processor must be able to run.
  COptimizedDWOPDecompressor(const CDWOPHeader& header, EDWOPForm form);
  COptimizedDWOPDecompressor(const COptimizedDWOPDecompressor&) = delete;
  COptimizedDWOPDecompressor& operator=(const COptimizedDWOPDecompressor&) = delete;

  /// Reads the bytes of the next whole words to the front of `destination` and returns their
  /// number: 0 behind the last word only.
  virtual std::size_t ReadWords(std::span<std::uint8_t> destination) = 0;

 private:
  /// Moves on in the stream; the buffer holds kFewBytes or more afterwards, or the stream's end.
  void TakeWords();
  /// Decodes some of the frames, 0 when the next one is not for the kernels.
  std::size_t DecodeBulk(std::int32_t* output, std::size_t frames);

  EDWOPForm fForm;
  /// So many frames are to be decoded by themselves.
  std::size_t fFramesApart = 0;
  CDWOPDecodeState fState;
  /// The bytes of the stream that fState decodes, and a few that were read before them.
  std::unique_ptr<std::uint8_t[]> fBuffer;
  /// Bytes that are no longer in the buffer.
  std::uint64_t fPassedBytes = 0;
  bool fAtEnd = false;
};

/// Decodes the residual bit stream that begins at a position of a media, which must outlive it.
class COptimizedDWOPDecompressorFromMedia final : public COptimizedDWOPDecompressor {
 public:
  COptimizedDWOPDecompressorFromMedia(const CDWOPHeader& header,
                                      const NSBigFilePackage::IMedia& media, std::uint64_t position,
                                      EDWOPForm form = FastestDWOPForm());

 private:
  std::size_t ReadWords(std::span<std::uint8_t> destination) override;

  CDWOPWordSource fSource;
};

}  // namespace NSTambraPacking
