#include "codecs/SampleMeasures.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <span>
#include <vector>

namespace NSTambraPacking {

namespace {

constexpr std::size_t kPieceLength = 16'384;  // samples
constexpr unsigned kWidth = 24;

using CFrames = std::span<const std::int32_t>;  // interleaved

/// Two lanes of multiply and shift over pairs of samples; no two samples in one place give the same
/// state.
class CHashMeter {
 public:
  void Take(CFrames frames) {
    for (const std::int32_t sample : frames) {
      const auto value = static_cast<std::uint32_t>(sample);
      fHash[0] = Mix(fHash[0] ^ value, 0x9E3779B97F4A7C15);
      fHash[1] = Mix(fHash[1] + value, 0xC2B2AE3D27D4EB4F);
    }
  }
  void Tell(CSampleMeasures& measures) const { measures.fHash = fHash; }

 private:
  static std::uint64_t Mix(std::uint64_t state, std::uint64_t factor) {
    state *= factor;
    return state ^ (state >> 29);
  }

  std::array<std::uint64_t, 2> fHash{0x243F6A8885A308D3, 0x13198A2E03707344};
};

class CPeakMeter {
 public:
  void Take(CFrames frames) {
    for (const std::int32_t sample : frames) fPeak = std::max(fPeak, std::abs(sample));
  }
  void Tell(CSampleMeasures& measures) const { measures.fPeak = fPeak; }

 private:
  std::int32_t fPeak = 0;
};

/// One channel's runs at full scale.
class CClipMeter {
 public:
  CClipMeter(const CAudioFormat& format, unsigned channel)
      : fStep(1 << (kWidth - std::min<unsigned>(format.fBits, kWidth))),
        // The greatest values of the eight-bit codes stand for whole ranges.
        fIsOn(format.fCoding != ESampleCoding::kMuLaw && format.fCoding != ESampleCoding::kALaw),
        fChannels(format.fChannels),
        fChannel(channel) {}

  void Take(CFrames frames) {
    if (!fIsOn) return;
    for (std::size_t i = fChannel; i < frames.size(); i += fChannels, ++fFrame) {
      const std::int32_t sample = frames[i];
      const int side = SideOf(sample);
      if (side != fSide || side == 0) {
        EndRun(sample);
        fSide = side;
        fEntry = fFrame == 0 ? 0 : std::abs(sample - fLast);
      }
      if (side != 0) ++fRun;
      fLast = sample;
    }
  }

  /// Adds the channel's runs to those of the others.
  void Tell(CSampleMeasures& measures) const {
    if (fRuns > 0 && (measures.fClippedRuns == 0 || fFirst < measures.fFirstClip)) {
      measures.fFirstClip = fFirst;
    }
    measures.fClippedRuns += fRuns;
    measures.fLongestClip = std::max(measures.fLongestClip, fLongest);
    measures.fAtFullScale += fAtFullScale + fRun;
  }

 private:
  static constexpr std::uint64_t kShortestRun = 3;
  /// A parabola that stays within one step of its top for three samples falls by less than three
  /// steps at the next; noise and dither add a few.
  static constexpr std::int32_t kSmoothSteps = 8;

  int SideOf(std::int32_t sample) const {
    const std::int32_t top = CSampleMeasures::kFullScale - fStep;
    if (sample >= top) return 1;
    return sample <= -top ? -1 : 0;
  }

  void EndRun(std::int32_t next) {
    fAtFullScale += fRun;
    const std::int32_t smooth = kSmoothSteps * fStep;
    if (fRun >= kShortestRun && fEntry > smooth && std::abs(next - fLast) > smooth) {
      if (fRuns++ == 0) fFirst = fFrame - fRun;
      fLongest = std::max(fLongest, fRun);
    }
    fRun = 0;
  }

