#pragma once

#include <string>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTambraPacking {

inline constexpr const char* kNoPackage = "no package, or a damaged one: ";

/// What `work` returns. When it finds that a file has not the form that was expected
/// (XFormatViolation), `fault` goes before what it says.
template <class Work>
auto WithFormFault(const char* fault, const Work& work) {
  try {
    return work();
  } catch (const NSMordel::XFormatViolation& e) {
    throw NSMordel::XFormatViolation(std::string(fault) + e.Message(), e.Context());
  }
}

}  // namespace NSTambraPacking
