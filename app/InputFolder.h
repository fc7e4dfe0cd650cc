#pragma once

#include <vector>

#include "Parts/TolbrookPackage/Core/FileSystem.h"

#include "app/PackageInformation.h"

namespace NSTambraPacking {

/// The information files in the top of an input folder, in scan order. Throws XNotFound when
/// there is no such folder, XOpen when it is no folder, and what reading throws.
std::vector<CInformationFile> ReadInformationFiles(const NSTolbrook::NativePath& inputFolder);

/// Throws XCreate with kOutputFolderKey when the output folder, which need not exist, is the input
/// folder or lies inside it: the next run would pack its own package.
void CheckOutputFolder(const NSTolbrook::NativePath& inputFolder,
                       const NSTolbrook::NativePath& outputFolder);

}  // namespace NSTambraPacking
