#include "bench/Signal.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <numbers>
#include <random>
#include <span>
#include <utility>

#include "codecs/AudioFile.h"
#include "package/StdioMedia.h"

namespace NSBench {

namespace {

constexpr std::array kNotes{110.0, 164.8, 220.0, 277.2, 329.6, 440.0};
constexpr std::size_t kSeconds = 60;

CSignal EmptySignal(unsigned channels, unsigned width) {
  return {std::to_string(width) + (channels == 2 ? " bits, stereo" : " bits, mono"),
          channels,
          width,
          {},
          {}};
}

/// The level of all notes at a time: each begins anew at its own distance, with three overtones.
double Level(double time, double pan) {
  double level = 0;
  for (std::size_t note = 0; note < kNotes.size(); ++note) {
    const auto number = static_cast<double>(note);
    const double age = std::fmod(time + 0.37 * number, 1.1 + 0.2 * number);
    const double phase = 2 * std::numbers::pi * kNotes[note] * age;
    const double tone = std::sin(phase) + 0.5 * std::sin(2 * phase) + 0.25 * std::sin(5 * phase);
    level += (note % 2 == 0 ? pan : 1 - pan) * std::exp(-3 * age) * tone;
  }
  return level / static_cast<double>(kNotes.size());
}

CSignal GeneratedSignal(unsigned channels, unsigned width) {
  CSignal signal = EmptySignal(channels, width);
  std::mt19937 random(1);
  const double scale = std::ldexp(1.0, static_cast<int>(width) - 1) - 1;
  signal.fSamples.reserve(kSeconds * kRate * channels);
  for (std::size_t frame = 0; frame < kSeconds * kRate; ++frame) {
    for (unsigned channel = 0; channel < channels; ++channel) {
      const double noise = std::ldexp(static_cast<double>(random()), -32) - 0.5;
      const double level =
          Level(static_cast<double>(frame) / kRate, channel == 0 ? 0.6 : 0.4) + 0.002 * noise;
      signal.fSamples.push_back(static_cast<std::int32_t>(std::clamp(level, -1.0, 1.0) * scale));
    }
  }
  return signal;
}

using NSTambraPacking::CAudioFile;
using NSTambraPacking::CAudioFormat;
using NSTambraPacking::EAudioContainer;

bool IsWAVE(const std::filesystem::path& path) { return path.extension() == ".wav"; }

CAudioFile Open(const std::filesystem::path& path) {
  return CAudioFile::Open(NSBigFilePackage::CStdioMedia::OpenForReading(path),
                          IsWAVE(path) ? EAudioContainer::kWAVE : EAudioContainer::kAIFF);
}

bool IsMeasured(const CAudioFormat& format) {
  return format.fCoding == NSTambraPacking::ESampleCoding::kSigned &&
         (format.fSampleBytes == 2 || format.fSampleBytes == 3) &&
         (format.fChannels == 1 || format.fChannels == 2);
}

/// The most frames that every file may give so that all give `limit` at most.
std::uint64_t Share(std::vector<std::uint64_t> lengths, std::uint64_t limit) {
  std::ranges::sort(lengths);
  for (std::size_t done = 0; done < lengths.size(); ++done) {
    const std::uint64_t share = limit / (lengths.size() - done);
    if (lengths[done] > share) return share;
    limit -= lengths[done];
  }
  return std::numeric_limits<std::uint64_t>::max();
}

struct CSampleFile {
  std::filesystem::path fPath;
  CAudioFormat fFormat;
};

CSignal Join(const std::vector<CSampleFile>& files, std::size_t limit) {
  const CAudioFormat& format = files.front().fFormat;
  CSignal signal = EmptySignal(format.fChannels, format.CodedWidth());
  std::vector<std::uint64_t> lengths;
  for (const CSampleFile& file : files) lengths.push_back(file.fFormat.fFrames);
  const std::uint64_t share = Share(lengths, limit / format.FrameBytes());
  for (const CSampleFile& file : files) {
    const auto frames = static_cast<std::size_t>(std::min(share, file.fFormat.fFrames));
    const std::size_t before = signal.fSamples.size();
    signal.fSamples.resize(before + frames * signal.fChannels);
    Open(file.fPath).ReadFrames(std::span(signal.fSamples).subspan(before));
  }
  return signal;
}

void AddNarrow(CSignal& signal) {
  if (signal.fWidth == 16)
    signal.fNarrowSamples.assign(signal.fSamples.begin(), signal.fSamples.end());
}

}  // namespace

std::vector<CSignal> GeneratedSignals() {
  std::vector<CSignal> signals{GeneratedSignal(2, 16), GeneratedSignal(1, 16),
                               GeneratedSignal(2, 24)};
  std::ranges::for_each(signals, AddNarrow);
  return signals;
}

std::vector<CSignal> SignalsOfFolder(const std::filesystem::path& folder, std::size_t limit) {
  const auto items = std::filesystem::recursive_directory_iterator(folder);
  std::vector<std::filesystem::path> paths(begin(items), end(items));
  std::ranges::sort(paths);
  std::map<std::pair<unsigned, unsigned>, std::vector<CSampleFile>> files;
  for (const std::filesystem::path& path : paths) {
    if (!IsWAVE(path) && path.extension() != ".aiff" && path.extension() != ".aif") continue;
    const CAudioFormat format = Open(path).Format();
    if (IsMeasured(format)) {
      files[{format.CodedWidth(), 2U - format.fChannels}].push_back({path, format});
    }
  }
  std::vector<CSignal> signals;
  for (const auto& [kind, ofKind] : files) signals.push_back(Join(ofKind, limit));
  std::ranges::for_each(signals, AddNarrow);
  return signals;
}

}  // namespace NSBench
