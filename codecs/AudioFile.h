#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "codecs/AudioFormat.h"
#include "codecs/SampleDecoder.h"
#include "codecs/SamplePacking.h"

namespace NSTambraPacking {

/// A WAVE or AIFF file that is read from its first frame to its last, in memory that does not grow
/// with its length.
class CAudioFile {
 public:
  /// Throws as ReadWAVEHeader and ReadAIFFHeader.
  static CAudioFile Open(NSBigFilePackage::SharedMedia media, EAudioContainer container);

  const CAudioFormat& Format() const { return fHeader.fFormat; }
  const CInstrument& Instrument() const { return fHeader.fInstrument; }
  const CSampleChunkLayout& Layout() const { return fHeader.fLayout; }

  /// Fills `interleaved` with the next whole frames, right-justified integers of the format's
  /// CodedWidth(), sign-extended. Returns the number of frames: interleaved.size() / channels, or
  /// what is left when that is less; 0 at the end, and always when there are no channels. Throws
  /// XRead when the media fails or has been cut meanwhile.
  std::size_t ReadFrames(std::span<std::int32_t> interleaved);

  /// How the file holds its samples, when those are integers of 16 or 24 bits, which need no
  /// decoding; else nothing.
  std::optional<ESamplePacking> Packing() const;

  /// As ReadFrames, but as the file holds them, for a file with a packing. A file is read in one of
  /// both ways.
  std::size_t ReadPacked(std::span<std::uint8_t> interleaved);

 private:
  CAudioFile(NSBigFilePackage::SharedMedia media, const CAudioHeader& header);

  /// Takes as many of the frames that are left as `most`.
  std::size_t TakeFrames(std::size_t most);

  NSBigFilePackage::SharedMedia fMedia;
  CAudioHeader fHeader;
  std::uint64_t fFramesLeft;
  /// Made by the first read.
  std::unique_ptr<ISampleDecoder> fDecoder;
};

}  // namespace NSTambraPacking