  std::int32_t fStep;  ///< between two values of the file's width
  bool fIsOn;
  unsigned fChannels;
  unsigned fChannel;
  std::uint64_t fFrame = 0;
  std::int32_t fLast = 0;
  int fSide = 0;            ///< of the run: 1 positive, -1 negative, 0 none
  std::int32_t fEntry = 0;  ///< the step into the run
  std::uint64_t fRun = 0;
  std::uint64_t fRuns = 0;
  std::uint64_t fLongest = 0;
  std::uint64_t fFirst = 0;
  std::uint64_t fAtFullScale = 0;
};

/// One channel's windows and their means.
class COffsetMeter {
 public:
  COffsetMeter(const CAudioFormat& format, unsigned channel)
      : fWindow(std::max(format.fRate / 10, 1U)), fChannels(format.fChannels), fChannel(channel) {}

  void Take(CFrames frames) {
    for (std::size_t i = fChannel; i < frames.size(); i += fChannels) {
      fSum += frames[i];
      if (++fTaken == fWindow) EndWindow();
    }
  }

  void Tell(CSampleMeasures& measures) const {
    const std::uint64_t most = std::max(fAbove, fBelow);
    const bool isSteady = fWindows >= kFewestWindows && most * 10 >= fWindows * 9;
    if (!isSteady || std::min(fAbove, fBelow) > 0) return;
    const double offset = fMeans / static_cast<double>(fWindows);
    if (std::abs(offset) > std::abs(measures.fOffset)) measures.fOffset = offset;
  }

 private:
  static constexpr std::uint64_t kFewestWindows = 4;
  static constexpr double kLeastOffset = CSampleMeasures::kFullScale * 0.005;

  void EndWindow() {
    const double mean = static_cast<double>(fSum) / fWindow;
    if (mean >= kLeastOffset) ++fAbove;
    if (mean <= -kLeastOffset) ++fBelow;
    fMeans += mean;
    ++fWindows;
    fSum = 0;
    fTaken = 0;
  }

  std::uint32_t fWindow;  ///< frames
  unsigned fChannels;
  unsigned fChannel;
  std::int64_t fSum = 0;
  std::uint32_t fTaken = 0;
  double fMeans = 0;
  std::uint64_t fWindows = 0;
  std::uint64_t fAbove = 0;
  std::uint64_t fBelow = 0;
};

/// One channel's loop point.
class CLoopMeter {
 public:
  CLoopMeter(const CAudioFile& file, unsigned channel)
      : fStart(file.Instrument().fLoopStart),
        fEnd(file.Instrument().fLoopEnd),
        fChannels(file.Format().fChannels),
        fChannel(channel) {
    const std::uint64_t length = fEnd - fStart;
    const bool isLong = length >= file.Format().fRate / 20;
    fIsOn = file.Instrument().fLoopMode == kForward && length >= kShortestLoop &&
            (isLong || fStart >= length);
    fFirstStep = std::max<std::uint64_t>(fStart - std::min(fStart, length), 1);
  }

  void Take(CFrames frames) {
    if (!fIsOn) return;
    const std::uint64_t count = frames.size() / fChannels;
    for (std::uint64_t i = 0; i < count; ++i, ++fFrame) {
      const std::int32_t sample = frames[static_cast<std::size_t>(i) * fChannels + fChannel];
      if (fFrame >= fFirstStep && fFrame < fEnd) {
        fGreatest = std::max(fGreatest, std::abs(sample - fLast));
      }
      if (fFrame == fStart) fAtStart = sample;
      // A loop is longer than two frames, so that its start is known here.
      if (fFrame + 2 >= fEnd && fFrame <= fEnd)
        fJump = std::min(fJump, std::abs(sample - fAtStart));
      fLast = sample;
    }
  }

  /// The channel with the greater jump for its steps counts.
  void Tell(CSampleMeasures& measures) const {
    if (!fIsOn || fFrame < fEnd) return;
    if (measures.fLoopJump != 0 &&
        std::int64_t{fJump} * measures.fLoopStep <= std::int64_t{measures.fLoopJump} * fGreatest) {
      return;
    }
    measures.fLoopJump = fJump;
    measures.fLoopStep = fGreatest;
  }

 private:
  static constexpr std::uint8_t kForward = 1;
  static constexpr std::uint64_t kShortestLoop = 16;

