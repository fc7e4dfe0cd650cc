#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace NSTambraPacking {

/// The components of a path: folders from the outermost, then the file.
using CPathComponents = std::vector<std::u16string>;

/// Splits a path of an entry, which has no leading "/"; empty components are dropped.
CPathComponents SplitEntryPath(std::u16string_view path);

/// The components joined with "/".
std::u16string JoinComponents(const CPathComponents& components);

}  // namespace NSTambraPacking
