#pragma once

#include <cstdint>
#include <string>

#include "app/TextResources.h"

namespace NSTambraPacking {

/// The type code of packed WAVE and AIFF samples.
inline constexpr std::int32_t kSampleEntryType = 11;

/// What the user calls the files of a package entry's type; one name for WAVE and AIFF samples,
/// since a package does not tell them apart.
std::u16string EntryTypeName(const CTextResources& texts, std::int32_t typeCode);

}  // namespace NSTambraPacking
