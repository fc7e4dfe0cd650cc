#include "app/OpenedPackage.h"

#include "app/FormFault.h"
#include "package/StdioMedia.h"

namespace NSTambraPacking {

COpenedPackage OpenPackageFile(const NSTolbrook::NativePath& path) {
  const auto media = NSBigFilePackage::CStdioMedia::OpenForReading(path);
  return WithFormFault(kNoPackage, [&] { return COpenedPackage{media, CPackageReader(media)}; });
}

}  // namespace NSTambraPacking
