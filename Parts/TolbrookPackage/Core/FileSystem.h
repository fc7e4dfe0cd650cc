#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Files and folders of the platform. All failures are exceptions of the NSMordel family that
/// carry the path as "target_object_id", "file", "directory" or "disk" as "target_object_type" and
/// the system's number as "error_code": XNotFound (ENOENT), XPermission (EACCES, EPERM), XReadOnly
/// (EROFS), XOutOfSpace (ENOSPC, EDQUOT, EFBIG), XLocked (EBUSY, ETXTBSY), XOutOfItems (EMFILE,
/// ENFILE), XNotReady (ENXIO, ENODEV), XAlreadyExists (EEXIST), else the kind named below. Where
/// memory is out (ENOMEM) that is std::bad_alloc, as everywhere.
/// Interrupted calls are repeated and short transfers continued.
namespace NSTolbrook {

/// A path in the platform's own form.
using NativePath = std::filesystem::path;

/// The text of a native name, or nothing when it is not valid Unicode.
std::optional<std::u16string> TextFromNative(const NativePath& path);
/// As TextFromNative, for messages: what is not valid becomes U+FFFD.
std::string DisplayText(const NativePath& path);
/// Throws XFormatViolation for U+0000, and for a lone surrogate where the platform cannot store
/// one.
NativePath NativeFromText(std::u16string_view text);

enum class EFileKind { kMissing, kFile, kFolder, kLink, kOther };

struct CFolderItem {
  NativePath fName;
  EFileKind fKind;  ///< of the item itself: a link is not followed
};

/// Tells two files apart on one machine, whatever their names.
struct CFileIdentity {
  std::uint64_t fVolume = 0;
  std::uint64_t fFile = 0;
  friend auto operator<=>(const CFileIdentity&, const CFileIdentity&) = default;
};

struct CFileStatus {
  EFileKind fKind = EFileKind::kMissing;
  std::uint64_t fSize = 0;  ///< bytes; of regular files only
  CFileIdentity fIdentity;

  bool IsFile() const { return fKind == EFileKind::kFile; }
  bool IsFolder() const { return fKind == EFileKind::kFolder; }
};

/// The items of a folder in no order, without "." and "..". Throws XOpen, XRead.
std::vector<CFolderItem> ListFolder(const NativePath& folder);

/// Of the item itself when `followLinks` is false. A missing item is no failure but kMissing (so
/// is a link that dangles or turns in a circle when links are followed, and a path that leads
/// through something that is no folder or is too long for the platform). Throws XOpen.
CFileStatus FileStatus(const NativePath& path, bool followLinks);

/// The absolute path with every link resolved. Throws XNotFound, XOpen.
NativePath CanonicalPath(const NativePath& path);

/// Makes the folder and its missing parents; one that is there is fine. Throws XCreate.
void MakeFolders(const NativePath& folder);
/// Renames within a folder's volume; a file named `to` is replaced atomically. Throws XWrite.
void RenameReplacing(const NativePath& from, const NativePath& to);
/// Removes a file; returns false when there was none. Throws XDelete.
bool RemoveFile(const NativePath& path);
/// Makes renames in `folder` durable where the platform can. Throws XWrite.
void FlushFolder(const NativePath& folder);
/// The folder that holds the running program. Throws XNotFound.
NativePath ProgramFolder();
/// A path under which the running program's own bytes can be read. Throws XNotFound.
NativePath ProgramFile();
/// Where programs keep what they can do without (it need not exist): XDG_CACHE_HOME or ~/.cache,
/// LOCALAPPDATA. Throws XNotFound when the environment names none.
NativePath UserCacheFolder();
/// This process's number, for names of temporary files.
std::uint64_t ProcessNumber();

/// An open regular file; closes itself. Move only.
class CFile {
 public:
  enum class ECreate { kNew, kPrivate, kReplace };

  CFile() = default;
  CFile(CFile&& other) noexcept;
  CFile& operator=(CFile&& other) noexcept;
  ~CFile();

  /// Opens a regular file for reading. Anything else (pipe, socket, device, folder) throws XOpen
  /// and is never waited for.
  static CFile OpenForReading(const NativePath& path);
  /// Opens an existing regular file for reading and writing.
  static CFile OpenForUpdate(const NativePath& path);
  /// Makes a file for reading and writing; kNew throws XAlreadyExists when the name is taken (by
  /// a link, too), as does kPrivate, whose file other users cannot read, and kReplace empties a
  /// file that is there.
  static CFile Create(const NativePath& path, ECreate mode);

  bool IsOpen() const { return fHandle != kNoHandle; }
  const NativePath& Path() const { return fPath; }
  std::uint64_t Size() const;
  CFileIdentity Identity() const;

  /// Reads up to destination.size() bytes; fewer only at the file's end. Throws XRead. Safe from
  /// several threads at once.
  std::size_t Read(std::uint64_t position, std::span<std::uint8_t> destination) const;
  /// Writes all of `source`. Throws XWrite.
  void Write(std::uint64_t position, std::span<const std::uint8_t> source);
  /// Cuts or extends (with a hole where the file system can). Throws XWrite.
  void SetSize(std::uint64_t size);
  /// Data and size to stable storage. Throws XWrite.
  void Flush();
  /// Lets the system begin with that, where it can, and does not wait for it. A failure shows in
  /// Flush.
  void BeginFlush();
  /// Takes an exclusive lock that ends with the handle or the process; false when another holds it.
  bool TryLock();
  /// Closes now, so that a failure can be seen; throws XClose. The destructor's close is silent.
  void Close();

 private:
  using Handle = std::intptr_t;
  static constexpr Handle kNoHandle = -1;

  CFile(Handle handle, NativePath path);

  Handle fHandle = kNoHandle;
  NativePath fPath;
};

}  // namespace NSTolbrook
