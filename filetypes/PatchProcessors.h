#pragma once

#include "filetypes/FileTypeHandlers.h"

namespace NSTambraPacking {

/// Device patches: their references are looked up and rewritten into the package; the device that
/// they describe is held against the prohibited ones.
CFileTypeHandlers PatchFileType(std::int32_t entryTypeCode);

/// The patches of the device that has two forms of them. The second form names no device; it is
/// known by its form type "RBIP".
CFileTypeHandlers RBIPatchFileType(std::int32_t entryTypeCode);

}  // namespace NSTambraPacking
