#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace NSTest {

enum class ESignal { kSilence, kNoise, kQuietNoise, kExtremes, kWalk, kBursts, kSquare, kCount };

/// `count` values of a deterministic signal within `width` bits; `seed` makes each one different.
std::vector<std::int32_t> MakeSignal(ESignal kind, unsigned width, std::size_t count,
                                     std::uint32_t seed);

}  // namespace NSTest
