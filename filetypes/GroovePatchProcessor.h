#pragma once

#include "filetypes/FileTypeHandlers.h"

namespace NSTambraPacking {

/// Groove patches: XML documents, stored byte for byte.
CFileTypeHandlers GroovePatchFileType();

}  // namespace NSTambraPacking
