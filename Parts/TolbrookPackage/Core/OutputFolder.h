#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/FileSystem.h"
#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSTolbrook {

/// A file that is being written; it has no name that anybody would look for before it is committed,
/// and is removed with the object when it never is. Its failures are those of CFile.
class IOutputFile : public NSBigFilePackage::IMedia {
 public:
  enum class EExisting { kRefuse, kReplace };

  /// Gives the file its place below the folder and closes it; folders that are missing on the way
  /// are made. `components` are names that FaultOfPortablePath takes, at least one. Throws
  /// XAlreadyExists for a name that is taken, with kReplace only by other than a file, and
  /// XPermission for a link on the way. Nothing else may be called afterwards.
  virtual void CommitAs(const std::vector<std::u16string>& components, EExisting existing) = 0;
};

/// A folder below which files are made, and never outside, although its contents may be hostile and
/// may change at any time: each step of a path is made from the folder that was reached before it,
/// and no link is followed. The folder itself is taken as it is named.
class COutputFolder {
 public:
  /// Throws XNotFound, XOpen.
  explicit COutputFolder(NativePath folder);
  COutputFolder(const COutputFolder&) = delete;
  COutputFolder& operator=(const COutputFolder&) = delete;
  ~COutputFolder();

  /// Throws XAlreadyExists for a name that is taken (with kReplace by other than a file), and as
  /// KindOf.
  void CheckFree(const std::vector<std::u16string>& components,
                 IOutputFile::EExisting existing) const;

  /// What has the name now. Throws XPermission when a link or a file stands where a folder on the
  /// way would be.
  EFileKind KindOf(const std::vector<std::u16string>& components) const;

  /// An empty file. The folder must outlive it.
  std::unique_ptr<IOutputFile> NewFile() const;

 private:
  std::intptr_t fHandle;
  NativePath fPath;
};

}  // namespace NSTolbrook
