#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "Parts/TolbrookPackage/Core/FileSystem.h"
#include "Parts/TolbrookPackage/Core/SystemCalls_posix.h"
#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTolbrook {

namespace {

using namespace NSFileDetails;

EFileKind KindOfMode(mode_t mode) {
  if (S_ISREG(mode)) return EFileKind::kFile;
  if (S_ISDIR(mode)) return EFileKind::kFolder;
  if (S_ISLNK(mode)) return EFileKind::kLink;
  return EFileKind::kOther;
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

struct CCloseFolder {
  void operator()(DIR* open) const { ::closedir(open); }
};
using OpenFolder = std::unique_ptr<DIR, CCloseFolder>;

OpenFolder OpenFolderAt(const NativePath& folder) {
  for (;;) {
    if (OpenFolder open(::opendir(folder.c_str())); open) return open;
    if (errno == EINTR) continue;
    ThrowFileFailure<NSMordel::XOpen>("cannot open the folder", folder, Failure(errno),
                                      kFolderObject);
  }
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
  const OpenFolder open = OpenFolderAt(folder);
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

NativePath ProgramFile() { return "/proc/self/exe"; }

NativePath UserCacheFolder() {
  const auto named = [](const char* variable) {
    const char* const value = std::getenv(variable);
    return NativePath(value == nullptr ? "" : value);
  };
  // A relative path would be another folder for each working folder.
  if (NativePath folder = named("XDG_CACHE_HOME"); folder.is_absolute()) return folder;
  if (const NativePath home = named("HOME"); home.is_absolute()) return home / ".cache";
  throw NSMordel::XNotFound("neither XDG_CACHE_HOME nor HOME names a folder");
}

std::uint64_t ProcessNumber() { return static_cast<std::uint64_t>(::getpid()); }

}  // namespace NSTolbrook
