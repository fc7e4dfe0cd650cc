#include <fcntl.h>
#include <limits>
#include <sys/file.h>
#include <utility>

#include "Parts/TolbrookPackage/Core/FileSystem.h"
#include "Parts/TolbrookPackage/Core/SystemCalls_posix.h"

namespace NSTolbrook {

namespace {

using namespace NSFileDetails;

constexpr std::uint64_t kGreatestOffset =
    static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());

struct stat StatusOfHandle(std::intptr_t handle, const NativePath& path) {
  struct stat status {};
  if (::fstat(static_cast<int>(handle), &status) != 0) {
    ThrowFileFailure<NSMordel::XRead>("cannot read the file's status", path, Failure(errno));
  }
  return status;
}

/// The descriptor of a regular file. What is there and is none is refused before it is opened,
/// since opening alone may wake a device; O_NONBLOCK keeps one that takes the file's place from
/// blocking.
template <class XFallback>
int OpenRegular(const NativePath& path, int flags, const char* action) {
  const CFileStatus before = FileStatus(path, true);
  const auto refuse = [&path] {
    ThrowFileRefusal<NSMordel::XOpen>("cannot open the file: it is not a regular file", path);
  };
  if (before.fKind != EFileKind::kMissing && !before.IsFile()) refuse();
  constexpr int kAlways = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  constexpr mode_t kReadWriteForAll = 0666;
  CDescriptor descriptor(
      Repeat([&] { return ::open(path.c_str(), flags | kAlways, kReadWriteForAll); }));
  if (descriptor.Number() < 0) ThrowFileFailure<XFallback>(action, path, Failure(errno));
  if (!S_ISREG(StatusOfHandle(descriptor.Number(), path).st_mode)) refuse();
  return descriptor.Release();
}

}  // namespace

CFile::~CFile() {
  if (IsOpen()) ::close(static_cast<int>(fHandle));
}

CFile CFile::OpenForReading(const NativePath& path) {
  return CFile(OpenRegular<NSMordel::XOpen>(path, O_RDONLY, "cannot open the file"), path);
}

CFile CFile::OpenForUpdate(const NativePath& path) {
  return CFile(OpenRegular<NSMordel::XOpen>(path, O_RDWR, "cannot open the file"), path);
}

CFile CFile::Create(const NativePath& path, ECreate mode) {
  const char* const action = "cannot make the file";
  if (mode == ECreate::kReplace) {
    CFile file(OpenRegular<NSMordel::XCreate>(path, O_RDWR | O_CREAT, action), path);
    file.SetSize(0);
    return file;
  }
  NativePath named = path;  // before the file is there: nothing behind that can fail and leave it
  const mode_t rights = mode == ECreate::kPrivate ? 0600 : 0666;
  const int number =
      Repeat([&] { return ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, rights); });
  if (number < 0) ThrowFileFailure<NSMordel::XCreate>(action, path, Failure(errno));
  return CFile(number, std::move(named));
}

std::uint64_t CFile::Size() const {
  return static_cast<std::uint64_t>(StatusOfHandle(fHandle, fPath).st_size);
}

CFileIdentity CFile::Identity() const { return IdentityOf(StatusOfHandle(fHandle, fPath)); }

std::size_t CFile::Read(std::uint64_t position, std::span<std::uint8_t> destination) const {
  std::size_t done = 0;
  while (done < destination.size() && position <= kGreatestOffset - done) {
    const auto rest = destination.subspan(done);
    const ssize_t count = Repeat([&] {
      return ::pread(static_cast<int>(fHandle), rest.data(), rest.size(),
                     static_cast<off_t>(position + done));
    });
    if (count < 0) {
      ThrowFileFailure<NSMordel::XRead>("cannot read the file", fPath, Failure(errno));
    }
    if (count == 0) break;
    done += static_cast<std::size_t>(count);
  }
  return done;
}

void CFile::Write(std::uint64_t position, std::span<const std::uint8_t> source) {
  const char* const action = "cannot write the file";
  if (position > kGreatestOffset || source.size() > kGreatestOffset - position) {
    ThrowFileFailure<NSMordel::XWrite>(action, fPath, Failure(EFBIG));
  }
  while (!source.empty()) {
    const ssize_t count = Repeat([&] {
      return ::pwrite(static_cast<int>(fHandle), source.data(), source.size(),
                      static_cast<off_t>(position));
    });
    if (count < 0) ThrowFileFailure<NSMordel::XWrite>(action, fPath, Failure(errno));
    source = source.subspan(static_cast<std::size_t>(count));
    position += static_cast<std::uint64_t>(count);
  }
}

void CFile::SetSize(std::uint64_t size) {
  const char* const action = "cannot set the file's size";
  if (size > kGreatestOffset) ThrowFileFailure<NSMordel::XWrite>(action, fPath, Failure(EFBIG));
  const int result =
      Repeat([&] { return ::ftruncate(static_cast<int>(fHandle), static_cast<off_t>(size)); });
  if (result != 0) ThrowFileFailure<NSMordel::XWrite>(action, fPath, Failure(errno));
}

void CFile::Flush() {
  if (Repeat([&] { return ::fsync(static_cast<int>(fHandle)); }) == 0) return;
  ThrowFileFailure<NSMordel::XWrite>("cannot flush the file", fPath, Failure(errno));
}

void CFile::BeginFlush() {
#ifdef SYNC_FILE_RANGE_WRITE
  constexpr off_t kToTheEnd = 0;
  ::sync_file_range(static_cast<int>(fHandle), 0, kToTheEnd, SYNC_FILE_RANGE_WRITE);
#endif
}

bool CFile::TryLock() {
  if (Repeat([&] { return ::flock(static_cast<int>(fHandle), LOCK_EX | LOCK_NB); }) == 0) {
    return true;
  }
  if (errno == EWOULDBLOCK) return false;
  ThrowFileFailure<NSMordel::XWrite>("cannot lock the file", fPath, Failure(errno));
}

void CFile::Close() {
  if (!IsOpen()) return;
  // An interrupted close has closed the descriptor all the same: never twice.
  const int result = ::close(static_cast<int>(std::exchange(fHandle, kNoHandle)));
  if (result == 0 || errno == EINTR) return;
  ThrowFileFailure<NSMordel::XClose>("cannot close the file", fPath, Failure(errno));
}

}  // namespace NSTolbrook
