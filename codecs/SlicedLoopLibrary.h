#pragma once

#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSTambraPacking {

/// Something that knows sliced-loop files.
class ISlicedLoopLibrary {
 public:
  virtual ~ISlicedLoopLibrary() = default;

  /// Returns when the file can be opened and all of its slices are sound. Throws XFormatViolation
  /// when not and XUnsupportedFormat when it is of a kind that the library does not know, both
  /// with the library's number as "error_code" where it gave one; failures of the media pass. Safe
  /// from several threads at once.
  virtual void Verify(const NSBigFilePackage::IMedia& media) const = 0;
};

/// What can be said about a sliced-loop file without a library: it is an IFF file, a group chunk
/// first, whose chunks and groups fill it to its end, groups nested at most kDeepestLoopGroup
/// deep. Throws XFormatViolation with the chunk's ID and offset.
void VerifyLoopStructure(const NSBigFilePackage::SharedMedia& media);

inline constexpr std::size_t kDeepestLoopGroup = 32;

}  // namespace NSTambraPacking
