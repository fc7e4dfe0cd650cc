#pragma once

#include "filetypes/FileTypeHandlers.h"

namespace NSTambraPacking {

/// Songs: their references are looked up and rewritten into the package; every device that they
/// use is held against the prohibited ones.
CFileTypeHandlers SongFileType(std::int32_t entryTypeCode);
/// The older song format and the published one have another name, the same structure and the same
/// treatment.
CFileTypeHandlers OlderSongFileType();
CFileTypeHandlers PublishedSongFileType();

}  // namespace NSTambraPacking
