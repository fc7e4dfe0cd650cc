#pragma once

#include <cstdint>

namespace NSTambraPacking {

/// Folds the sign into the lowest bit: 0, -1, 1, -2, 2 (in two's complement) become 0, 1, 2, 3, 4.
constexpr std::uint32_t ZigzagFromError(std::uint32_t error) {
  return (error << 1) ^ (std::uint32_t{0} - (error >> 31));
}
/// The inverse of ZigzagFromError.
constexpr std::uint32_t ErrorFromZigzag(std::uint32_t zigzag) {
  return (zigzag >> 1) ^ (std::uint32_t{0} - (zigzag & 1));
}

}  // namespace NSTambraPacking
