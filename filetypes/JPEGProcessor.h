#pragma once

#include "filetypes/FileTypeHandlers.h"

namespace NSTambraPacking {

/// JPEG pictures: decoded whole to check them, stored byte for byte.
CFileTypeHandlers JPEGFileType();

}  // namespace NSTambraPacking
