#pragma once

#include <cstdint>
#include <string>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSTambraPacking {

/// Width and height that the splash picture must have, in pixels.
inline constexpr std::uint32_t kSplashEdge = 64;

/// Context keys of failures that concern one file: its name (the path stands under
/// target_object_id, with target_object_type "file") and its entry type code in decimal.
inline constexpr const char* kFileNameKey = "name";
inline constexpr const char* kEntryTypeKey = "tambrafileentrytype";
/// Context key of every failure of the splash picture. Its value is the file's name, empty when
/// there is none.
inline constexpr const char* kSplashKey = "tambrasplash";
/// Context key of the failure that the package has no name. Its value is empty.
inline constexpr const char* kTambraNameKey = "tambraname";

/// In pixels.
struct CPictureSize {
  std::uint32_t fWidth = 0;
  std::uint32_t fHeight = 0;
};

class IPictureReader {
 public:
  virtual ~IPictureReader() = default;
  /// The size of the whole decoded JPEG picture. Throws XFormatViolation or XUnsupportedFormat when
  /// it cannot be decoded, XRead when it cannot be read.
  virtual CPictureSize ReadPictureSize(const NSBigFilePackage::SharedMedia& picture) const = 0;
};

/// The context of a failure that concerns the file with this path: target_object_type,
/// target_object_id, kFileNameKey and kEntryTypeKey.
NSMordel::CContext FileContext(const std::u16string& path, std::int32_t typeCode);

/// Returns when `picture`, which is not null, is a JPEG of 64 by 64 pixels. Throws
/// XUnsupportedFormat "Splash file format error" when it cannot be decoded and "Splash file size
/// error" when it has another size, both with FileContext and kSplashKey.
void CheckSplashSize(const std::u16string& path, std::int32_t typeCode,
                     const NSBigFilePackage::SharedMedia& picture, const IPictureReader& reader);

}  // namespace NSTambraPacking
