#include "tests/support/TestSignal.h"

#include <algorithm>

namespace NSTest {

std::vector<std::int32_t> MakeSignal(ESignal kind, unsigned width, std::size_t count,
                                     std::uint32_t seed) {
  const auto greatest = static_cast<std::int32_t>((1u << (width - 1)) - 1);
  std::int64_t walk = 0;
  const auto random = [&seed] { return seed = seed * 1664525u + 1013904223u; };
  const auto full = [&] { return static_cast<std::int32_t>(random()) >> (32 - width); };
  std::vector<std::int32_t> samples(count);
  for (std::size_t i = 0; i < count; ++i) {
    std::int64_t value = 0;
    switch (kind) {
      case ESignal::kNoise:
        value = full();
        break;
      case ESignal::kQuietNoise:
        value = static_cast<std::int32_t>(random() >> 29) - 4;
        break;
      case ESignal::kExtremes:
        value = random() >> 31 ? greatest : -greatest - 1;
        break;
      case ESignal::kWalk:
        value = walk += full() / 64;
        break;
      case ESignal::kBursts:
        value = i / 97 % 3 == 2 ? full() : 0;
        break;
      case ESignal::kSquare:
        value = i / 2 % 2 ? greatest : -greatest - 1;
        break;
      default:
        break;
    }
    samples[i] = static_cast<std::int32_t>(
        std::clamp<std::int64_t>(value, -std::int64_t{greatest} - 1, greatest));
  }
  return samples;
}

}  // namespace NSTest
