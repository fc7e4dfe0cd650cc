#pragma once

#include <cstdint>
#include <span>

namespace NSTolbrook {

/// The check value CRC-16/XMODEM of the bytes: polynomial 0x1021, initial value 0, most significant
/// bit first, no reflection, no final XOR.
std::uint16_t CRC16(std::span<const std::uint8_t> bytes);

}  // namespace NSTolbrook
