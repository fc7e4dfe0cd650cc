#pragma once

#include <string>
#include <string_view>

namespace NSTambraPacking {

/// True when `path` is `pattern`, in which "*" stands for any characters, "/" included, and "?" for
/// one. Case counts, normalisation does not.
bool MatchesPattern(std::u16string_view path, std::u16string_view pattern);

}  // namespace NSTambraPacking
