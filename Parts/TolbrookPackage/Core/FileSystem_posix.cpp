#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <limits>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "Parts/TolbrookPackage/Core/FileFailure.h"
#include "Parts/TolbrookPackage/Core/FileSystem.h"
#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTolbrook {

namespace {

using namespace NSFileDetails;

constexpr std::uint64_t kGreatestOffset =
    static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());

EFailure FailureKind(int number) {
  switch (number) {
    case ENOENT:
      return EFailure::kNotFound;
    case EACCES:
    case EPERM:
      return EFailure::kPermission;
    case EROFS:
      return EFailure::kReadOnly;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return EFailure::kOutOfSpace;
    case EBUSY:
    case ETXTBSY:
      return EFailure::kLocked;
    case EMFILE:
    case ENFILE:
      return EFailure::kOutOfItems;
    case ENXIO:
    case ENODEV:
      return EFailure::kNotReady;
    case EEXIST:
      return EFailure::kAlreadyExists;
    default:
      return EFailure::kOther;
  }
}

CSystemFailure Failure(int number) {
  return {FailureKind(number), std::to_string(number), std::generic_category().message(number)};
}

/// Calls again as long as a signal interrupts.
template <class Call>
auto Repeat(const Call& call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

EFileKind KindOfMode(mode_t mode) {
  if (S_ISREG(mode)) return EFileKind::kFile;
  if (S_ISDIR(mode)) return EFileKind::kFolder;
  if (S_ISLNK(mode)) return EFileKind::kLink;
  return EFileKind::kOther;
}

CFileIdentity IdentityOf(const struct stat& status) {
  return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)};
}

struct stat StatusOfHandle(std::intptr_t handle, const NativePath& path) {
  struct stat status {};
  if (::fstat(static_cast<int>(handle), &status) != 0) {
    ThrowFileFailure<NSMordel::XRead>("cannot read the file's status", path, Failure(errno));
  }
  return status;
}

/// A descriptor that is closed unless it is released.
class CDescriptor {
 public:
  explicit CDescriptor(int number) : fNumber(number) {}
  CDescriptor(const CDescriptor&) = delete;
  CDescriptor& operator=(const CDescriptor&) = delete;
  ~CDescriptor() {
    if (fNumber >= 0) ::close(fNumber);
  }
  int Number() const { return fNumber; }
  int Release() { return std::exchange(fNumber, -1); }

 private:
  int fNumber;
};

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

EFileKind KindOfItem(int folder, const dirent& item, const NativePath& path) {
  switch (item.d_type) {
    case DT_REG:
      return EFileKind::kFile;
    case DT_DIR:
      return EFileKind::kFolder;
    case DT_LNK:
      return EFileKind::kLink;
    case DT_UNKNOWN:
      break;
    default:
      return EFileKind::kOther;
  }
  struct stat status {};
  if (::fstatat(folder, item.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0) {
    return KindOfMode(status.st_mode);
  }
  if (errno == ENOENT) return EFileKind::kMissing;
  ThrowFileFailure<NSMordel::XRead>("cannot read the folder", path / item.d_name, Failure(errno),
                                    kFolderObject);
}

}  // namespace

std::optional<std::u16string> TextFromNative(const NativePath& path) {
  return StrictTextFromUtf8(path.native());
}

std::string DisplayText(const NativePath& path) {
  return Utf8FromText(TextFromUtf8(path.native()));
}

NativePath NativeFromText(std::u16string_view text) {
  if (text.find(u'\0') != std::u16string_view::npos) {
    throw NSMordel::XFormatViolation("a path holds the character U+0000");
  }
  return NativePath(StrictUtf8FromText(text));
}

