#pragma once

#include <string>

#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSTambraPacking {

/// The greatest XML document that is taken into memory, in bytes.
inline constexpr std::uint64_t kGreatestXMLDocument = 64u << 20;

/// The whole text of a small document. Throws XFormatViolation above kGreatestXMLDocument.
std::string ReadDocumentText(const NSBigFilePackage::IMedia& source);

}  // namespace NSTambraPacking
