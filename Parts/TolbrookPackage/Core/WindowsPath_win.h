#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <string>
#include <windows.h>

#include "Parts/TolbrookPackage/Core/FileFailure.h"

/// What the platform files of Windows share.
namespace NSTolbrook::NSFileDetails {

/// Of FILE_INFO_BY_HANDLE_CLASS, with their documented numbers: not all headers declare them.
inline constexpr auto kFileDispositionInfoEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(21);
inline constexpr auto kFileRenameInfoEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(22);

/// The failure of a system call with its number (GetLastError).
CSystemFailure WindowsFailure(DWORD number);

/// The absolute path with the prefix that lifts the limit of 260 characters. With it the system
/// takes every name as it stands: "a." is not "a", and a folder's "con" is a file. A path that as a
/// whole means a device ("NUL") still does.
std::wstring ExtendedPath(const NativePath& path);
/// The path without that prefix.
std::wstring PlainPath(const std::wstring& extended);

/// A handle that is closed with the object.
class CHandle {
 public:
  explicit CHandle(HANDLE handle) : fHandle(handle) {}
  CHandle(const CHandle&) = delete;
  CHandle& operator=(const CHandle&) = delete;
  ~CHandle() {
    if (IsOpen()) ::CloseHandle(fHandle);
  }
  bool IsOpen() const { return fHandle != INVALID_HANDLE_VALUE; }
  HANDLE Value() const { return fHandle; }

 private:
  HANDLE fHandle;
};

}  // namespace NSTolbrook::NSFileDetails
