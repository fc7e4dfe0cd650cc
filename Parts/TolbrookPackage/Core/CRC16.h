#pragma once

#include <cstdint>
#include <span>

namespace NSTolbrook {

/// CRC-16/XMODEM: polynomial 0x1021, initial value 0, most significant bit first, no reflection, no
/// final exclusive-or. The value of one part handed in as `crc` continues it over the next.
std::uint16_t CRC16(std::span<const std::uint8_t> bytes, std::uint16_t crc = 0);

}  // namespace NSTolbrook
