#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace NSTest {

/// What a stream of samples says about itself, for the second implementation.
struct CReferenceFormat {
  unsigned fChannels = 1;
  unsigned fWidth = 16;
  std::uint32_t fRate = 44100;

  friend bool operator==(const CReferenceFormat&, const CReferenceFormat&) = default;
};

struct CReferenceResult {
  /// False when the stream ends too early, escapes beyond 32 bits or has no usable header.
  bool fWhole = false;
  CReferenceFormat fFormat;
  std::uint32_t fLength = 0;
  /// Interleaved; all whole frames before the fault.
  std::vector<std::int32_t> fSamples;
  /// 32-bit words that the bit stream takes up.
  std::size_t fWords = 0;
};

/// A second implementation of the DWOP codec that shares nothing with the first: slow and plain,
/// bits in a vector of bool, each step a loop. It writes headers without instrument data and reads
/// streams of version 1 only.
std::vector<std::uint8_t> ReferenceEncode(const CReferenceFormat& format,
                                          const std::vector<std::int32_t>& interleaved);
CReferenceResult ReferenceDecode(const std::vector<std::uint8_t>& stream);

}  // namespace NSTest
