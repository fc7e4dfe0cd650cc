#pragma once

#include <vector>

#include "Parts/TolbrookPackage/Core/FileSystem.h"

#include "app/PackageInformation.h"

namespace NSTambraPacking {

/// The information files of a folder as they must be for a run to read the texts of `wanted` (name,
/// URL, comments, copyright and version; blanks and line ends around them are dropped). A text that
/// is not changed is not touched. A changed one stays in the file and place it was read from; a new
/// one becomes a key at the end of "INFO.TXT", or, when a key cannot hold it, a file of its own.
/// All other bytes stay as they are, unless a file's encoding cannot hold the text: then the file
/// becomes UTF-8 and declares it. Files that are not there yet come last. Throws XFormatViolation
/// when the texts cannot be kept.
std::vector<CInformationFile> EditInformation(std::vector<CInformationFile> files,
                                              const CPackageInformation& wanted);

/// Reads the information files of the folder, edits them and writes those that change, each as a
/// whole or not at all. Throws as EditInformation, and what reading and writing throw.
void SaveInformation(const NSTolbrook::NativePath& folder, const CPackageInformation& wanted);

}  // namespace NSTambraPacking
