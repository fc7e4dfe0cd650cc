#include <atomic>
#include <fcntl.h>
#include <span>
#include <sys/file.h>
#include <sys/stat.h>

#include "Parts/TolbrookPackage/Core/OutputFolder.h"
#include "Parts/TolbrookPackage/Core/SystemCalls_posix.h"

namespace NSTolbrook {

namespace {

using namespace NSFileDetails;

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
constexpr mode_t kAllForAll = 0777;
constexpr mode_t kReadWriteForAll = 0666;

/// A folder on the way, and the names that led there.
struct CReached {
  std::unique_ptr<CDescriptor> fOpened;  // null: the output folder itself
  int fNumber;
  NativePath fPath;
};

enum class EMissing { kLeave, kMake };

[[noreturn]] void RefuseWay(const NativePath& path) {
  ThrowFileRefusal<NSMordel::XPermission>(
      "cannot make a folder here: a link or a file has its name", path, kFolderObject);
}

/// Takes one step down; false when the folder is missing and is left so.
bool Descend(CReached& reached, const std::u16string& name, EMissing missing) {
  const NativePath native = NativeFromText(name);
  const NativePath path = reached.fPath / native;
  const auto open = [&] {
    return Repeat(
        [&] { return ::openat(reached.fNumber, native.c_str(), kFolderFlags | O_NOFOLLOW); });
  };
  int number = open();
  if (number < 0 && errno == ENOENT) {
    if (missing == EMissing::kLeave) return false;
    if (::mkdirat(reached.fNumber, native.c_str(), kAllForAll) != 0 && errno != EEXIST) {
      ThrowFileFailure<NSMordel::XCreate>("cannot make the folder", path, Failure(errno),
                                          kFolderObject);
    }
    number = open();
  }
  if (number < 0 && (errno == ENOTDIR || errno == ELOOP)) RefuseWay(path);
  if (number < 0) {
    ThrowFileFailure<NSMordel::XOpen>("cannot open the folder", path, Failure(errno),
                                      kFolderObject);
  }
  reached = {std::make_unique<CDescriptor>(number), number, path};
  return true;
}

EFileKind KindIn(int folder, const NativePath& name, const NativePath& path) {
  struct stat status {};
  if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
    if (S_ISREG(status.st_mode)) return EFileKind::kFile;
    if (S_ISDIR(status.st_mode)) return EFileKind::kFolder;
    return S_ISLNK(status.st_mode) ? EFileKind::kLink : EFileKind::kOther;
  }
  if (errno == ENOENT) return EFileKind::kMissing;
  ThrowFileFailure<NSMordel::XOpen>("cannot read the file's status", path, Failure(errno));
}

[[noreturn]] void RefuseTaken(const NativePath& path) {
  ThrowFileRefusal<NSMordel::XAlreadyExists>("the file is there already", path);
}

class COutputFile final : public IOutputFile {
 public:
  COutputFile(int folder, const NativePath& folderPath)
      : fFolder(folder), fFolderPath(folderPath), fDescriptor(std::make_unique<CDescriptor>(-1)) {
    Make();
    // Tells the file from one that a killed run left.
    Repeat([this] { return ::flock(fDescriptor->Number(), LOCK_EX | LOCK_NB); });
  }
  ~COutputFile() override {
    if (!fCommitted) ::unlinkat(fFolder, fName.c_str(), 0);
  }

  std::uint64_t Size() const override {
    struct stat status {};
    if (::fstat(fDescriptor->Number(), &status) != 0) Fail<NSMordel::XRead>("cannot read the file");
    return static_cast<std::uint64_t>(status.st_size);
  }

  std::size_t Read(std::uint64_t position, std::span<std::uint8_t> destination) const override {
    std::size_t done = 0;
    while (done < destination.size()) {
      const ssize_t count = Repeat([&] {
        return ::pread(fDescriptor->Number(), destination.data() + done, destination.size() - done,
                       static_cast<off_t>(position + done));
      });
      if (count < 0) Fail<NSMordel::XRead>("cannot read the file");
      if (count == 0) break;
      done += static_cast<std::size_t>(count);
    }
    return done;
  }

  void Write(std::uint64_t position, std::span<const std::uint8_t> source) override {
    while (!source.empty()) {
      const ssize_t count = Repeat([&] {
        return ::pwrite(fDescriptor->Number(), source.data(), source.size(),
                        static_cast<off_t>(position));
      });
      if (count < 0) Fail<NSMordel::XWrite>("cannot write the file");
      source = source.subspan(static_cast<std::size_t>(count));
      position += static_cast<std::uint64_t>(count);
    }
  }

