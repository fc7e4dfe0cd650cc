#include "Parts/TolbrookPackage/Core/RenameFile_win.h"

#include <cstddef>
#include <cstring>
#include <vector>

#include "Parts/TolbrookPackage/Core/WindowsPath_win.h"

namespace NSTolbrook::NSFileDetails {

namespace {

/// Replaces a file at once, whoever has it open.
bool ReplaceOpen(const std::wstring& from, const std::wstring& to) {
  // Written through, so that the new name is on the disk when the call returns.
  const CHandle file(::CreateFileW(
      from.c_str(), DELETE | SYNCHRONIZE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
      nullptr, OPEN_EXISTING,
      FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT | FILE_FLAG_WRITE_THROUGH,
      nullptr));
  if (!file.IsOpen()) return false;
  const std::size_t nameSize = to.size() * sizeof(wchar_t);
  // The structure ends with room for one character: that of the terminator.
  std::vector<std::byte> buffer(sizeof(FILE_RENAME_INFO) + nameSize);
  auto* const info = new (buffer.data()) FILE_RENAME_INFO{};
  info->Flags = FILE_RENAME_FLAG_REPLACE_IF_EXISTS | FILE_RENAME_FLAG_POSIX_SEMANTICS;
  info->FileNameLength = static_cast<DWORD>(nameSize);
  std::memcpy(buffer.data() + offsetof(FILE_RENAME_INFO, FileName), to.data(), nameSize);
  return ::SetFileInformationByHandle(file.Value(), kFileRenameInfoEx, info,
                                      static_cast<DWORD>(buffer.size())) != 0;
}

/// The system or the file system does not know how to replace an open file.
bool IsUnknown(DWORD number) {
  return number == ERROR_INVALID_PARAMETER || number == ERROR_NOT_SUPPORTED ||
         number == ERROR_INVALID_FUNCTION || number == ERROR_CALL_NOT_IMPLEMENTED;
}

}  // namespace

bool Rename(const std::wstring& from, const std::wstring& to, ERenameOver over) {
  if (over == ERenameOver::kFile) {
    if (ReplaceOpen(from, to)) return true;
    if (!IsUnknown(::GetLastError())) return false;
  }
  const DWORD flags = over == ERenameOver::kFile ? MOVEFILE_REPLACE_EXISTING : 0;
  return ::MoveFileExW(from.c_str(), to.c_str(), flags | MOVEFILE_WRITE_THROUGH) != 0;
}

}  // namespace NSTolbrook::NSFileDetails
