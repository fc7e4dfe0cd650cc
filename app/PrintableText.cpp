#include "app/PrintableText.h"

#include <algorithm>

#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTambraPacking {

namespace {

constexpr char16_t kReplacement = 0xFFFD;

bool IsControl(char16_t unit) {
  if (unit >= 0x20 && unit < 0x7F) return false;  // most are
  return unit < 0xA0 || unit == 0x061C || unit == 0x200E || unit == 0x200F ||
         (unit >= 0x2028 && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
}

}  // namespace

std::u16string PrintableText(std::u16string_view text) {
  std::u16string shown(text);
  std::replace_if(shown.begin(), shown.end(), IsControl, kReplacement);
  return shown;
}

std::string Printable(std::u16string_view text) {
  return NSTolbrook::Utf8FromText(PrintableText(text));
}

std::vector<std::u16string> PrintableTextLines(std::u16string_view text) {
  std::vector<std::u16string> lines;
  while (true) {
    const std::size_t end = text.find_first_of(u"\r\n");
    lines.push_back(PrintableText(text.substr(0, end)));
    if (end == std::u16string_view::npos) return lines;
    text.remove_prefix(end + (text.substr(end, 2) == u"\r\n" ? 2 : 1));
  }
}

std::vector<std::string> PrintableLines(std::u16string_view text) {
  std::vector<std::string> lines;
  for (const std::u16string& line : PrintableTextLines(text)) {
    lines.push_back(NSTolbrook::Utf8FromText(line));
  }
  return lines;
}

}  // namespace NSTambraPacking
