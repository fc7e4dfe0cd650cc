#pragma once

#include <string>

#include "app/OpenedPackage.h"

namespace NSTambraCli {

using CPackageFile = NSTambraPacking::COpenedPackage;

/// Opens a package that is named on the command line; throws as OpenPackageFile.
CPackageFile OpenPackage(const std::string& argument);

}  // namespace NSTambraCli
