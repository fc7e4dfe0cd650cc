#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Text is UTF-16 in memory (std::u16string); at the edges it is UTF-8 or an older encoding.
namespace NSTolbrook {

/// UTF-8 for display and messages: a lone surrogate becomes U+FFFD.
std::string Utf8FromText(std::u16string_view text);

/// Appends the UTF-8 bytes of one code point for a file. Throws XFormatViolation "High-surrogate
/// missing! Broken Unicode" for a surrogate and "Character code bigger than max Unicode" for a code
/// beyond U+10FFFF.
void AppendStrictUtf8(std::string& bytes, char32_t code);

/// UTF-8 for files; throws as AppendStrictUtf8 for a surrogate without its partner.
std::string StrictUtf8FromText(std::u16string_view text);

/// UTF-16 from UTF-8; each maximal bad subsequence becomes one U+FFFD (Unicode, 3.9, table 3-8).
std::u16string TextFromUtf8(std::string_view bytes);

/// UTF-16 from UTF-8, or nothing when the bytes are not valid UTF-8.
std::optional<std::u16string> StrictTextFromUtf8(std::string_view bytes);

/// Windows-1252; the five bytes without a character become the control character of their number.
std::u16string TextFromWindows1252(std::string_view bytes);

/// Windows-1252 when every character has a byte (the inverse of TextFromWindows1252).
std::optional<std::string> Windows1252FromText(std::u16string_view text);

/// UTF-16 code units from bytes, two each in the given order; an odd last byte and each lone
/// surrogate become U+FFFD.
std::u16string TextFromUtf16BigEndian(std::string_view bytes);
std::u16string TextFromUtf16LittleEndian(std::string_view bytes);

/// Each code point by full case folding when that gives one code point, else by its simple
/// lowercase; not normalised. Lone surrogates stay. (Unicode, 3.13 and CaseFolding.txt.)
std::u16string FoldCase(std::u16string_view text);

/// Unicode normalisation form C (UAX #15) in a time that grows no faster than n log n. Lone
/// surrogates stay.
std::u16string NormalizeText(std::u16string_view text);

/// Two names are the same when their keys are: NFC(fold(NFC(name))).
std::u16string ComparisonKey(std::u16string_view name);

/// True when `text` holds a control character (general category Cc).
bool HasControlCharacter(std::u16string_view text);

}  // namespace NSTolbrook
