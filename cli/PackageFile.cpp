#include "cli/PackageFile.h"

#include "cli/Command.h"

namespace NSTambraCli {

CPackageFile OpenPackage(const std::string& argument) {
  return NSTambraPacking::OpenPackageFile(PathArgument(argument));
}

}  // namespace NSTambraCli
