#include "app/demo/DemoSynthesis.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace NSTambraPacking {

namespace {

constexpr int kUnitBits = 30;
/// 1 in the fixed-point numbers of this file.
constexpr std::int64_t kUnit = std::int64_t{1} << kUnitBits;

constexpr std::int64_t Multiply(std::int64_t a, std::int64_t b) { return (a * b) >> kUnitBits; }

/// A 24-bit sample of a value where kUnit is full scale.
std::int32_t Sample(std::int64_t value) {
  constexpr std::int64_t kGreatest = (std::int64_t{1} << 23) - 1;
  return static_cast<std::int32_t>(std::clamp(value >> (kUnitBits - 23), -kGreatest, kGreatest));
}

/// A level that falls from 1 towards 0.
class CDecay {
 public:
  CDecay(std::uint32_t milliseconds, std::uint32_t rate)
      : fLoss(kUnit * 1000 / (std::int64_t{std::max(milliseconds, 1U)} * rate)) {}

  std::int64_t Next() {
    fLevel -= Multiply(fLevel, fLoss);
    return fLevel;
  }

 private:
  std::int64_t fLevel = kUnit;
  std::int64_t fLoss;
};

/// Xorshift with 32 bits of state (Marsaglia, "Xorshift RNGs", 2003).
class CNoise {
 public:
  explicit CNoise(std::uint32_t seed) : fState(seed * 2654435761U | 1U) {}

  /// From -kUnit to kUnit.
  std::int64_t Next() {
    fState ^= fState << 13;
    fState ^= fState >> 17;
    fState ^= fState << 5;
    return (std::int64_t{fState} - (std::int64_t{1} << 31)) >> 1;
  }

 private:
  std::uint32_t fState;
};

std::uint32_t StepOfPitch(std::uint64_t millihertz, std::uint32_t rate) {
  return static_cast<std::uint32_t>((millihertz << 32) / (std::uint64_t{rate} * 1000));
}

}  // namespace

std::int64_t FixedSine(std::uint32_t phase) {
  // With z from 0 to 1 over the quarter: z (a - z^2 (b - z^2 c)), a = pi/2, b = pi - 5/2 and
  // c = b - a + 1, each times 2^30.
  constexpr std::int64_t kA = 1'686'629'713;
  constexpr std::int64_t kB = 688'904'870;
  constexpr std::int64_t kC = kUnit - kA + kB;
  const std::uint32_t inQuarter = phase & 0x3FFFFFFF;
  const std::int64_t z = (phase & 0x40000000) == 0 ? inQuarter : kUnit - inQuarter;
  const std::int64_t square = Multiply(z, z);
  const std::int64_t sine = Multiply(z, kA - Multiply(square, kB - Multiply(square, kC)));
  return (phase & 0x80000000) == 0 ? sine : -sine;
}

std::uint32_t PhaseStep(unsigned key, unsigned cents, std::uint32_t rate) {
  // The keys 120 to 131, in thousandths of a hertz.
  constexpr std::array<std::uint64_t, 12> kTopOctave = {
      8'372'018,  8'869'844,  9'397'273,  9'956'063,  10'548'082, 11'175'303,
      11'839'822, 12'543'854, 13'289'750, 14'080'000, 14'917'240, 15'804'266};
  const std::uint64_t pitch = kTopOctave[key % 12];
  // A cent is a ratio of 1 + 1 / 1731 or so.
  const std::uint64_t tuned = pitch * (1731 + cents) / 1731;
  return StepOfPitch(tuned, rate) >> (10 - key / 12);
}

std::uint32_t SeamlessLength(std::uint32_t step, std::uint32_t atLeast, std::uint32_t atMost) {
  std::uint32_t best = atLeast;
  std::int64_t leastError = INT64_MAX;
  for (std::uint32_t length = atLeast; length <= atMost; ++length) {
    const std::int64_t error = std::abs(std::int64_t{static_cast<std::int32_t>(length * step)});
    if (error >= leastError) continue;
    leastError = error;
    best = length;
  }
  return best;
}

