#include <memory>

#include "Parts/TolbrookPackage/Core/FileSystem.h"
#include "Parts/TolbrookPackage/Core/RenameFile_win.h"
#include "Parts/TolbrookPackage/Core/Text.h"
#include "Parts/TolbrookPackage/Core/WindowsPath_win.h"

namespace NSTolbrook {

namespace {

using namespace NSFileDetails;

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
/// Room for any path that the system hands back.
constexpr DWORD kLongestPath = 32768;

std::u16string TextFromWide(const std::wstring& wide) { return {wide.begin(), wide.end()}; }

HANDLE OpenItem(const std::wstring& path, DWORD access, DWORD flags) {
  return ::CreateFileW(path.c_str(), access, kShareAll, nullptr, OPEN_EXISTING,
                       FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr);
}

bool IsLinkTag(DWORD tag) {
  return tag == IO_REPARSE_TAG_SYMLINK || tag == IO_REPARSE_TAG_MOUNT_POINT;
}

EFileKind KindOf(DWORD attributes, DWORD tag) {
  if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && IsLinkTag(tag)) return EFileKind::kLink;
  if ((attributes & FILE_ATTRIBUTE_DEVICE) != 0) return EFileKind::kOther;
  return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? EFileKind::kFolder : EFileKind::kFile;
}

bool MeansMissing(DWORD number) {
  switch (number) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_PATHNAME:
    case ERROR_DIRECTORY:
    case ERROR_CANT_RESOLVE_FILENAME:
    case ERROR_FILENAME_EXCED_RANGE:
      return true;
    default:
      return false;
  }
}

