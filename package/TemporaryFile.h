#pragma once

#include <string_view>

#include "package/StdioMedia.h"

namespace NSBigFilePackage {

/// A file that lasts as long as this object, or becomes a file with a name of its own when it is
/// whole. Its name is ".tambra-", this process's number, "-", a counter and ".tmp"; it is locked
/// while in use, so that what a killed run left can be told from what a living one needs.
class CTemporaryFile {
 public:
  /// Makes an empty file in `folder`, which exists. Throws as NSTolbrook::CFile::Create.
  explicit CTemporaryFile(const NSTolbrook::NativePath& folder);
  CTemporaryFile(const CTemporaryFile&) = delete;
  CTemporaryFile& operator=(const CTemporaryFile&) = delete;
  /// Removes the file, unless it was committed. A file that cannot be removed is left to
  /// RemoveLeftovers.
  ~CTemporaryFile();

  const NSTolbrook::NativePath& Path() const { return fPath; }
  /// The file for reading and writing. It may outlive this object only to be destroyed: the file
  /// is closed with this object.
  SharedMedia Media() const { return fMedia; }
  /// See CStdioMedia; kNever is not for a file that is to be committed.
  void SetFlush(CStdioMedia::EFlush flush) { fMedia->SetFlush(flush); }

  /// Puts all that was written on stable storage and gives the file the name `path`, in place of a
  /// file that has it. `path` is on the same volume; at no time does it name a file that is not
  /// whole. Afterwards the file is closed. When this throws before the file has its new name
  /// (XWrite, XOutOfSpace), it is still a temporary one.
  void CommitAs(const NSTolbrook::NativePath& path);

  /// True for a name such as these files have; nothing that a user would name a file is taken for
  /// one.
  static bool IsName(std::u16string_view name);

  /// Removes the temporary files in `folder` that no living process holds, those of other users
  /// apart. Throws XOpen, XRead when the folder cannot be read, XDelete.
  static void RemoveLeftovers(const NSTolbrook::NativePath& folder);

 private:
  NSTolbrook::NativePath fPath;
  std::shared_ptr<CStdioMedia> fMedia;
  bool fCommitted = false;
};

}  // namespace NSBigFilePackage
