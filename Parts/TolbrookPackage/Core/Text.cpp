#include "Parts/TolbrookPackage/Core/Text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <utf8.h>
#include <utf8proc.h>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/ExceptionResponder.h"

namespace NSTolbrook {

namespace {

constexpr char16_t kReplacement = 0xFFFD;

/// The characters of the bytes 0x80 to 0x9F in Windows-1252; the others are those of Latin-1.
constexpr std::array<char16_t, 32> kWindows1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }
constexpr bool IsSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; }

/// The code point at `index`, which moves on behind it; a lone surrogate comes as it is.
char32_t TakeCodePoint(std::u16string_view text, std::size_t& index) {
  const char32_t unit = text[index++];
  if (!IsHighSurrogate(unit) || index == text.size() || !IsLowSurrogate(text[index])) return unit;
  return 0x10000 + ((unit - 0xD800) << 10) + (text[index++] - 0xDC00U);
}

void AppendCodePoint(std::u16string& text, char32_t code) {
  if (code < 0x10000) {
    text += static_cast<char16_t>(code);
    return;
  }
  text += static_cast<char16_t>(0xD7C0 + (code >> 10));
  text += static_cast<char16_t>(0xDC00 + (code & 0x3FF));
}

void AppendUtf8(std::string& bytes, char32_t code) {
  utf8::unchecked::append(code, std::back_inserter(bytes));
}

void ReplaceLoneSurrogates(std::u16string& text) {
  for (std::size_t index = 0; index < text.size();) {
    const std::size_t start = index;
    if (IsSurrogate(TakeCodePoint(text, index))) text[start] = kReplacement;
  }
}

/// The length of the maximal subpart of an ill-formed sequence that `bytes` begins with: as many
/// bytes as begin some valid sequence, at least one (Unicode, 3.9, D93b and table 3-7).
std::size_t BadSubsequenceLength(std::string_view bytes) {
  const auto byte = [bytes](std::size_t i) { return static_cast<std::uint8_t>(bytes[i]); };
  const std::uint8_t lead = byte(0);
  if (lead < 0xC2 || lead > 0xF4 || bytes.size() < 2) return 1;
  const std::uint8_t least = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const std::uint8_t greatest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  if (byte(1) < least || byte(1) > greatest) return 1;
  const std::size_t whole = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  std::size_t length = 2;
  while (length < std::min(whole, bytes.size()) && (byte(length) & 0xC0) == 0x80) ++length;
  return length;
}

std::u16string TextFromUtf16(std::string_view bytes, std::size_t highByte) {
  std::u16string text;
  text.reserve(bytes.size() / 2 + 1);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto high = static_cast<std::uint8_t>(bytes[i + highByte]);
    const auto low = static_cast<std::uint8_t>(bytes[i + 1 - highByte]);
    text += static_cast<char16_t>((high << 8) | low);
  }
  ReplaceLoneSurrogates(text);
  if (bytes.size() % 2 != 0) text += kReplacement;
  return text;
}

char32_t FoldCodePoint(char32_t code) {
  if (code < 0x80) return code >= 'A' && code <= 'Z' ? code + ('a' - 'A') : code;
  if (IsSurrogate(code)) return code;
  constexpr utf8proc_ssize_t kLongestFolding = 4;
  std::array<utf8proc_int32_t, kLongestFolding> folded{};
  const auto signedCode = static_cast<utf8proc_int32_t>(code);
  const utf8proc_ssize_t count = utf8proc_decompose_char(signedCode, folded.data(), kLongestFolding,
                                                         UTF8PROC_CASEFOLD, nullptr);
  return static_cast<char32_t>(count == 1 ? folded[0] : utf8proc_tolower(signedCode));
}

/// Sorts marks between two starters by their combining class, equal ones as they stand. (The
/// library's own sort is quadratic in the number of marks, and names come from outside.)
void OrderMarks(std::vector<utf8proc_int32_t>& codes) {
  const auto combiningClass = [](utf8proc_int32_t code) {
    return utf8proc_get_property(code)->combining_class;
  };
  const auto isMark = [&](utf8proc_int32_t code) { return combiningClass(code) != 0; };
  for (auto at = codes.begin(); at != codes.end();) {
    const auto first = std::find_if(at, codes.end(), isMark);
    at = std::find_if_not(first, codes.end(), isMark);
    std::stable_sort(first, at, [&](utf8proc_int32_t left, utf8proc_int32_t right) {
      return combiningClass(left) < combiningClass(right);
    });
  }
}

/// Appends the composed form of `codes`, canonically decomposed and in no order, and empties it.
void FlushComposed(std::u16string& text, std::vector<utf8proc_int32_t>& codes) {
  constexpr auto kOptions = static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE);
  OrderMarks(codes);
  const utf8proc_ssize_t count =
      utf8proc_normalize_utf32(codes.data(), static_cast<utf8proc_ssize_t>(codes.size()), kOptions);
  NSMordel::CheckInvariant(count >= 0, "the composition of a text failed");
  codes.resize(static_cast<std::size_t>(count));
  for (const utf8proc_int32_t code : codes) AppendCodePoint(text, static_cast<char32_t>(code));
  codes.clear();
}

