#include "cli/PackageFile.h"

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "cli/Command.h"
#include "package/StdioMedia.h"

namespace NSTambraCli {

CPackageFile OpenPackage(const std::string& argument) {
  const auto media = NSBigFilePackage::CStdioMedia::OpenForReading(PathArgument(argument));
  try {
    return {media, NSTambraPacking::CPackageReader(media)};
  } catch (const NSMordel::XFormatViolation& e) {
    throw NSMordel::XFormatViolation(std::string("no package, or a damaged one: ") + e.Message(),
                                     e.Context());
  }
}

}  // namespace NSTambraCli
