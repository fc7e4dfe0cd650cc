#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace NSTambraPacking {

/// Where an encoder's samples come from.
class ISampleSource {
 public:
  virtual ~ISampleSource() = default;

  /// Fills `interleaved` with the next whole frames: one value a channel, left before right, each
  /// right-justified in the width of the stream and sign-extended. Returns the number of frames,
  /// which is less than asked for only at the end.
  virtual std::size_t ReadFrames(std::span<std::int32_t> interleaved) = 0;
};

}  // namespace NSTambraPacking
