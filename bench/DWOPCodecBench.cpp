#include <algorithm>
#include <benchmark/benchmark.h>
#include <cmath>
#include <random>
#include <vector>

#include "filetypes/dwop/DWOPDecompressor.h"
#include "filetypes/dwop/DWOPEncoder.h"
#include "filetypes/dwop/DWOPFormat.h"
#include "filetypes/dwop/DWOPHeader.h"
#include "filetypes/dwop/SampleSource.h"
#include "package/MemoryMedia.h"

namespace {

using namespace NSTambraPacking;

constexpr std::uint32_t kFrames = 441000;  // ten seconds
constexpr double kRate = 44100;

/// Two decaying tones and a noise floor 48 dB below full scale, the channels a little apart.
std::vector<std::int32_t> MakeSignal(unsigned channels, unsigned width) {
  std::mt19937 random(1);
  std::normal_distribution<double> noise(0, 0.004);
  const double scale = std::ldexp(1.0, static_cast<int>(width) - 1) - 1;
  std::vector<std::int32_t> samples;
  samples.reserve(std::size_t{kFrames} * channels);
  for (std::uint32_t frame = 0; frame < kFrames; ++frame) {
    const double time = frame / kRate;
    const double decay = std::exp(-std::fmod(time, 1.0) * 3);
    for (unsigned channel = 0; channel < channels; ++channel) {
      const double phase = 2 * M_PI * time + channel * 0.1;
      const double value =
          decay * (0.5 * std::sin(220 * phase) + 0.3 * std::sin(1760 * phase)) + noise(random);
      samples.push_back(static_cast<std::int32_t>(std::clamp(value, -1.0, 1.0) * scale));
    }
  }
  return samples;
}

class CVectorSource : public ISampleSource {
 public:
  CVectorSource(const std::vector<std::int32_t>& samples, unsigned channels)
      : fSamples(samples), fChannels(channels) {}

  std::size_t ReadFrames(std::span<std::int32_t> interleaved) override {
    const std::size_t count = std::min(interleaved.size(), fSamples.size() - fNext);
    std::copy_n(fSamples.begin() + static_cast<std::ptrdiff_t>(fNext), count, interleaved.begin());
    fNext += count;
    return count / fChannels;
  }

 private:
  const std::vector<std::int32_t>& fSamples;
  unsigned fChannels;
  std::size_t fNext = 0;
};

CDWOPHeader MakeHeader(unsigned channels, unsigned width) {
  CDWOPHeader header;
  header.fLength = kFrames;
  header.fChannels = static_cast<std::uint8_t>(channels);
  header.fWidth = static_cast<std::uint8_t>(width);
  header.fRate = 44100;
  return header;
}

void Encode(const CDWOPHeader& header, const std::vector<std::int32_t>& samples,
            NSBigFilePackage::CMemoryMedia& stream) {
  CVectorSource source(samples, header.fChannels);
  NSBigFilePackage::CMediaCursor output(stream);
  EncodeDWOP(header, source, output, [] {});
}

/// Bytes a second are those of the samples; the ratio is that of the samples to the stream.
void Report(benchmark::State& state, const CDWOPHeader& header, std::size_t streamSize) {
  const std::int64_t bytes = std::int64_t{kFrames} * header.fChannels * (header.fWidth / 8);
  state.SetBytesProcessed(state.iterations() * bytes);
  state.counters["ratio"] = static_cast<double>(bytes) / static_cast<double>(streamSize);
}

void BM_Encode(benchmark::State& state) {
  const auto channels = static_cast<unsigned>(state.range(0));
  const auto width = static_cast<unsigned>(state.range(1));
  const CDWOPHeader header = MakeHeader(channels, width);
  const auto samples = MakeSignal(channels, width);
  std::size_t size = 0;
  for (auto run : state) {
    NSBigFilePackage::CMemoryMedia stream;
    Encode(header, samples, stream);
    size = stream.Bytes().size();
  }
  Report(state, header, size);
}

void BM_Decode(benchmark::State& state) {
  const auto channels = static_cast<unsigned>(state.range(0));
  const auto width = static_cast<unsigned>(state.range(1));
  const auto samples = MakeSignal(channels, width);
  NSBigFilePackage::CMemoryMedia stream;
  Encode(MakeHeader(channels, width), samples, stream);
  std::vector<std::int32_t> decoded(samples.size());
  CDWOPHeader header;
  for (auto run : state) {
    NSBigFilePackage::CMediaCursor input(stream);
    header = ReadDWOPHeader(input);
    COptimizedDWOPDecompressorFromMedia decoder(header, stream, input.Position());
    const std::size_t piece = kDWOPBlockFrames * channels;
    for (std::size_t done = 0; done < decoded.size(); done += piece) {
      decoder.Decode(std::span(decoded).subspan(done, std::min(piece, decoded.size() - done)));
    }
  }
  if (decoded != samples) state.SkipWithError("what was decoded differs");
  Report(state, header, stream.Bytes().size());
}

void Forms(benchmark::internal::Benchmark* bench) {
  bench->ArgNames({"channels", "width"})->Args({2, 16})->Args({1, 16})->Args({2, 24});
  bench->Unit(benchmark::kMillisecond);
}

BENCHMARK(BM_Encode)->Apply(Forms);
BENCHMARK(BM_Decode)->Apply(Forms);

}  // namespace
