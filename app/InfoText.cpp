#include "app/InfoText.h"

#include <algorithm>

#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTambraPacking {

namespace {

constexpr std::u16string_view kBlanksAndLineEnds = u" \t\r\n";
constexpr std::u16string_view kDeclaration = u"CHARACTER_ENCODING=\"";
constexpr std::string_view kUtf8Declaration = "CHARACTER_ENCODING=\"UTF-8\"";
constexpr std::string_view kUtf16Declaration = "CHARACTER_ENCODING=\"UTF-16\"";

template <class Unit>
constexpr Unit Capital(Unit unit) {
  return unit >= 'a' && unit <= 'z' ? static_cast<Unit>(unit - 'a' + 'A') : unit;
}

template <class Unit>
bool BeginsWithCapitals(std::basic_string_view<Unit> text, std::basic_string_view<Unit> beginning) {
  return text.size() >= beginning.size() &&
         std::equal(beginning.begin(), beginning.end(), text.begin(),
                    [](Unit expected, Unit found) { return expected == Capital(found); });
}

/// True when `bytes` begins with the UTF-16 declaration, each character in two bytes of which the
/// one at `lowByte` (0 or 1) holds it and the other is 0.
bool DeclaresUtf16(std::string_view bytes, std::size_t lowByte) {
  if (bytes.size() < 2 * kUtf16Declaration.size()) return false;
  for (std::size_t i = 0; i < kUtf16Declaration.size(); ++i) {
    if (bytes[2 * i + 1 - lowByte] != 0 ||
        Capital(bytes[2 * i + lowByte]) != kUtf16Declaration[i]) {
      return false;
    }
  }
  return true;
}

std::u16string Decode(std::string_view bytes) {
  switch (DetectEncoding(bytes)) {
    case ETextEncoding::kUtf8:
      return NSTolbrook::TextFromUtf8(bytes);
    case ETextEncoding::kUtf16BigEndian:
      return NSTolbrook::TextFromUtf16BigEndian(bytes);
    case ETextEncoding::kUtf16LittleEndian:
      return NSTolbrook::TextFromUtf16LittleEndian(bytes);
    case ETextEncoding::kWindows1252:
      break;
  }
  return NSTolbrook::TextFromWindows1252(bytes);
}

/// The length of the declaration that `text` begins with, up to its closing quote; else 0.
std::size_t DeclarationLength(std::u16string_view text) {
  if (!BeginsWithCapitals(text, kDeclaration)) return 0;
  const std::size_t quote = text.find(u'"', kDeclaration.size());
  return quote == text.npos ? 0 : quote + 1;
}

}  // namespace

ETextEncoding DetectEncoding(std::string_view bytes) {
  // A UTF-8 mark needs 3 bytes and a UTF-16 mark 2; the declarations 26 and 54. Only the letters
  // of a declaration have capitals, so comparing it as a whole is comparing its letters.
  if (bytes.starts_with("\xEF\xBB\xBF") || BeginsWithCapitals(bytes, kUtf8Declaration)) {
    return ETextEncoding::kUtf8;
  }
  if (bytes.starts_with("\xFE\xFF") || DeclaresUtf16(bytes, 1)) {
    return ETextEncoding::kUtf16BigEndian;
  }
  if (bytes.starts_with("\xFF\xFE") || DeclaresUtf16(bytes, 0)) {
    return ETextEncoding::kUtf16LittleEndian;
  }
  return ETextEncoding::kWindows1252;
}

std::u16string DecodeInformationText(std::string_view bytes) {
  const std::u16string decoded = Decode(bytes);
  std::u16string_view text = decoded;
  if (text.starts_with(u'\uFEFF')) text.remove_prefix(1);
  if (const std::size_t declaration = DeclarationLength(text); declaration > 0) {
    text.remove_prefix(declaration);
    text.remove_prefix(std::min(text.find_first_not_of(kBlanksAndLineEnds), text.size()));
  }
  return std::u16string(text);
}

std::u16string_view TrimInformationText(std::u16string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanksAndLineEnds);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanksAndLineEnds) + 1 - first);
}

}  // namespace NSTambraPacking
