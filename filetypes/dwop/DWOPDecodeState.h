#pragma once

#include <cstddef>
#include <cstdint>

namespace NSTambraPacking {

/// The predictor of one channel between two frames: the errors of the orders 0 to 3 for the last
/// value (order 0: the value itself; that of order 4 is not needed again) and the five running
/// sums.
struct CDWOPDecodeChannel {
  std::uint32_t fErrors[4];
  std::uint32_t fSums[5];
};

/// A residual bit stream under decoding, as plain data that kernels built for other instruction
/// sets can share. Kernels decode whole frames and leave everything at the boundary of a frame.
struct CDWOPDecodeState {
  CDWOPDecodeChannel fChannels[2];
  unsigned fChannelCount;
  /// Bits of a sample, 16 or 24.
  unsigned fWidth;
  /// The bytes of the stream at hand; bit 0 is the highest of the first.
  const std::uint8_t* fBytes;
  std::size_t fByteCount;
  /// The next bit to read.
  std::size_t fBit;
};

}  // namespace NSTambraPacking
