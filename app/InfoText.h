#pragma once

#include <string>
#include <string_view>

namespace NSTambraPacking {

/// How the bytes of an information text are to be read.
enum class ETextEncoding { kWindows1252, kUtf8, kUtf16BigEndian, kUtf16LittleEndian };

/// Told by the first bytes: a byte-order mark, or the declaration CHARACTER_ENCODING="UTF-8" or
/// CHARACTER_ENCODING="UTF-16" (letters in any case) in the encoding itself; else Windows-1252.
ETextEncoding DetectEncoding(std::string_view bytes);

/// The text of an information file, without a leading byte-order mark and then without a leading
/// CHARACTER_ENCODING="…" declaration and the blanks and line ends behind it. What cannot be
/// decoded becomes U+FFFD.
std::u16string DecodeInformationText(std::string_view bytes);

/// `text` without the blanks, tabs and line ends at both ends.
std::u16string_view TrimInformationText(std::u16string_view text);

}  // namespace NSTambraPacking
