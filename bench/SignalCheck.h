#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "bench/Signal.h"

namespace NSBench {

/// Takes what a decoder gives, piece by piece, and tells whether it is the signal.
class CSignalCheck {
 public:
  /// The signal must outlive the check.
  explicit CSignalCheck(const CSignal& signal) : fSignal(signal) {}

  void TakeInterleaved(std::span<const std::int32_t> samples);
  /// `channels` points to the samples of each channel.
  void TakePlanar(const std::int32_t* const* channels, std::size_t frames);

  /// True when exactly the signal's samples were taken.
  bool Passed() const { return fSame && fTaken == fSignal.fSamples.size(); }

 private:
  void Take(std::int32_t sample);

  const CSignal& fSignal;
  std::size_t fTaken = 0;
  bool fSame = true;
};

}  // namespace NSBench
