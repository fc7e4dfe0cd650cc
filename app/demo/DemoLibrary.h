#pragma once

#include <cstddef>
#include <functional>

#include "Parts/TolbrookPackage/Core/FileSystem.h"

namespace NSTambraPacking {

/// Writes a small but complete content library that packs without a problem: files of every type,
/// references in every form, information texts in several encodings. The bytes are the same on
/// every call and system. Makes `folder` with its parents where missing. Returns the number of
/// files. `checkStop` is called before each file and may throw. Throws XAlreadyExists, and touches
/// nothing, when `folder` holds anything or is no folder; XCreate, XWrite and the like, with what
/// was written so far removed again where possible, as it is when `checkStop` throws.
std::size_t WriteDemoLibrary(
    const NSTolbrook::NativePath& folder, const std::function<void()>& checkStop = [] {});

}  // namespace NSTambraPacking
