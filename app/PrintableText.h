#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace NSTambraPacking {

/// `text` with U+FFFD for every control character, line ends included, and for those that turn the
/// direction of what follows: text from files can hold anything and is harmless to show then.
std::u16string PrintableText(std::u16string_view text);

/// UTF-8 of the same.
std::string Printable(std::u16string_view text);

/// The lines of `text` as PrintableText shows them, without their line ends; at least one.
std::vector<std::u16string> PrintableTextLines(std::u16string_view text);

/// UTF-8 of the same.
std::vector<std::string> PrintableLines(std::u16string_view text);

}  // namespace NSTambraPacking
