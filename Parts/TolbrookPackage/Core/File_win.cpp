#include <algorithm>
#include <limits>
#include <utility>

#include "Parts/TolbrookPackage/Core/FileSystem.h"
#include "Parts/TolbrookPackage/Core/WindowsPath_win.h"

namespace NSTolbrook {

namespace {

using namespace NSFileDetails;

constexpr std::uint64_t kGreatestOffset =
    static_cast<std::uint64_t>(std::numeric_limits<LONGLONG>::max());
/// One call transfers at most so many bytes.
constexpr std::size_t kGreatestTransfer = std::size_t{1} << 30;

HANDLE HandleOf(std::intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

template <class XFallback>
[[noreturn]] void Fail(const char* action, const NativePath& path) {
  ThrowFileFailure<XFallback>(action, path, WindowsFailure(::GetLastError()));
}

/// Throws XOpen when something is there that is no regular file.
void RefuseIrregular(const NativePath& path, const CFileStatus& status) {
  if (status.fKind == EFileKind::kMissing || status.IsFile()) return;
  ThrowFileRefusal<NSMordel::XOpen>("cannot open the file: it is not a regular file", path);
}

template <class XFallback>
std::intptr_t OpenRegular(const NativePath& path, DWORD access, DWORD disposition,
                          const char* action) {
  if (disposition != CREATE_NEW) RefuseIrregular(path, FileStatus(path, true));
  const HANDLE handle = ::CreateFileW(ExtendedPath(path).c_str(), access,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) Fail<XFallback>(action, path);
  if (::GetFileType(handle) == FILE_TYPE_DISK) return reinterpret_cast<std::intptr_t>(handle);
  ::CloseHandle(handle);
  ThrowFileRefusal<NSMordel::XOpen>("cannot open the file: it is not a regular file", path);
}

/// The place of a transfer or a lock.
OVERLAPPED PlaceOf(std::uint64_t position) {
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(position);
  place.OffsetHigh = static_cast<DWORD>(position >> 32);
  return place;
}

}  // namespace

CFile::~CFile() {
  if (IsOpen()) ::CloseHandle(HandleOf(fHandle));
}

CFile CFile::OpenForReading(const NativePath& path) {
  return CFile(
      OpenRegular<NSMordel::XOpen>(path, GENERIC_READ, OPEN_EXISTING, "cannot open the file"),
      path);
}

CFile CFile::OpenForUpdate(const NativePath& path) {
  return CFile(OpenRegular<NSMordel::XOpen>(path, GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING,
                                            "cannot open the file"),
               path);
}

CFile CFile::Create(const NativePath& path, ECreate mode) {
  // kPrivate needs nothing more: other users cannot read below a user's own folder.
  const DWORD disposition = mode == ECreate::kReplace ? CREATE_ALWAYS : CREATE_NEW;
  NativePath named = path;  // before the file is there: nothing behind that can fail and leave it
  const std::intptr_t handle = OpenRegular<NSMordel::XCreate>(path, GENERIC_READ | GENERIC_WRITE,
                                                              disposition, "cannot make the file");
  return CFile(handle, std::move(named));
}

std::uint64_t CFile::Size() const {
  LARGE_INTEGER size{};
  if (::GetFileSizeEx(HandleOf(fHandle), &size) == 0) {
    Fail<NSMordel::XRead>("cannot read the file's status", fPath);
  }
  return static_cast<std::uint64_t>(size.QuadPart);
}

CFileIdentity CFile::Identity() const {
  BY_HANDLE_FILE_INFORMATION information{};
  if (::GetFileInformationByHandle(HandleOf(fHandle), &information) == 0) {
    Fail<NSMordel::XRead>("cannot read the file's status", fPath);
  }
  return {information.dwVolumeSerialNumber,
          (std::uint64_t{information.nFileIndexHigh} << 32) | information.nFileIndexLow};
}

std::size_t CFile::Read(std::uint64_t position, std::span<std::uint8_t> destination) const {
  std::size_t done = 0;
  while (done < destination.size() && position <= kGreatestOffset - done) {
    OVERLAPPED place = PlaceOf(position + done);
    const std::size_t wanted = std::min(destination.size() - done, kGreatestTransfer);
    DWORD count = 0;
    if (::ReadFile(HandleOf(fHandle), destination.data() + done, static_cast<DWORD>(wanted), &count,
                   &place) == 0) {
      if (::GetLastError() == ERROR_HANDLE_EOF) break;
      Fail<NSMordel::XRead>("cannot read the file", fPath);
    }
    if (count == 0) break;
    done += count;
  }
  return done;
}

void CFile::Write(std::uint64_t position, std::span<const std::uint8_t> source) {
  const char* const action = "cannot write the file";
  if (position > kGreatestOffset || source.size() > kGreatestOffset - position) {
    ThrowFileFailure<NSMordel::XWrite>(action, fPath, WindowsFailure(ERROR_FILE_TOO_LARGE));
  }
  while (!source.empty()) {
    OVERLAPPED place = PlaceOf(position);
    const std::size_t wanted = std::min(source.size(), kGreatestTransfer);
    DWORD count = 0;
    if (::WriteFile(HandleOf(fHandle), source.data(), static_cast<DWORD>(wanted), &count, &place) ==
        0) {
      Fail<NSMordel::XWrite>(action, fPath);
    }
    source = source.subspan(count);
    position += count;
  }
}

void CFile::SetSize(std::uint64_t size) {
  const char* const action = "cannot set the file's size";
  if (size > kGreatestOffset) {
    ThrowFileFailure<NSMordel::XWrite>(action, fPath, WindowsFailure(ERROR_FILE_TOO_LARGE));
  }
  FILE_END_OF_FILE_INFO end{};
  end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
  if (::SetFileInformationByHandle(HandleOf(fHandle), FileEndOfFileInfo, &end, sizeof(end)) == 0) {
    Fail<NSMordel::XWrite>(action, fPath);
  }
}

void CFile::Flush() {
  if (::FlushFileBuffers(HandleOf(fHandle)) == 0) {
    Fail<NSMordel::XWrite>("cannot flush the file", fPath);
  }
}

void CFile::BeginFlush() {}

bool CFile::TryLock() {
  // Locks of this system forbid access to what they cover: this one lies behind all data.
  OVERLAPPED place = PlaceOf(kGreatestOffset - 1);
  constexpr DWORD kFlags = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
  if (::LockFileEx(HandleOf(fHandle), kFlags, 0, 1, 0, &place) != 0) return true;
  const DWORD number = ::GetLastError();
  if (number == ERROR_LOCK_VIOLATION || number == ERROR_IO_PENDING) return false;
  ThrowFileFailure<NSMordel::XWrite>("cannot lock the file", fPath, WindowsFailure(number));
}

void CFile::Close() {
  if (!IsOpen()) return;
  if (::CloseHandle(HandleOf(std::exchange(fHandle, kNoHandle))) == 0) {
    Fail<NSMordel::XClose>("cannot close the file", fPath);
  }
}

}  // namespace NSTolbrook
