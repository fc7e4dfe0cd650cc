#include "app/OpenedPackage.h"

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "package/StdioMedia.h"

namespace NSTambraPacking {

COpenedPackage OpenPackageFile(const NSTolbrook::NativePath& path) {
  const auto media = NSBigFilePackage::CStdioMedia::OpenForReading(path);
  try {
    return {media, CPackageReader(media)};
  } catch (const NSMordel::XFormatViolation& e) {
    throw NSMordel::XFormatViolation(std::string("no package, or a damaged one: ") + e.Message(),
                                     e.Context());
  }
}

}  // namespace NSTambraPacking
