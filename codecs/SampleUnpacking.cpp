#include "codecs/SampleUnpacking.h"

#include <cstring>

namespace NSTambraPacking {

namespace {

/// Builds each sample at the top of 32 bits and shifts it down, so that its sign follows.
template <std::size_t Bytes, bool IsBigEndian>
void Unpack(const std::uint8_t* source, std::span<std::int32_t> samples) {
  constexpr unsigned kAbove = 32 - 8 * Bytes;
  for (std::int32_t& sample : samples) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < Bytes; ++i) {
      const std::size_t place = IsBigEndian ? Bytes - 1 - i : i;
      value |= std::uint32_t{source[i]} << (kAbove + 8 * place);
    }
    sample = static_cast<std::int32_t>(value) >> kAbove;
    source += Bytes;
  }
}

}  // namespace

std::size_t SampleBytes(ESamplePacking packing) {
  switch (packing) {
    case ESamplePacking::k16Little:
    case ESamplePacking::k16Big:
      return 2;
    case ESamplePacking::k24Little:
    case ESamplePacking::k24Big:
      return 3;
    case ESamplePacking::kInt32:
      break;
  }
  return 4;
}

void UnpackSamples(ESamplePacking packing, std::span<const std::uint8_t> bytes,
                   std::span<std::int32_t> samples) {
  switch (packing) {
    case ESamplePacking::k16Little:
      return Unpack<2, false>(bytes.data(), samples);
    case ESamplePacking::k16Big:
      return Unpack<2, true>(bytes.data(), samples);
    case ESamplePacking::k24Little:
      return Unpack<3, false>(bytes.data(), samples);
    case ESamplePacking::k24Big:
      return Unpack<3, true>(bytes.data(), samples);
    case ESamplePacking::kInt32:
      std::memcpy(samples.data(), bytes.data(), bytes.size());
  }
}

}  // namespace NSTambraPacking
