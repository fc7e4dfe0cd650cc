#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>
#include <wavpack/wavpack.h>

#include "bench/Coder.h"

namespace NSBench {

namespace {

void Demand(bool done) {
  if (!done) throw std::runtime_error("libwavpack refused to work");
}

using Context = std::unique_ptr<WavpackContext, decltype(&WavpackCloseFile)>;

int Write(void* output, void* data, std::int32_t count) {
  const auto* const bytes = static_cast<const std::uint8_t*>(data);
  Bytes& target = *static_cast<Bytes*>(output);
  target.insert(target.end(), bytes, bytes + count);
  return 1;
}

void Encode(const CSignal& signal, Bytes& output) {
  const Context context(WavpackOpenFileOutput(Write, &output, nullptr), WavpackCloseFile);
  WavpackConfig config{};
  config.bytes_per_sample = static_cast<int>(signal.fWidth / 8);
  config.bits_per_sample = static_cast<int>(signal.fWidth);
  config.num_channels = static_cast<int>(signal.fChannels);
  config.channel_mask = signal.fChannels == 1 ? 4 : 3;  // centre; left and right
  config.sample_rate = kRate;
  config.flags = CONFIG_FAST_FLAG;
  const auto total = static_cast<std::int64_t>(signal.Frames());
  Demand(WavpackSetConfiguration64(context.get(), &config, total, nullptr) &&
         WavpackPackInit(context.get()));
  // The interface asks for memory that may change.
  std::vector<std::int32_t> piece(kPieceFrames * signal.fChannels);
  for (std::span<const std::int32_t> rest(signal.fSamples); !rest.empty();) {
    const std::size_t count = std::min(piece.size(), rest.size());
    std::ranges::copy(rest.first(count), piece.begin());
    Demand(WavpackPackSamples(context.get(), piece.data(),
                              static_cast<std::uint32_t>(count / signal.fChannels)));
    rest = rest.subspan(count);
  }
  Demand(WavpackFlushSamples(context.get()));
}

struct CSource {
  std::span<const std::uint8_t> fStream;
  std::size_t fPosition = 0;
};

CSource& SourceOf(void* id) { return *static_cast<CSource*>(id); }

std::int32_t Read(void* id, void* data, std::int32_t wanted) {
  CSource& source = SourceOf(id);
  const std::size_t count =
      std::min(static_cast<std::size_t>(wanted), source.fStream.size() - source.fPosition);
  std::copy_n(source.fStream.begin() + static_cast<std::ptrdiff_t>(source.fPosition), count,
              static_cast<std::uint8_t*>(data));
  source.fPosition += count;
  return static_cast<std::int32_t>(count);
}

std::int64_t Position(void* id) { return static_cast<std::int64_t>(SourceOf(id).fPosition); }

std::int64_t Length(void* id) { return static_cast<std::int64_t>(SourceOf(id).fStream.size()); }

/// Whoever gives no way to seek is asked for a byte back at most.
int PushBack(void* id, int byte) {
  --SourceOf(id).fPosition;
  return byte;
}

void Decode(std::span<const std::uint8_t> stream, const CSignal& signal, CSignalCheck* check) {
  WavpackStreamReader64 reader{};
  reader.read_bytes = Read;
  reader.get_pos = Position;
  reader.push_back_byte = PushBack;
  reader.get_length = Length;
  reader.can_seek = [](void*) { return 0; };
  CSource source{stream};
  std::array<char, 81> error{};
  const Context context(WavpackOpenFileInputEx64(&reader, &source, nullptr, error.data(), 0, 0),
                        WavpackCloseFile);
  if (context == nullptr) throw std::runtime_error(error.data());
  std::vector<std::int32_t> piece(kDecodedFrames * signal.fChannels);
  while (const std::uint32_t frames =
             WavpackUnpackSamples(context.get(), piece.data(), kDecodedFrames)) {
    if (check != nullptr) {
      check->TakeInterleaved(std::span(piece).first(std::size_t{frames} * signal.fChannels));
    }
  }
  Demand(WavpackGetNumErrors(context.get()) == 0);
}

}  // namespace

std::vector<CCoder> WavPackCoders() { return {{"WavPack -f", Encode, {{"WavPack -f", Decode}}}}; }

}  // namespace NSBench
