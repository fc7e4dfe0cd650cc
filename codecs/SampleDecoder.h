#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "codecs/AudioFormat.h"

namespace NSTambraPacking {

/// Turns coded samples into right-justified, sign-extended integers of the format's CodedWidth().
class ISampleDecoder {
 public:
  virtual ~ISampleDecoder() = default;

  /// Fills all of `samples` with the next ones. Throws XRead when there are fewer.
  virtual void Read(std::span<std::int32_t> samples) = 0;
};

/// A decoder of all whole frames of the media that has this format.
///
/// Integers of 1 byte are shifted left by 8, those of 2 and 3 bytes kept, those of 4 bytes become
/// (x + 128) >> 8; floating point becomes floor(x * 2^23 + 0.5); both are clipped to 24 bits, and
/// what is not a number is 0. mu-law and A-law are expanded to 16 bits (ITU-T G.711).
std::unique_ptr<ISampleDecoder> MakeSampleDecoder(NSBigFilePackage::SharedMedia media,
                                                  const CAudioFormat& format);

}  // namespace NSTambraPacking
