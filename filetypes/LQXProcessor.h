#pragma once

#include "filetypes/FileTypeHandlers.h"

namespace NSTambraPacking {

/// Sliced-loop files: opened with the host's library to check them, stored byte for byte.
CFileTypeHandlers LQXFileType(std::int32_t entryTypeCode);

}  // namespace NSTambraPacking
