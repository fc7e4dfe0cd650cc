#include "Parts/TolbrookPackage/Core/WindowsPath_win.h"

#include <algorithm>
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
    case ERROR_BAD_PATHNAME:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
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
    case ERROR_COMMITMENT_LIMIT:
      return EFailure::kOutOfMemory;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_USER_MAPPED_FILE:
    case ERROR_DELETE_PENDING:
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
/// Behind the prefix: "C:", which without a separator is the whole volume rather than a folder.
constexpr std::size_t kDriveSize = 2;

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

bool IsSeparator(wchar_t unit) { return unit == L'\\' || unit == L'/'; }

bool IsNetworkPath(const std::wstring& path) {
  return path.size() > 2 && IsSeparator(path[0]) && IsSeparator(path[1]);
}

/// How much of an absolute path no ".." takes away: the drive, or a server and what it shares.
std::size_t RootSize(const std::wstring& path) {
  if (!IsNetworkPath(path)) return NativePath(path).root_name().native().size();
  constexpr const wchar_t* kSeparators = L"\\/";
  const std::size_t share = path.find_first_of(kSeparators, 2);
  return std::min(share == path.npos ? share : path.find_first_of(kSeparators, share + 1),
                  path.size());
}

/// As NormalPath, of an absolute path. The standard library takes a server for a folder, and would
/// take one of its separators away.
std::wstring NormalAbsolutePath(const std::wstring& path) {
  const std::size_t size = RootSize(path);
  const std::wstring root = NativePath(path.substr(0, size)).make_preferred().native();
  const std::wstring below = size == path.size() ? L"\\" : NormalPath(path.substr(size));
  return IsNetworkPath(root) && below == L"\\" ? root : root + below;
}

/// As FullPath, but with every name as it stands.
std::wstring AbsolutePath(const NativePath& path) {
  if (path.is_absolute() || IsNetworkPath(path.native())) return NormalAbsolutePath(path.native());
  // The folder from which the system would start: a drive has one of its own.
  std::wstring start = PlainPath(FullPath(path.has_root_name() ? path.root_name().native() : L"."));
  if (path.has_root_directory()) start.resize(RootSize(start));
  return NormalAbsolutePath(start + L'\\' + path.relative_path().native());
}

}  // namespace

CSystemFailure WindowsFailure(DWORD number) {
  return {FailureKind(number), std::to_string(number), ReasonOf(number)};
}

std::wstring ExtendedPath(const NativePath& path) {
  const std::wstring& given = path.native();
  if (given.starts_with(kLocalPrefix) && given.size() == kLocalPrefix.size() + kDriveSize &&
      given.back() == L':') {
    return given + L'\\';
  }
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
