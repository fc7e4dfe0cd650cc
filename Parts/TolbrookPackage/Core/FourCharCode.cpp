#include "Parts/TolbrookPackage/Core/FourCharCode.h"

namespace NSTolbrook {

std::string FourCharCodeText(FourCharCode code) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) {
    const auto character = static_cast<char>((code >> shift) & 0xFF);
    text += character >= 32 && character <= 126 ? character : '?';
  }
  return text;
}

}  // namespace NSTolbrook
