#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "codecs/SamplePacking.h"

namespace NSTambraPacking {

/// Bytes that one sample takes.
std::size_t SampleBytes(ESamplePacking packing);

/// Widens `bytes` to as many `samples`, right-justified and sign-extended.
void UnpackSamples(ESamplePacking packing, std::span<const std::uint8_t> bytes,
                   std::span<std::int32_t> samples);

}  // namespace NSTambraPacking
