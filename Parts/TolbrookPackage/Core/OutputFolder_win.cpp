#include <atomic>
#include <deque>

#include "Parts/TolbrookPackage/Core/OutputFolder.h"
#include "Parts/TolbrookPackage/Core/RenameFile_win.h"
#include "Parts/TolbrookPackage/Core/WindowsPath_win.h"

namespace NSTolbrook {

namespace {

using namespace NSFileDetails;

/// A folder that is held: as long as it is open nobody can rename it, remove it or put a link in
/// its place.
class CHeldFolder {
 public:
  /// `links` tells whether a link may be followed. Nothing is held when there is no such folder.
  CHeldFolder(NativePath path, bool followLinks)
      : fPath(std::move(path)),
        fHandle(::CreateFileW(
            ExtendedPath(fPath).c_str(), FILE_LIST_DIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE,
            nullptr, OPEN_EXISTING,
            FILE_FLAG_BACKUP_SEMANTICS | (followLinks ? 0 : FILE_FLAG_OPEN_REPARSE_POINT),
            nullptr)) {
    if (fHandle == INVALID_HANDLE_VALUE) {
      const DWORD number = ::GetLastError();
      if (number == ERROR_FILE_NOT_FOUND || number == ERROR_PATH_NOT_FOUND) return;
      ThrowFileFailure<NSMordel::XOpen>("cannot open the folder", fPath, WindowsFailure(number),
                                        kFolderObject);
    }
    FILE_ATTRIBUTE_TAG_INFO tag{};
    const bool isKnown =
        ::GetFileInformationByHandleEx(fHandle, FileAttributeTagInfo, &tag, sizeof(tag)) != 0;
    constexpr DWORD kBoth = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    if (isKnown && (tag.FileAttributes & kBoth) == FILE_ATTRIBUTE_DIRECTORY) return;
    ::CloseHandle(fHandle);
    ThrowFileRefusal<NSMordel::XPermission>(
        "cannot make a folder here: a link or a file has its name", fPath, kFolderObject);
  }
  CHeldFolder(const CHeldFolder&) = delete;
  CHeldFolder& operator=(const CHeldFolder&) = delete;
  ~CHeldFolder() {
    if (IsHeld()) ::CloseHandle(fHandle);
  }
  bool IsHeld() const { return fHandle != INVALID_HANDLE_VALUE; }
  const NativePath& Path() const { return fPath; }

 private:
  NativePath fPath;
  HANDLE fHandle;
};

enum class EMissing { kLeave, kMake };

/// The folders of a path, all held at once; ends with the first that is missing and left so.
class CHeldPath {
 public:
  CHeldPath(const NativePath& root, const std::vector<std::u16string>& components, EMissing missing)
      : fEnd(root) {
    for (std::size_t i = 0; i + 1 < components.size(); ++i) {
      fEnd /= NativeFromText(components[i]);
      if (missing == EMissing::kMake) MakeFolder(fEnd);
      fHeld.emplace_back(fEnd, false);
      if (fHeld.back().IsHeld()) continue;
      if (missing == EMissing::kLeave) return;
      ThrowFileRefusal<NSMordel::XNotFound>("cannot open the folder: it was taken away", fEnd,
                                            kFolderObject);
    }
    fIsWhole = true;
    fEnd /= NativeFromText(components.back());
  }

  bool IsWhole() const { return fIsWhole; }
  const NativePath& End() const { return fEnd; }

 private:
  std::deque<CHeldFolder> fHeld;
  NativePath fEnd;
  bool fIsWhole = false;
};

void CheckReplaceable(const NativePath& path) {
  const EFileKind kind = FileStatus(path, false).fKind;
  if (kind == EFileKind::kMissing || kind == EFileKind::kFile) return;
  ThrowFileRefusal<NSMordel::XAlreadyExists>("something that is no file has the name", path,
                                             kFolderObject);
}

NativePath NextName() {
  static std::atomic<std::uint64_t> counter = 0;
  return ".tambra-" + std::to_string(ProcessNumber()) + "-" + std::to_string(++counter) + ".tmp";
}

class COutputFile final : public IOutputFile {
 public:
  explicit COutputFile(const NativePath& folder) : fFolder(folder) {
    while (!fFile.IsOpen()) {
      fPath = fFolder / NextName();
      try {
        fFile = CFile::Create(fPath, CFile::ECreate::kNew);
      } catch (const NSMordel::XAlreadyExists&) {
        continue;  // left by an earlier process of the same number
      }
      // Tells the file from one that a killed run left; who holds it takes it for such a one.
      if (!fFile.TryLock()) fFile = CFile();
    }
  }
  ~COutputFile() override {
    if (fCommitted) return;
    fFile = CFile();
    ::DeleteFileW(ExtendedPath(fPath).c_str());
  }

  std::uint64_t Size() const override { return fFile.Size(); }
  std::size_t Read(std::uint64_t position, std::span<std::uint8_t> destination) const override {
    return fFile.Read(position, destination);
  }
  void Write(std::uint64_t position, std::span<const std::uint8_t> source) override {
    fFile.Write(position, source);
  }
  void SetSize(std::uint64_t size) override { fFile.SetSize(size); }
  void Flush() override { fFile.Flush(); }

  void CommitAs(const std::vector<std::u16string>& components, EExisting existing) override {
    const CHeldPath target(fFolder, components, EMissing::kMake);
    if (existing == EExisting::kReplace) CheckReplaceable(target.End());
    const ERenameOver over =
        existing == EExisting::kReplace ? ERenameOver::kFile : ERenameOver::kNothing;
    if (!Rename(ExtendedPath(fPath), ExtendedPath(target.End()), over)) {
      ThrowFileFailure<NSMordel::XWrite>("cannot rename the file", target.End(),
                                         WindowsFailure(::GetLastError()));
    }
    fCommitted = true;
    fFile.Close();  // not before: without its lock it is a leftover to others
  }

 private:
  NativePath fFolder;
  NativePath fPath;
  CFile fFile;
  bool fCommitted = false;
};

CHeldFolder* HeldFolder(std::intptr_t handle) { return reinterpret_cast<CHeldFolder*>(handle); }

}  // namespace

COutputFolder::COutputFolder(NativePath folder) {
  fPath = CanonicalPath(folder);
  auto held = std::make_unique<CHeldFolder>(fPath, true);
  if (!held->IsHeld()) {
    ThrowFileRefusal<NSMordel::XNotFound>("cannot open the folder", folder, kFolderObject);
  }
  fHandle = reinterpret_cast<std::intptr_t>(held.release());
}

COutputFolder::~COutputFolder() { std::unique_ptr<CHeldFolder>(HeldFolder(fHandle)); }

EFileKind COutputFolder::KindOf(const std::vector<std::u16string>& components) const {
  const CHeldPath path(fPath, components, EMissing::kLeave);
  return path.IsWhole() ? FileStatus(path.End(), false).fKind : EFileKind::kMissing;
}

std::unique_ptr<IOutputFile> COutputFolder::NewFile() const {
  return std::make_unique<COutputFile>(fPath);
}

}  // namespace NSTolbrook
