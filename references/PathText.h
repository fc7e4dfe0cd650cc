#pragma once

#include <string>
#include <string_view>

#include "package/EntryPath.h"

namespace NSTambraPacking {

/// Splits the text of a path inside a document. Throws XFormatViolation with `startMessage` when it
/// does not begin with "/". Empty components are dropped.
CPathComponents SplitPathText(std::u16string_view text, const char* startMessage);

/// The inverse: "/" and the components joined with "/".
std::u16string PathTextFromComponents(const CPathComponents& components);

}  // namespace NSTambraPacking
