#pragma once

#include <string_view>
#include <vector>

#include "Parts/TolbrookPackage/Core/FourCharCode.h"

#include "filetypes/FileTypeHandlers.h"

namespace NSTambraPacking {

/// One file type of the program; the rows stand in the order of registration.
struct CFileTypeRow {
  std::string_view fExtensions;
  NSTolbrook::FourCharCode fTypeCode;
  /// Of an unregistered type all three are null: its files are known but cannot be packed.
  CFileTypeHandlers fHandlers;
};

/// The 35 types that can be packed; built once, on first use.
const std::vector<CFileTypeRow>& RegisteredFileTypes();

/// The types that are known by name only, so that no verifier or packer is found for them.
const std::vector<CFileTypeRow>& UnregisteredFileTypes();

}  // namespace NSTambraPacking
