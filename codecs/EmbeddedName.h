#pragma once

#include <string>
#include <string_view>

namespace NSTambraPacking {

/// The text of a name inside a music file, whose encoding the file does not tell: the bytes before
/// the first zero byte, as UTF-8 when they are that, else as Windows-1252.
std::u16string TextFromEmbeddedName(std::string_view bytes);

}  // namespace NSTambraPacking
