#pragma once

#include "filetypes/FileTypeHandlers.h"

namespace NSTambraPacking {

/// Patches of plug-in devices: XML documents whose references are looked up and rewritten into the
/// package; the device is known by its identifier, which stands near the start.
CFileTypeHandlers VorlinkPatchFileType(std::int32_t entryTypeCode);

}  // namespace NSTambraPacking
