#pragma once

#include <cstdint>
#include <span>
#include <vector>

/// Sounds by integer arithmetic alone, so that every system and compiler makes the same samples.
/// Samples are signed 24-bit integers; rates are frames a second, keys MIDI notes.
namespace NSTambraPacking {

using DemoSamples = std::vector<std::int32_t>;

/// The sine of `phase` (2^32 is a full turn) times 2^30, by a polynomial of fifth degree over the
/// quarter wave that is exact at its ends and has the right slope at 0; its error is below 0.0002.
std::int64_t FixedSine(std::uint32_t phase);

/// The phase that a tone of `key` (0 to 127, A4 = 69 is 440 Hz), `cents` higher, moves on a frame.
std::uint32_t PhaseStep(unsigned key, unsigned cents, std::uint32_t rate);

/// Of the lengths from `atLeast` to `atMost` frames, the one in which a tone of that step comes
/// nearest to whole turns: what is looped so is heard without a seam.
std::uint32_t SeamlessLength(std::uint32_t step, std::uint32_t atLeast, std::uint32_t atMost);

struct CDemoDrum {
  /// A falling sine: where its pitch begins and where it ends up, in hertz, and its loudness in
  /// 256ths.
  std::uint32_t fHighPitch = 0;
  std::uint32_t fLowPitch = 0;
  std::uint32_t fToneLevel = 0;
  /// Noise: its loudness in 256ths, how far the low frequencies are taken out of it (in 256ths, 0
  /// not at all), and how often it starts anew in the first moments.
  std::uint32_t fNoiseLevel = 0;
  std::uint32_t fBrightness = 0;
  std::uint32_t fBursts = 1;
  /// Milliseconds in which the sound falls to about a third.
  std::uint32_t fDecay = 50;
  /// The noise's beginning; another one makes another hit of the same kind.
  std::uint32_t fSeed = 1;
};

DemoSamples MakeDrum(const CDemoDrum& drum, std::uint32_t rate, std::size_t frames);

/// A steady tone after an attack of `attack` frames: its harmonics, from the first, have the
/// loudness `harmonics` (in 256ths) and begin at a phase that `offset` (2^32 is a full turn) moves
/// apart.
DemoSamples MakeTone(std::uint32_t step, std::span<const std::uint16_t> harmonics,
                     std::uint32_t attack, std::size_t frames, std::uint32_t offset = 0);

/// A struck tone that dies away, its partials not in harmony.
DemoSamples MakeBell(std::uint32_t step, std::uint32_t rate, std::size_t frames);

/// Frames of two channels, left first. Both sides have the same length.
DemoSamples Interleave(const DemoSamples& left, const DemoSamples& right);

}  // namespace NSTambraPacking
