#pragma once

#include <string>

#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSTambraPacking {

struct CPackageHeader;

/// What a file of the input folder is to the package besides a file.
enum class ESpecialFile {
  kNone,
  kInformation,  ///< tells about the package and is not stored in it
  kSplash,       ///< the picture that the host shows
};

/// Knows the special names and gathers what the information files tell.
class ISpecialFiles {
 public:
  virtual ~ISpecialFiles() = default;

  /// What the file with this path inside the package is.
  virtual ESpecialFile KindOf(const std::u16string& path) const = 0;

  /// Takes up the text of an information file, which is never null here. Throws XFormatViolation
  /// and XVersionTooNew when its text cannot be used, and XRead.
  virtual void TakeInformation(const std::u16string& path,
                               const NSBigFilePackage::SharedMedia& data) = 0;

  /// Sets the header's name, URL, comment, copyright and version from all that was taken up; the
  /// name stays empty when none was found.
  virtual void FillHeader(CPackageHeader& header) const = 0;
};

}  // namespace NSTambraPacking
