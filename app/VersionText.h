#pragma once

#include <string>
#include <string_view>

#include "Parts/TolbrookPackage/Core/FormatVersion.h"

#include "app/TextResources.h"

namespace NSTambraPacking {

/// Context key of failures of the package's version; its value is the version's text.
inline constexpr const char* kVersionKey = "tambraversion";

/// The version that a publisher wrote as `major[.minor[.bugfix]][stage build]`: decimal numbers of
/// 32 bits without blanks, the stage one of d, a, b and f; without a stage it is final, build 0.
/// No text at all is 1.0.0. Throws XFormatViolation for any other text and XVersionTooNew for a
/// version later than kSupportedPackageVersion; both carry kVersionKey, the latter
/// also the latest version as "secondary_object_id".
NSTolbrook::CFormatVersion ParseVersionText(std::u16string_view text);

/// `version` as the user reads it.
std::u16string DisplayVersion(const CTextResources& texts,
                              const NSTolbrook::CFormatVersion& version);

}  // namespace NSTambraPacking
