#include "Parts/TolbrookPackage/Core/CRC16.h"

#include <array>
#include <cstddef>

namespace NSTolbrook {

namespace {

constexpr std::array<std::uint16_t, 256> MakeTable() {
  constexpr std::uint16_t kPolynomial = 0x1021;
  std::array<std::uint16_t, 256> table{};
  for (std::size_t byte = 0; byte < table.size(); ++byte) {
    auto crc = static_cast<std::uint16_t>(byte << 8);
    for (int bit = 0; bit < 8; ++bit) {
      const std::uint16_t reduction = (crc & 0x8000) != 0 ? kPolynomial : std::uint16_t{0};
      crc = static_cast<std::uint16_t>((crc << 1) ^ reduction);
    }
    table[byte] = crc;
  }
  return table;
}

constexpr std::array<std::uint16_t, 256> kTable = MakeTable();

}  // namespace

std::uint16_t CRC16(std::span<const std::uint8_t> bytes, std::uint16_t crc) {
  for (const std::uint8_t byte : bytes) {
    crc = static_cast<std::uint16_t>((crc << 8) ^ kTable[(crc >> 8) ^ byte]);
  }
  return crc;
}

}  // namespace NSTolbrook
