#pragma once

#include "filetypes/FileTypeHandlers.h"

namespace NSTambraPacking {

/// Files of no known inner form: proven readable and stored byte for byte.
CFileTypeHandlers RawFileType(std::int32_t entryTypeCode);

}  // namespace NSTambraPacking
