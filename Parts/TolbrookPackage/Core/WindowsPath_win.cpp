#include "Parts/TolbrookPackage/Core/WindowsPath_win.h"

#include <string_view>
#include <system_error>

namespace NSTolbrook::NSFileDetails {

namespace {

EFailure FailureKind(DWORD number) {
  switch (number) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_INVALID_NAME:
      return EFailure::kNotFound;
    case ERROR_ACCESS_DENIED:
    case ERROR_PRIVILEGE_NOT_HELD:
      return EFailure::kPermission;
    case ERROR_WRITE_PROTECT:
      return EFailure::kReadOnly;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case ERROR_FILE_TOO_LARGE:
      return EFailure::kOutOfSpace;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_BUSY:
      return EFailure::kLocked;
    case ERROR_TOO_MANY_OPEN_FILES:
      return EFailure::kOutOfItems;
    case ERROR_NOT_READY:
    case ERROR_DEV_NOT_EXIST:
      return EFailure::kNotReady;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      return EFailure::kAlreadyExists;
    default:
      return EFailure::kOther;
  }
}

}  // namespace

CSystemFailure WindowsFailure(DWORD number) {
  return {FailureKind(number), std::to_string(number),
          std::system_category().message(static_cast<int>(number))};
}

std::wstring ExtendedPath(const NativePath& path) {
  constexpr std::wstring_view kLocalPrefix = L"\\\\?\\";
  constexpr std::wstring_view kNetworkPrefix = L"\\\\?\\UNC\\";
  constexpr std::wstring_view kDevicePrefix = L"\\\\.\\";
  const std::wstring given = path.native();
  if (given.starts_with(kLocalPrefix) || given.starts_with(kDevicePrefix)) return given;
  const DWORD room = ::GetFullPathNameW(given.c_str(), 0, nullptr, nullptr);
  std::wstring full(room, L'\0');
  const DWORD length = ::GetFullPathNameW(given.c_str(), room, full.data(), nullptr);
  if (room == 0 || length == 0 || length >= room) {
    ThrowFileFailure<NSMordel::XOpen>("cannot make the path absolute", path,
                                      WindowsFailure(::GetLastError()));
  }
  full.resize(length);
  if (full.starts_with(kDevicePrefix)) return full;
  if (full.starts_with(L"\\\\")) return std::wstring(kNetworkPrefix) + full.substr(2);
  return std::wstring(kLocalPrefix) + full;
}

}  // namespace NSTolbrook::NSFileDetails
