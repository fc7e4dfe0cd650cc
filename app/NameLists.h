#pragma once

#include <string>
#include <vector>

#include "app/TextResources.h"

namespace NSTambraPacking {

/// Each name once, in order of first appearance.
std::vector<std::u16string> DistinctNames(const std::vector<std::u16string>& names);

/// The names with the text tables' list separator between them.
std::u16string JoinNames(const CTextResources& texts, const std::vector<std::u16string>& names);

}  // namespace NSTambraPacking
