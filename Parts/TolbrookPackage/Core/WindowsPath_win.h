#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <string>
#include <windows.h>

#include "Parts/TolbrookPackage/Core/FileFailure.h"

/// What the platform files of Windows share.
namespace NSTolbrook::NSFileDetails {

/// The failure of a system call with its number (GetLastError).
CSystemFailure WindowsFailure(DWORD number);

/// The absolute path with the prefix that lifts the limit of 260 characters; with it the system
/// takes names like "CON" for files, too.
std::wstring ExtendedPath(const NativePath& path);

}  // namespace NSTolbrook::NSFileDetails