  void SetSize(std::uint64_t size) override {
    const int result =
        Repeat([&] { return ::ftruncate(fDescriptor->Number(), static_cast<off_t>(size)); });
    if (result != 0) Fail<NSMordel::XWrite>("cannot set the file's size");
  }

  void Flush() override {
    if (Repeat([this] { return ::fsync(fDescriptor->Number()); }) == 0) return;
    Fail<NSMordel::XWrite>("cannot flush the file");
  }

  void CommitAs(const std::vector<std::u16string>& components, EExisting existing) override {
    // What a disk reports late (a quota, a server) is reported before the file has its name.
    if (::close(fDescriptor->Release()) != 0 && errno != EINTR) {
      Fail<NSMordel::XClose>("cannot close the file");
    }
    CReached reached{nullptr, fFolder, fFolderPath};
    for (std::size_t i = 0; i + 1 < components.size(); ++i) {
      Descend(reached, components[i], EMissing::kMake);
    }
    const NativePath name = NativeFromText(components.back());
    const NativePath path = reached.fPath / name;
    if (existing == EExisting::kReplace) {
      const EFileKind kind = KindIn(reached.fNumber, name, path);
      if (kind != EFileKind::kMissing && kind != EFileKind::kFile) RefuseTaken(path);
      Rename(reached.fNumber, name, path);
    } else {
      PutBeside(reached.fNumber, name, path);
    }
    fCommitted = true;
  }

 private:
  /// A new file under a name of its own, as those of pack runs have them. Once it is there nothing
  /// can fail: no destructor removes the file of an object that was not made.
  void Make() {
    static std::atomic<std::uint64_t> counter = 0;
    while (true) {
      fName =
          ".tambra-" + std::to_string(ProcessNumber()) + "-" + std::to_string(++counter) + ".tmp";
      const int number = Repeat([this] {
        return ::openat(fFolder, fName.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                        kReadWriteForAll);
      });
      if (number >= 0) return fDescriptor->Reset(number);
      if (errno != EEXIST) Fail<NSMordel::XCreate>("cannot make the file");
    }
  }

  void Rename(int folder, const NativePath& name, const NativePath& path) {
    if (::renameat(fFolder, fName.c_str(), folder, name.c_str()) == 0) return;
    ThrowFileFailure<NSMordel::XWrite>("cannot rename the file", path, Failure(errno));
  }

  /// A second name cannot replace anything, whatever turns up meanwhile. Where the file system
  /// knows no second names, what is there is looked up first.
  void PutBeside(int folder, const NativePath& name, const NativePath& path) {
    if (::linkat(fFolder, fName.c_str(), folder, name.c_str(), 0) == 0) {
      ::unlinkat(fFolder, fName.c_str(), 0);
      return;
    }
    if (errno == EEXIST) RefuseTaken(path);
    if (errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS && errno != EMLINK) {
      ThrowFileFailure<NSMordel::XCreate>("cannot make the file", path, Failure(errno));
    }
    if (KindIn(folder, name, path) != EFileKind::kMissing) RefuseTaken(path);
    Rename(folder, name, path);
  }

  template <class XKind>
  [[noreturn]] void Fail(const char* action) const {
    ThrowFileFailure<XKind>(action, fFolderPath / fName, Failure(errno));
  }

  int fFolder;
  NativePath fFolderPath;
  std::string fName;
  std::unique_ptr<CDescriptor> fDescriptor;
  bool fCommitted = false;
};

}  // namespace

COutputFolder::COutputFolder(NativePath folder) : fPath(std::move(folder)) {
  const int number = Repeat([this] { return ::open(fPath.c_str(), kFolderFlags); });
  if (number < 0) {
    ThrowFileFailure<NSMordel::XOpen>("cannot open the folder", fPath, Failure(errno),
                                      kFolderObject);
  }
  fHandle = number;
}

COutputFolder::~COutputFolder() { ::close(static_cast<int>(fHandle)); }

EFileKind COutputFolder::KindOf(const std::vector<std::u16string>& components) const {
  CReached reached{nullptr, static_cast<int>(fHandle), fPath};
  for (std::size_t i = 0; i + 1 < components.size(); ++i) {
    if (!Descend(reached, components[i], EMissing::kLeave)) return EFileKind::kMissing;
  }
  const NativePath name = NativeFromText(components.back());
  return KindIn(reached.fNumber, name, reached.fPath / name);
}

std::unique_ptr<IOutputFile> COutputFolder::NewFile() const {
  return std::make_unique<COutputFile>(static_cast<int>(fHandle), fPath);
}

}  // namespace NSTolbrook