/// Takes the name away even while others have the file open (all of them sharing it for deletion);
/// false where the file system does not know that.
bool RemoveAtOnce(const std::wstring& path) {
  // Without the flag by which folders could be opened.
  const CHandle file(::CreateFileW(path.c_str(), DELETE, kShareAll, nullptr, OPEN_EXISTING,
                                   FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  FILE_DISPOSITION_INFO_EX how{FILE_DISPOSITION_FLAG_DELETE |
                               FILE_DISPOSITION_FLAG_POSIX_SEMANTICS};
  return file.IsOpen() &&
         ::SetFileInformationByHandle(file.Value(), kFileDispositionInfoEx, &how, sizeof(how)) != 0;
}

}  // namespace

std::optional<std::u16string> TextFromNative(const NativePath& path) {
  std::u16string text = TextFromWide(path.native());
  if (StrictTextFromUtf8(Utf8FromText(text)) != text) return std::nullopt;
  return text;
}

std::string DisplayText(const NativePath& path) {
  return Utf8FromText(TextFromWide(path.native()));
}

NativePath NativeFromText(std::u16string_view text) {
  if (text.find(u'\0') != std::u16string_view::npos) {
    throw NSMordel::XFormatViolation("a path holds the character U+0000");
  }
  return NativePath(std::wstring(text.begin(), text.end()));
}

std::vector<CFolderItem> ListFolder(const NativePath& folder) {
  std::wstring pattern = ExtendedPath(folder);
  if (!pattern.ends_with(L'\\')) pattern += L'\\';  // a drive's path ends with one
  pattern += L'*';
  WIN32_FIND_DATAW found{};
  const HANDLE search =
      ::FindFirstFileExW(pattern.c_str(), FindExInfoBasic, &found, FindExSearchNameMatch, nullptr,
                         FIND_FIRST_EX_LARGE_FETCH);
  if (search == INVALID_HANDLE_VALUE) {
    const DWORD number = ::GetLastError();
    if (number == ERROR_FILE_NOT_FOUND) return {};  // an empty drive: it has no "." and ".."
    ThrowFileFailure<NSMordel::XOpen>("cannot read the folder", folder, WindowsFailure(number),
                                      kFolderObject);
  }
  const auto close = [](HANDLE* open) { ::FindClose(*open); };
  HANDLE owned = search;
  const std::unique_ptr<HANDLE, decltype(close)> closer(&owned, close);
  std::vector<CFolderItem> items;
  do {
    const std::wstring name = found.cFileName;
    if (name == L"." || name == L"..") continue;
    items.push_back({NativePath(name), KindOf(found.dwFileAttributes, found.dwReserved0)});
  } while (::FindNextFileW(search, &found) != 0);
  if (::GetLastError() != ERROR_NO_MORE_FILES) {
    ThrowFileFailure<NSMordel::XRead>("cannot read the folder", folder,
                                      WindowsFailure(::GetLastError()), kFolderObject);
  }
  return items;
}

CFileStatus FileStatus(const NativePath& path, bool followLinks) {
  const auto fail = [&path](DWORD number) {
    ThrowFileFailure<NSMordel::XOpen>("cannot read the file's status", path,
                                      WindowsFailure(number));
  };
  const CHandle item(OpenItem(ExtendedPath(path), FILE_READ_ATTRIBUTES,
                              followLinks ? 0 : FILE_FLAG_OPEN_REPARSE_POINT));
  if (!item.IsOpen()) {
    const DWORD number = ::GetLastError();
    if (MeansMissing(number)) return {};
    fail(number);
  }
  if (::GetFileType(item.Value()) != FILE_TYPE_DISK) return {EFileKind::kOther, 0, {}};
  BY_HANDLE_FILE_INFORMATION information{};
  FILE_ATTRIBUTE_TAG_INFO tag{};
  if (::GetFileInformationByHandle(item.Value(), &information) == 0 ||
      ::GetFileInformationByHandleEx(item.Value(), FileAttributeTagInfo, &tag, sizeof(tag)) == 0) {
    fail(::GetLastError());
  }
  CFileStatus status;
  status.fKind = KindOf(tag.FileAttributes, tag.ReparseTag);
  status.fIdentity = {
      information.dwVolumeSerialNumber,
      (std::uint64_t{information.nFileIndexHigh} << 32) | information.nFileIndexLow};
  if (status.IsFile()) {
    status.fSize = (std::uint64_t{information.nFileSizeHigh} << 32) | information.nFileSizeLow;
  }
  return status;
}

NativePath CanonicalPath(const NativePath& path) {
  const CHandle item(OpenItem(ExtendedPath(path), FILE_READ_ATTRIBUTES, 0));
  std::wstring canonical(kLongestPath, L'\0');
  const DWORD length = item.IsOpen() ? ::GetFinalPathNameByHandleW(item.Value(), canonical.data(),
                                                                   kLongestPath, VOLUME_NAME_DOS)
                                     : 0;
  if (length == 0 || length >= kLongestPath) {
    ThrowFileFailure<NSMordel::XOpen>("cannot resolve the path", path,
                                      WindowsFailure(::GetLastError()));
  }
  canonical.resize(length);
  return NativePath(PlainPath(canonical));
}

void NSFileDetails::MakeFolder(const NativePath& folder) {
  if (::CreateDirectoryW(ExtendedPath(folder).c_str(), nullptr) != 0) return;
  const DWORD number = ::GetLastError();
  if (number == ERROR_ALREADY_EXISTS) return;
  ThrowFileFailure<NSMordel::XCreate>("cannot make the folder", folder, WindowsFailure(number),
                                      kFolderObject);
}

void RenameReplacing(const NativePath& from, const NativePath& to) {
  if (Rename(ExtendedPath(from), ExtendedPath(to), ERenameOver::kFile)) return;
  const CSystemFailure failure = WindowsFailure(::GetLastError());
  try {
    ThrowFileFailure<NSMordel::XWrite>("cannot rename the file", from, failure);
  } catch (NSMordel::CExceptionBodyMixin& e) {
    e.AddContext(NSMordel::kSecondaryObjectId, DisplayText(to));
    throw;
  }
}

bool RemoveFile(const NativePath& path) {
  const std::wstring name = ExtendedPath(path);
  const bool isGone = RemoveAtOnce(name) || ::DeleteFileW(name.c_str()) != 0;
  if (isGone) return true;
  const DWORD number = ::GetLastError();
  if (MeansMissing(number)) return false;
  ThrowFileFailure<NSMordel::XDelete>("cannot remove the file", path, WindowsFailure(number));
}

void FlushFolder(const NativePath&) {
  // The system offers no such call for folders; RenameReplacing asks for a write-through instead.
}

NativePath ProgramFile() {
  std::wstring path(kLongestPath, L'\0');
  const DWORD length = ::GetModuleFileNameW(nullptr, path.data(), kLongestPath);
  if (length == 0 || length >= kLongestPath) {
    ThrowFileFailure<NSMordel::XNotFound>("cannot find the running program", NativePath(),
                                          WindowsFailure(::GetLastError()));
  }
  path.resize(length);
  return NativePath(path);
}

NativePath ProgramFolder() { return ProgramFile().parent_path(); }

NativePath UserCacheFolder() {
  std::wstring path(kLongestPath, L'\0');
  const DWORD length = ::GetEnvironmentVariableW(L"LOCALAPPDATA", path.data(), kLongestPath);
  path.resize(length < kLongestPath ? length : 0);
  // A path of the network is none with a drive.
  if (NativePath folder(path); folder.is_absolute() || path.starts_with(L"\\\\")) return folder;
  throw NSMordel::XNotFound("LOCALAPPDATA names no folder");
}

std::uint64_t ProcessNumber() { return ::GetCurrentProcessId(); }

}  // namespace NSTolbrook