void AppendDecomposed(std::vector<utf8proc_int32_t>& codes, char32_t code) {
  constexpr utf8proc_ssize_t kLongestDecomposition = 8;
  std::array<utf8proc_int32_t, kLongestDecomposition> parts{};
  const utf8proc_ssize_t count =
      utf8proc_decompose_char(static_cast<utf8proc_int32_t>(code), parts.data(),
                              kLongestDecomposition, UTF8PROC_DECOMPOSE, nullptr);
  NSMordel::CheckInvariant(count >= 0 && count <= kLongestDecomposition,
                           "the decomposition of a character failed");
  codes.insert(codes.end(), parts.begin(), parts.begin() + count);
}

}  // namespace

std::string Utf8FromText(std::u16string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t index = 0; index < text.size();) {
    if (text[index] < 0x80) {  // most are
      bytes += static_cast<char>(text[index++]);
      continue;
    }
    const char32_t code = TakeCodePoint(text, index);
    AppendUtf8(bytes, IsSurrogate(code) ? kReplacement : code);
  }
  return bytes;
}

void AppendStrictUtf8(std::string& bytes, char32_t code) {
  if (IsSurrogate(code)) {
    throw NSMordel::XFormatViolation("High-surrogate missing! Broken Unicode",
                                     {{NSMordel::kTargetObjectType, "unicode"}});
  }
  if (code > 0x10FFFF) {
    throw NSMordel::XFormatViolation("Character code bigger than max Unicode",
                                     {{NSMordel::kTargetObjectType, "unicode"}});
  }
  AppendUtf8(bytes, code);
}

std::string StrictUtf8FromText(std::u16string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t index = 0; index < text.size();) {
    AppendStrictUtf8(bytes, TakeCodePoint(text, index));
  }
  return bytes;
}

std::u16string TextFromUtf8(std::string_view bytes) {
  std::u16string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const auto bad = utf8::find_invalid(bytes.begin(), bytes.end());
    utf8::unchecked::utf8to16(bytes.begin(), bad, std::back_inserter(text));
    bytes.remove_prefix(static_cast<std::size_t>(bad - bytes.begin()));
    if (bytes.empty()) break;
    text += kReplacement;
    bytes.remove_prefix(BadSubsequenceLength(bytes));
  }
  return text;
}

std::optional<std::u16string> StrictTextFromUtf8(std::string_view bytes) {
  if (!utf8::is_valid(bytes.begin(), bytes.end())) return std::nullopt;
  std::u16string text;
  text.reserve(bytes.size());
  utf8::unchecked::utf8to16(bytes.begin(), bytes.end(), std::back_inserter(text));
  return text;
}

std::u16string TextFromWindows1252(std::string_view bytes) {
  std::u16string text(bytes.size(), u'\0');
  std::transform(bytes.begin(), bytes.end(), text.begin(), [](char character) {
    const auto byte = static_cast<std::uint8_t>(character);
    return byte >= 0x80 && byte <= 0x9F ? kWindows1252[byte - 0x80U] : char16_t{byte};
  });
  return text;
}

std::optional<std::string> Windows1252FromText(std::u16string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (const char16_t unit : text) {
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) {
      bytes += static_cast<char>(unit);
      continue;
    }
    const auto found = std::find(kWindows1252.begin(), kWindows1252.end(), unit);
    if (found == kWindows1252.end()) return std::nullopt;
    bytes += static_cast<char>(0x80 + (found - kWindows1252.begin()));
  }
  return bytes;
}

std::u16string TextFromUtf16BigEndian(std::string_view bytes) { return TextFromUtf16(bytes, 0); }

std::u16string TextFromUtf16LittleEndian(std::string_view bytes) { return TextFromUtf16(bytes, 1); }

std::u16string FoldCase(std::u16string_view text) {
  std::u16string folded;
  folded.reserve(text.size());
  for (std::size_t index = 0; index < text.size();) {
    AppendCodePoint(folded, FoldCodePoint(TakeCodePoint(text, index)));
  }
  return folded;
}

std::u16string NormalizeText(std::u16string_view text) {
  // Everything before the first combining mark is composed already, whatever stands beside it.
  constexpr char16_t kFirstMark = 0x0300;
  if (std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < kFirstMark; })) {
    return std::u16string(text);
  }
  std::u16string normalized;
  normalized.reserve(text.size());
  std::vector<utf8proc_int32_t> codes;
  for (std::size_t index = 0; index < text.size();) {
    const char32_t code = TakeCodePoint(text, index);
    if (IsSurrogate(code)) {
      FlushComposed(normalized, codes);
      normalized += static_cast<char16_t>(code);
    } else {
      AppendDecomposed(codes, code);
    }
  }
  FlushComposed(normalized, codes);
  return normalized;
}

std::u16string ComparisonKey(std::u16string_view name) {
  if (std::all_of(name.begin(), name.end(), [](char16_t unit) { return unit < 0x80; })) {
    return FoldCase(name);
  }
  return NormalizeText(FoldCase(NormalizeText(name)));
}

bool HasControlCharacter(std::u16string_view text) {
  return std::any_of(text.begin(), text.end(),
                     [](char16_t unit) { return unit < 0x20 || (unit >= 0x7F && unit <= 0x9F); });
}

}  // namespace NSTolbrook