std::vector<CFolderItem> ListFolder(const NativePath& folder) {
  const auto close = [](DIR* open) { ::closedir(open); };
  const std::unique_ptr<DIR, decltype(close)> open(::opendir(folder.c_str()), close);
  if (open == nullptr) {
    ThrowFileFailure<NSMordel::XOpen>("cannot open the folder", folder, Failure(errno),
                                      kFolderObject);
  }
  std::vector<CFolderItem> items;
  for (;;) {
    errno = 0;
    const dirent* const item = ::readdir(open.get());
    if (item == nullptr) break;
    const std::string_view name = item->d_name;
    if (name == "." || name == "..") continue;
    const EFileKind kind = KindOfItem(::dirfd(open.get()), *item, folder);
    if (kind != EFileKind::kMissing) items.push_back({NativePath(name), kind});
  }
  if (errno != 0) {
    ThrowFileFailure<NSMordel::XRead>("cannot read the folder", folder, Failure(errno),
                                      kFolderObject);
  }
  return items;
}

CFileStatus FileStatus(const NativePath& path, bool followLinks) {
  struct stat status {};
  const int flags = followLinks ? 0 : AT_SYMLINK_NOFOLLOW;
  if (::fstatat(AT_FDCWD, path.c_str(), &status, flags) != 0) {
    const int number = errno;
    if (number == ENOENT || number == ENOTDIR || number == ELOOP || number == ENAMETOOLONG) {
      return {};
    }
    ThrowFileFailure<NSMordel::XOpen>("cannot read the file's status", path, Failure(number));
  }
  CFileStatus result{KindOfMode(status.st_mode), 0, IdentityOf(status)};
  if (result.IsFile()) result.fSize = static_cast<std::uint64_t>(status.st_size);
  return result;
}

NativePath CanonicalPath(const NativePath& path) {
  std::error_code error;
  NativePath canonical = std::filesystem::canonical(path, error);
  if (error) {
    ThrowFileFailure<NSMordel::XOpen>("cannot resolve the path", path, Failure(error.value()));
  }
  return canonical;
}

void NSFileDetails::MakeFolder(const NativePath& folder) {
  constexpr mode_t kAllForAll = 0777;
  if (::mkdir(folder.c_str(), kAllForAll) == 0 || errno == EEXIST) return;
  ThrowFileFailure<NSMordel::XCreate>("cannot make the folder", folder, Failure(errno),
                                      kFolderObject);
}

void RenameReplacing(const NativePath& from, const NativePath& to) {
  if (::rename(from.c_str(), to.c_str()) == 0) return;
  const CSystemFailure failure = Failure(errno);
  try {
    ThrowFileFailure<NSMordel::XWrite>("cannot rename the file", from, failure);
  } catch (NSMordel::CExceptionBodyMixin& e) {
    e.AddContext(NSMordel::kSecondaryObjectId, DisplayText(to));
    throw;
  }
}

bool RemoveFile(const NativePath& path) {
  if (::unlink(path.c_str()) == 0) return true;
  if (errno == ENOENT || errno == ENOTDIR) return false;
  ThrowFileFailure<NSMordel::XDelete>("cannot remove the file", path, Failure(errno));
}

void FlushFolder(const NativePath& folder) {
  const CDescriptor descriptor(
      Repeat([&] { return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
  if (descriptor.Number() >= 0) {
    if (Repeat([&] { return ::fsync(descriptor.Number()); }) == 0) return;
    if (errno == EINVAL || errno == ENOTSUP) return;  // a file system that knows no such thing
  }
  ThrowFileFailure<NSMordel::XWrite>("cannot flush the folder", folder, Failure(errno),
                                     kFolderObject);
}

NativePath ProgramFolder() {
  const NativePath link = "/proc/self/exe";
  std::error_code error;
  const NativePath program = std::filesystem::read_symlink(link, error);
  if (!error) return program.parent_path();
  ThrowFileFailure<NSMordel::XNotFound>("cannot find the running program", link,
                                        Failure(error.value()));
}

std::uint64_t ProcessNumber() { return static_cast<std::uint64_t>(::getpid()); }

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
  constexpr mode_t kReadWriteForAll = 0666;
  const int number = Repeat([&] {
    return ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kReadWriteForAll);
  });
  if (number < 0) ThrowFileFailure<NSMordel::XCreate>(action, path, Failure(errno));
  return CFile(number, path);
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
