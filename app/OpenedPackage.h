#pragma once

#include "Parts/TolbrookPackage/Core/FileSystem.h"

#include "package/PackageReader.h"

namespace NSTambraPacking {

/// A package that the user named.
struct COpenedPackage {
  NSBigFilePackage::SharedMedia fMedia;
  CPackageReader fReader;
};

/// Opens a package and reads its header. Throws as CStdioMedia::OpenForReading and CPackageReader;
/// the message of an XFormatViolation begins with the words that the file is no package.
COpenedPackage OpenPackageFile(const NSTolbrook::NativePath& path);

}  // namespace NSTambraPacking
