#pragma once

#include <array>
#include <cstdint>
#include <functional>

#include "codecs/AudioFile.h"

namespace NSTambraPacking {

/// What one sample's audio is like. Amplitudes count 24-bit steps, whatever the file's width.
struct CSampleMeasures {
  static constexpr std::int32_t kFullScale = 1 << 23;

  /// Of the decoded samples alone: files that sound the same at the same rate have the same, in
  /// whatever width or container they hold it.
  std::array<std::uint64_t, 2> fHash{};
  /// The greatest magnitude of any sample.
  std::int32_t fPeak = 0;

  /// Runs of three samples or more at full scale that the waveform enters and leaves in a step: the
  /// top of a rounded wave that just reaches full scale is none. All channels together.
  std::uint64_t fClippedRuns = 0;
  std::uint64_t fLongestClip = 0;  ///< samples
  std::uint64_t fFirstClip = 0;    ///< frame
  /// Samples at full scale, in runs or not; a pulse wave may hold nothing else.
  std::uint64_t fAtFullScale = 0;

  /// How far a channel's middle lies from zero, when it does so throughout: in nine of ten windows
  /// of 100 ms by at least 0.5 % of full scale, in none by as much the other way. 0 when not, and
  /// for samples under four windows.
  double fOffset = 0;

  /// The step from the last frame of a forward loop to its first, and the greatest step between
  /// neighbouring frames of the loop and as much before it. An end that is set a frame too early
  /// or too late is given the benefit of the doubt. Both are 0 for a loop under 16 frames, and for
  /// one of less than 50 ms without as much before it: that may be a waveform with an edge.
  std::int32_t fLoopJump = 0;
  std::int32_t fLoopStep = 0;

  /// About the bytes of the residual bit stream that the samples become.
  std::uint64_t fPackedSize = 0;
};

/// Reads all frames of `file`, which has 1 or 2 channels, once. `checkStop` is called before each
/// piece and may throw. Throws as ReadFrames.
CSampleMeasures MeasureSample(CAudioFile& file, const std::function<void()>& checkStop);

}  // namespace NSTambraPacking
