#include "bench/SignalCheck.h"

namespace NSBench {

void CSignalCheck::TakeInterleaved(std::span<const std::int32_t> samples) {
  for (const std::int32_t sample : samples) Take(sample);
}

void CSignalCheck::TakePlanar(const std::int32_t* const* channels, std::size_t frames) {
  for (std::size_t frame = 0; frame < frames; ++frame) {
    for (unsigned channel = 0; channel < fSignal.fChannels; ++channel) {
      Take(channels[channel][frame]);
    }
  }
}

void CSignalCheck::Take(std::int32_t sample) {
  fSame = fSame && fTaken < fSignal.fSamples.size() && fSignal.fSamples[fTaken] == sample;
  ++fTaken;
}

}  // namespace NSBench
