#pragma once

#include <string>

namespace NSTolbrook::NSFileDetails {

enum class ERenameOver { kNothing, kFile };

/// Renames an item within its volume; false with the reason in GetLastError. Both paths are
/// extended ones. Where the file system can (Windows 10 on NTFS) a file that others have open is
/// replaced, too: they keep the old one. It cannot be while one of them does not share it for
/// deletion; that is ERROR_SHARING_VIOLATION, or ERROR_ACCESS_DENIED on other file systems.
bool Rename(const std::wstring& from, const std::wstring& to, ERenameOver over);

}  // namespace NSTolbrook::NSFileDetails