  std::uint64_t fStart;
  std::uint64_t fEnd;
  unsigned fChannels;
  unsigned fChannel;
  bool fIsOn = false;
  std::uint64_t fFirstStep = 0;
  std::uint64_t fFrame = 0;
  std::int32_t fLast = 0;
  std::int32_t fAtStart = 0;
  std::int32_t fGreatest = 0;
  std::int32_t fJump = 2 * CSampleMeasures::kFullScale;
};

/// Guesses the coded size from the differences of the values, of which the coder takes whichever
/// order is the smallest; of two channels the second is coded as its difference from the first.
class CSizeMeter {
 public:
  CSizeMeter(const CAudioFormat& format, unsigned channel)
      : fChannels(format.fChannels), fChannel(channel), fShift(kWidth - format.CodedWidth()) {}

  void Take(CFrames frames) {
    for (std::size_t i = fChannel; i < frames.size(); i += fChannels) {
      const std::int32_t value = fChannel == 0 ? frames[i] : frames[i] - frames[i - 1];
      std::int64_t error = value >> fShift;
      for (std::size_t order = 0; order < kOrders; ++order) {
        const std::int64_t next = error - fErrors[order];
        fSums[order] += static_cast<std::uint64_t>(std::abs(error));
        fErrors[order] = error;
        error = next;
      }
      if (++fTaken == kBlock) EndBlock();
    }
  }

  void Tell(CSampleMeasures& measures) {
    if (fTaken > 0) EndBlock();
    measures.fPackedSize += static_cast<std::uint64_t>(fBits / 8);
  }

 private:
  static constexpr std::size_t kOrders = 5;
  static constexpr std::uint32_t kBlock = 1024;
  /// What a value takes beyond the logarithm of the mean magnitude: log2(2e) for a Laplacian
  /// distribution, and a little for codes of whole bits.
  static constexpr double kBitsBeyondMean = 2.5;

  void EndBlock() {
    const auto least = static_cast<double>(*std::ranges::min_element(fSums));
    const double bits = least == 0 ? 1 : std::log2(least / fTaken) + kBitsBeyondMean;
    fBits += std::max(bits, 1.0) * fTaken;
    fSums = {};
    fTaken = 0;
  }

  unsigned fChannels;
  unsigned fChannel;
  unsigned fShift;
  std::array<std::int64_t, kOrders> fErrors{};
  std::array<std::uint64_t, kOrders> fSums{};
  std::uint32_t fTaken = 0;
  double fBits = 0;
};

struct CChannelMeters {
  CChannelMeters(const CAudioFile& file, unsigned channel)
      : fClip(file.Format(), channel),
        fOffset(file.Format(), channel),
        fLoop(file, channel),
        fSize(file.Format(), channel) {}

  void Take(CFrames frames) {
    fClip.Take(frames);
    fOffset.Take(frames);
    fLoop.Take(frames);
    fSize.Take(frames);
  }
  void Tell(CSampleMeasures& measures) {
    fClip.Tell(measures);
    fOffset.Tell(measures);
    fLoop.Tell(measures);
    fSize.Tell(measures);
  }

  CClipMeter fClip;
  COffsetMeter fOffset;
  CLoopMeter fLoop;
  CSizeMeter fSize;
};

}  // namespace

CSampleMeasures MeasureSample(CAudioFile& file, const std::function<void()>& checkStop) {
  const CAudioFormat& format = file.Format();
  CHashMeter hash;
  CPeakMeter peak;
  std::vector<CChannelMeters> channels;
  for (unsigned channel = 0; channel < format.fChannels; ++channel) {
    channels.emplace_back(file, channel);
  }
  std::vector<std::int32_t> piece(kPieceLength);
  for (;;) {
    if (checkStop) checkStop();
    const std::size_t frames = file.ReadFrames(piece);
    if (frames == 0) break;
    const std::span<std::int32_t> taken(piece.data(), frames * format.fChannels);
    for (std::int32_t& sample : taken) sample *= 1 << (kWidth - format.CodedWidth());
    hash.Take(taken);
    peak.Take(taken);
    for (CChannelMeters& channel : channels) channel.Take(taken);
  }
  CSampleMeasures measures;
  hash.Tell(measures);
  peak.Tell(measures);
  for (CChannelMeters& channel : channels) channel.Tell(measures);
  return measures;
}

}  // namespace NSTambraPacking
