#include "Parts/TolbrookPackage/Core/WindowsPath_win.h"

#include <array>
#include <string_view>

#include "Parts/TolbrookPackage/Core/Text.h"

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
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
      return EFailure::kOutOfMemory;
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

constexpr std::wstring_view kLocalPrefix = L"\\\\?\\";
constexpr std::wstring_view kNetworkPrefix = L"\\\\?\\UNC\\";
constexpr std::wstring_view kDevicePrefix = L"\\\\.\\";

/// The system's words in the user's language, without the line's end.
std::string ReasonOf(DWORD number) {
  constexpr DWORD kFlags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
  std::array<wchar_t, 512> text{};
  const DWORD length = ::FormatMessageW(kFlags, nullptr, number, 0, text.data(),
                                        static_cast<DWORD>(text.size()), nullptr);
  std::u16string reason(text.data(), text.data() + length);
  while (!reason.empty() && std::u16string_view(u"\r\n .").find(reason.back()) != reason.npos) {
    reason.pop_back();
  }
  return reason.empty() ? "error " + std::to_string(number) : Utf8FromText(reason);
}

/// What the system makes of a path: absolute, and some names changed.
std::wstring FullPath(const std::wstring& path) {
  const DWORD room = ::GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
  std::wstring full(room, L'\0');
  const DWORD length = ::GetFullPathNameW(path.c_str(), room, full.data(), nullptr);
  if (room == 0 || length == 0 || length >= room) {
    ThrowFileFailure<NSMordel::XOpen>("cannot make the path absolute", path,
                                      WindowsFailure(::GetLastError()));
  }
  full.resize(length);
  return full;
}

/// Without "." and "..", and without a separator at the end.
std::wstring NormalPath(const NativePath& path) {
  NativePath normal = path.lexically_normal().make_preferred();
  if (!normal.has_filename() && normal.has_relative_path()) normal = normal.parent_path();
  return normal.native();
}

bool IsNetworkPath(const std::wstring& path) {
  constexpr std::wstring_view kSeparators = L"\\/";
  return path.size() > 2 && kSeparators.find(path[0]) != kSeparators.npos &&
         kSeparators.find(path[1]) != kSeparators.npos;
}

/// As FullPath, but with every name as it stands.
std::wstring AbsolutePath(const NativePath& path) {
  // The standard library takes a server for a folder, and would take one separator away.
  if (IsNetworkPath(path.native())) return L"\\\\" + NormalPath(path.native().substr(2));
  if (path.is_absolute()) return NormalPath(path);
  // The folder from which the system would start: a drive has one of its own.
  const NativePath start = FullPath(path.has_root_name() ? path.root_name().native() : L".");
  if (path.has_root_directory()) return NormalPath(start.root_path() / path.relative_path());
  return NormalPath(start / path.relative_path());
}

}  // namespace

CSystemFailure WindowsFailure(DWORD number) {
  return {FailureKind(number), std::to_string(number), ReasonOf(number)};
}

std::wstring ExtendedPath(const NativePath& path) {
  const std::wstring& given = path.native();
  if (given.starts_with(kLocalPrefix) || given.starts_with(kDevicePrefix)) return given;
  if (!path.has_parent_path()) {
    const std::wstring full = FullPath(given);
    if (full.starts_with(kDevicePrefix)) return full;
  }
  const std::wstring absolute = AbsolutePath(path);
  if (absolute.starts_with(L"\\\\")) return std::wstring(kNetworkPrefix) + absolute.substr(2);
  return std::wstring(kLocalPrefix) + absolute;
}

std::wstring PlainPath(const std::wstring& extended) {
  if (extended.starts_with(kNetworkPrefix)) {
    return L"\\\\" + extended.substr(kNetworkPrefix.size());
  }
  return extended.starts_with(kLocalPrefix) ? extended.substr(kLocalPrefix.size()) : extended;
}

}  // namespace NSTolbrook::NSFileDetails
