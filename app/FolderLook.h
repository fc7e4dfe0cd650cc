#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "app/FolderFindings.h"
#include "app/PackJobState.h"
#include "app/PackageInformation.h"
#include "app/TextResources.h"

namespace NSTambraPacking {

/// The files of one type.
struct CTypeCount {
  std::u16string fName;
  std::size_t fCount = 0;
  std::uint64_t fSize = 0;  ///< bytes
};

/// What is in an input folder.
struct CFolderLook {
  CPackageTexts fTexts;
  std::vector<CTypeCount> fTypes;  ///< by falling size
  std::size_t fCount = 0;          ///< files of all types
  std::uint64_t fSize = 0;         ///< bytes of all types
  std::size_t fPackable = 0;       ///< files that will be packed; only after the check
  /// From the input root; a folder before those in it.
  std::vector<std::u16string> fFolders;
  /// Changes when a file, folder or shortcut comes or goes, or a file is written to.
  std::uint64_t fFingerprint = 0;
  /// What is wrong with the whole folder, then problems of files, then what is left out, then
  /// notes; only after the check. Behind them, once the samples have been heard, advice.
  std::vector<CFolderFinding> fFindings;
  bool fIsChecked = false;
};

/// Who waits for a look; called on the thread that looks.
struct CFolderLookReport {
  std::function<bool()> fStopRequested;
  /// The folder is listed, its files have not been opened. Returns false when that is all that is
  /// wanted.
  std::function<bool(const CFolderLook& look)> fListed;
  /// The check has come to its verdict, advice is still to come.
  std::function<void(const CFolderLook& look)> fChecked;
};

/// Lists the input folder of `settings`, checks it as a run would and gives advice by the folder's
/// own rules; questions are taken as answered by going on. Writes nothing. What is wrong with the
/// folder or with the package's information is a finding, not a failure, and keeps nothing else
/// from being found unless the folder or its information texts cannot be read. Throws XSilentAbort
/// when it is stopped.
CFolderLook LookAtFolder(const CTextResources& texts, const CPackSettings& settings,
                         const CFolderLookReport& report);

}  // namespace NSTambraPacking
