#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/FileItem.h"

namespace NSTambraPacking {

/// One file that the scan found.
struct CScannedFile {
  NSTolbrook::CFileItem fItem;
  /// From the input root, components joined with "/", in the disk's own spelling.
  std::u16string fPath;
  /// Why the file cannot be packed, in plain English; empty when nothing is wrong with it so far.
  std::string fFault;
  bool fIsInformation = false;  ///< one of the information files of the top folder
  bool fSkipped = false;        ///< named by a skip item, or lies in a folder that is
};

/// A shortcut file that was found and leads somewhere.
struct CScannedShortcut {
  std::u16string fPath;
  /// From the input root; nothing when the target lies outside of it.
  std::optional<std::u16string> fTarget;
};

struct CScannedFolder {
  /// From the input root, which is not among them; a folder before those in it.
  std::vector<std::u16string> fFolders;
  /// Depth first; inside a folder the files, then the folders, each by folded name: the same order
  /// on every machine.
  std::vector<CScannedFile> fFiles;
  std::vector<CScannedShortcut> fShortcuts;
};

/// What decides about a path during the scan.
struct CScanRules {
  /// True for a path (from the input root) that a skip item names.
  std::function<bool(const std::u16string& path)> fIsSkipItem;
  /// Called with the number of files found so far; may throw to end the scan.
  std::function<void(std::size_t count)> fReport;
  /// Called with the path of a shortcut that cannot be read or leads nowhere, which is then left
  /// out; without it such a shortcut ends the scan.
  std::function<void(const std::u16string& path)> fBadShortcut = {};
};

/// Looks through the input folder without opening any content file. System clutter (names that
/// begin with a dot, "Thumbs.db", "desktop.ini", "Icon\r", folders "__MACOSX") is left out. Links
/// are followed inside the folder only; one that leads elsewhere, a pipe or device, a name that
/// no other system could hold and a path that differs from an earlier one only in case or
/// normalisation come back with their fault. Throws what listing `root` throws, and XResolve with
/// the path for a shortcut that cannot be read or leads nowhere, unless the rules take it.
CScannedFolder ScanFolder(const NSTolbrook::NativePath& root, const CScanRules& rules);

}  // namespace NSTambraPacking
