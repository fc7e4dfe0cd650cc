#pragma once

#include <cstddef>
#include <cstdint>

#include "codecs/SampleUnpacking.h"
#include "filetypes/dwop/DWOPBitWriter.h"
#include "filetypes/dwop/DWOPLanes.h"

namespace NSTambraPacking {

/// Samples as they lie in memory, whole frames.
struct CPackedFrames {
  const std::uint8_t* fBytes;
  std::size_t fFrames;
  ESamplePacking fPacking;
  unsigned fChannels;

  std::size_t FrameBytes() const { return SampleBytes(fPacking) * fChannels; }
  CPackedFrames Part(std::size_t first, std::size_t frames) const {
    return {fBytes + first * FrameBytes(), frames, fPacking, fChannels};
  }
};

/// The state at a stream's start.
CDWOPEncodeState StartOfDWOPStream();

/// The encoder's form for every processor: codes one value after the other. `states` has one
/// element a channel: the left one (or only one), and the difference of right and left. Throws as
/// Write of the writer's media.
void CodeDWOPValues(const CPackedFrames& frames, CDWOPEncodeState* states, CDWOPBitWriter& writer);

/// Gives `states` the errors behind the last of `frames`, of which there must be 4 or more; the
/// sums stay.
void SetErrorsBehind(const CPackedFrames& frames, CDWOPEncodeState* states);

}  // namespace NSTambraPacking
