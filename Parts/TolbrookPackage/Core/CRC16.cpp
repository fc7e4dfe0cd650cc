#include "Parts/TolbrookPackage/Core/CRC16.h"

namespace NSTolbrook {

std::uint16_t CRC16(std::span<const std::uint8_t> bytes) {
  unsigned value = 0;
  for (const std::uint8_t byte : bytes) {
    value ^= static_cast<unsigned>(byte) << 8;
    for (int bit = 0; bit < 8; ++bit) {
      value = (value & 0x8000) != 0 ? ((value << 1) & 0xFFFF) ^ 0x1021 : (value << 1) & 0xFFFF;
    }
  }
  return static_cast<std::uint16_t>(value);
}

}  // namespace NSTolbrook
