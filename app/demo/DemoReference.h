#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "references/ReferenceChunk.h"

namespace NSTambraPacking {

/// Which forms of its path a reference has, and what else is in it; a sum of these.
enum EDemoForms : unsigned {
  kDemoRelative = 1,
  kDemoDatabase = 2,
  kDemoAbsolute = 4,
  kDemoPackage = 8,  ///< it names this library's package
  kDemoMoved = 16,   ///< its relative form leads to where the file once was
};

/// A file of the library, or something inside its bank, and how a document refers to it.
struct CDemoTarget {
  /// From the library's folder, components joined with "/".
  const char16_t* fPath;
  unsigned fForms;
};

/// The reference of the document at `documentPath`.
CSampleReference MakeDemoReference(const CDemoTarget& target, std::u16string_view documentPath);

/// The body of a reference chunk for it.
std::vector<std::uint8_t> ReferenceBody(const CSampleReference& reference);

/// The body of a chunk that describes a device, in patches and songs alike.
std::vector<std::uint8_t> DeviceBody(std::uint8_t kind, const char16_t* name,
                                     const char16_t* identifier);

}  // namespace NSTambraPacking
