#pragma once

#include <string>

#include "package/PackageReader.h"

namespace NSTambraCli {

/// A package that is named on the command line.
struct CPackageFile {
  NSBigFilePackage::SharedMedia fMedia;
  NSTambraPacking::CPackageReader fReader;
};

/// Opens a package and reads its header. Throws as CStdioMedia::OpenForReading and CPackageReader;
/// the message of an XFormatViolation begins with the words that the file is no package.
CPackageFile OpenPackage(const std::string& argument);

}  // namespace NSTambraCli
