#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/Media.h"

#include "codecs/AudioFormat.h"

namespace NSTambraPacking {

/// How one sample of one channel is stored.
struct CSampleForm {
  ESampleCoding fCoding = ESampleCoding::kSigned;
  /// Integers 1 to 4 (the value stands in the highest bits), floats 4 or 8, the others 1.
  unsigned fBytes = 2;
  NSTolbrook::EByteOrder fOrder = NSTolbrook::EByteOrder::kLittleEndian;

  /// Integers of 8, 16 or 24 bits pass through a DWOP stream unchanged.
  bool IsKeptExactly() const {
    return (fCoding == ESampleCoding::kSigned || fCoding == ESampleCoding::kUnsigned) &&
           fBytes <= 3;
  }
  /// The width of the stream that such samples become.
  unsigned StreamWidth() const {
    const bool law = fCoding == ESampleCoding::kMuLaw || fCoding == ESampleCoding::kALaw;
    return law || fBytes <= 2 ? 16 : 24;
  }

  friend bool operator==(const CSampleForm&, const CSampleForm&) = default;
};

/// Where the sample bytes of a WAVE, AIFF or AIFF-C file lie, and their form. Positions count bytes
/// from the file's start.
struct CAudioLayout {
  /// Of the chunk sizes, not of the samples.
  NSTolbrook::EByteOrder fOrder = NSTolbrook::EByteOrder::kLittleEndian;
  CSampleForm fForm;
  unsigned fChannels = 0;
  /// The u32 size of the chunk with the samples.
  std::uint64_t fSizeField = 0;
  /// The chunk's content up to the samples: 0 bytes, or the 8 leading bytes of an AIFF.
  std::uint32_t fLeadLength = 0;
  /// An AIFF's own offset from there to the first sample; files rarely have one.
  std::uint32_t fOffset = 0;
  /// First byte behind the leading ones.
  std::uint64_t fSamples = 0;
  /// Bytes of the chunk from there to its end, as the chunk's size says.
  std::uint64_t fLength = 0;

  std::uint64_t FrameLength() const { return std::uint64_t{fChannels} * fForm.fBytes; }
};

/// Finds the first format chunk and the first sample chunk of a file, each behind the other in any
/// order; nothing when the file is of another kind, lacks one or has samples in another coding.
/// The outer size is not looked at. Throws only as Read of the media.
std::optional<CAudioLayout> FindAudioLayout(const NSBigFilePackage::SharedMedia& file);

}  // namespace NSTambraPacking
