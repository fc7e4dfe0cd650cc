#pragma once

#include <cstdint>
#include <string>

namespace NSTolbrook {

/// Four characters in 32 bits, the first in the highest byte whatever a file's byte order.
using FourCharCode = std::uint32_t;

/// The code of a literal such as "FORM".
consteval FourCharCode MakeFourCharCode(const char (&text)[5]) {
  FourCharCode code = 0;
  for (int i = 0; i < 4; ++i) code = (code << 8) | static_cast<std::uint8_t>(text[i]);
  return code;
}

/// True when the first character is 33 to 126 and each of the others is 32 to 126.
constexpr bool IsValidFourCharCode(FourCharCode code) {
  for (int shift = 24; shift >= 0; shift -= 8) {
    const FourCharCode character = (code >> shift) & 0xFF;
    const FourCharCode least = shift == 24 ? 33 : 32;
    if (character < least || character > 126) return false;
  }
  return true;
}

/// The four characters; bytes that are not printable ASCII become "?" (the text is for messages).
std::string FourCharCodeText(FourCharCode code);

}  // namespace NSTolbrook
