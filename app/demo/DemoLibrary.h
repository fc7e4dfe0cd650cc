#pragma once

#include <cstddef>

#include "Parts/TolbrookPackage/Core/FileSystem.h"

namespace NSTambraPacking {

/// Writes a small but complete content library that packs without a problem: files of every type,
/// references in every form, information texts in several encodings. The bytes are the same on
/// every call and system. Makes `folder` with its parents where missing. Returns the number of
/// files. Throws XAlreadyExists, and touches nothing, when `folder` holds anything or is no folder;
/// XCreate, XWrite and the like, with what was written so far removed again where possible.
std::size_t WriteDemoLibrary(const NSTolbrook::NativePath& folder);

}  // namespace NSTambraPacking
