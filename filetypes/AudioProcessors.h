#pragma once

#include "filetypes/FileTypeHandlers.h"

namespace NSTambraPacking {

/// WAVE and AIFF samples: accepted with 1 or 2 channels, packed as DWOP streams, and checked in the
/// finished package by decoding all of the stream.
CFileTypeHandlers WAVEFileType();
CFileTypeHandlers AIFFFileType();

}  // namespace NSTambraPacking
