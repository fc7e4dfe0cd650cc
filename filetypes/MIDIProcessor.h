#pragma once

#include "filetypes/FileTypeHandlers.h"

namespace NSTambraPacking {

/// Standard MIDI Files: parsed whole to check them, stored byte for byte.
CFileTypeHandlers MIDIFileType();

}  // namespace NSTambraPacking
