#pragma once

#include <cstdint>
#include <optional>

#include "package/PackageEntry.h"

namespace NSTambraPacking {

/// The bytes of the file that an entry becomes when it is extracted; nothing for a sample whose
/// header cannot be read. Decodes nothing. Throws XRead.
std::optional<std::uint64_t> ExtractedSize(const CPackageEntry& entry);

}  // namespace NSTambraPacking
