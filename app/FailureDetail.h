#pragma once

#include <exception>
#include <string>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "app/TextResources.h"

namespace NSTambraPacking {

/// What a failure says of itself.
struct CFailureDetail {
  std::string fMessage;  ///< empty when the alert of its kind says it all
  NSMordel::CContext fContext;

  /// The message behind the object that failed, where that is known. Not yet printable.
  std::u16string Line(const CTextResources& texts) const;
};

/// `subject` is what was worked on, empty when that is not known; it counts when the failure itself
/// names no object.
CFailureDetail DetailOfFailure(const std::exception_ptr& failure, const std::string& subject);

/// The alert of a failure that left what the user wanted to do with a package: that of its kind,
/// its message replaced by the failure's own words where it has some.
CAlertText AlertOfFailure(const CTextResources& texts, const std::exception_ptr& failure,
                          const std::string& subject);

}  // namespace NSTambraPacking
