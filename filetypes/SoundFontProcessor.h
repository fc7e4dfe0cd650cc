#pragma once

#include "filetypes/FileTypeHandlers.h"

namespace NSTambraPacking {

/// SoundFont banks: parsed to check them, stored byte for byte. They belong to kSoundFontDevice.
CFileTypeHandlers SoundFontFileType();

}  // namespace NSTambraPacking