DemoSamples MakeDrum(const CDemoDrum& drum, std::uint32_t rate, std::size_t frames) {
  DemoSamples samples(frames);
  CNoise noise(drum.fSeed);
  CDecay toneLevel(drum.fDecay, rate);
  CDecay noiseLevel(drum.fDecay, rate);
  CDecay pitchFall(drum.fDecay / 3, rate);
  const std::int64_t low = StepOfPitch(std::uint64_t{drum.fLowPitch} * 1000, rate);
  const std::int64_t fall = StepOfPitch(std::uint64_t{drum.fHighPitch} * 1000, rate) - low;
  const std::size_t burstLength = rate / 90;
  std::uint32_t phase = 0;
  std::int64_t slow = 0;  // the noise's low frequencies
  for (std::size_t i = 0; i < frames; ++i) {
    if (i % burstLength == 0 && i / burstLength < drum.fBursts) {
      noiseLevel = CDecay(i / burstLength + 1 < drum.fBursts ? 4 : drum.fDecay, rate);
    }
    phase += static_cast<std::uint32_t>(low + Multiply(fall, pitchFall.Next()));
    const std::int64_t white = noise.Next();
    slow += (white - slow) / 4;
    const std::int64_t coloured = white - slow * drum.fBrightness / 256;
    const std::int64_t tone = Multiply(FixedSine(phase), toneLevel.Next()) * drum.fToneLevel;
    const std::int64_t hiss = Multiply(coloured, noiseLevel.Next()) * drum.fNoiseLevel;
    samples[i] = Sample((tone + hiss) / 256);
  }
  return samples;
}

DemoSamples MakeTone(std::uint32_t step, std::span<const std::uint16_t> harmonics,
                     std::uint32_t attack, std::size_t frames, std::uint32_t offset) {
  DemoSamples samples(frames);
  std::uint32_t phase = 0;
  for (std::size_t i = 0; i < frames; ++i, phase += step) {
    std::int64_t sum = 0;
    std::uint32_t number = 1;
    for (const std::uint16_t level : harmonics) {
      sum += FixedSine(phase * number + offset * (number - 1)) * level;
      ++number;
    }
    const std::int64_t position = static_cast<std::int64_t>(i);
    samples[i] = Sample(position < attack ? sum / 256 * position / attack : sum / 256);
  }
  return samples;
}

DemoSamples MakeBell(std::uint32_t step, std::uint32_t rate, std::size_t frames) {
  struct CPartial {
    std::uint32_t fRatio;  ///< of its pitch to the first one's, in 256ths
    std::int64_t fLevel;   ///< in 256ths
    std::uint32_t fDecay;  ///< in milliseconds
  };
  constexpr CPartial kPartials[] = {
      {256, 90, 400}, {707, 60, 250}, {1383, 40, 120}, {2290, 20, 60}};
  std::vector<std::int64_t> sums(frames);
  for (const CPartial& partial : kPartials) {
    CDecay level(partial.fDecay, rate);
    const auto own = static_cast<std::uint32_t>(std::uint64_t{step} * partial.fRatio / 256);
    std::uint32_t phase = 0;
    for (std::int64_t& sum : sums) {
      sum += Multiply(FixedSine(phase), level.Next()) * partial.fLevel;
      phase += own;
    }
  }
  DemoSamples samples(frames);
  std::transform(sums.begin(), sums.end(), samples.begin(),
                 [](std::int64_t sum) { return Sample(sum / 256); });
  return samples;
}

DemoSamples Interleave(const DemoSamples& left, const DemoSamples& right) {
  DemoSamples both;
  both.reserve(left.size() * 2);
  for (std::size_t i = 0; i < left.size(); ++i) {
    both.push_back(left[i]);
    both.push_back(right[i]);
  }
  return both;
}

}  // namespace NSTambraPacking
