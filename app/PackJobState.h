#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "app/AdviceRules.h"
#include "app/FolderScan.h"
#include "app/PackCache.h"
#include "app/PackageInformation.h"
#include "app/PackingLog.h"
#include "filetypes/FileTypeInterfaces.h"
#include "package/BlockStore.h"
#include "package/EntryTree.h"
#include "package/PackageEntry.h"
#include "package/PackageHeader.h"
#include "package/TemporaryFile.h"

namespace NSTambraPacking {

/// Why an entry is not (or no longer) meant for the package.
enum class ELeftOut {
  kNo,
  kSkipItem,          ///< named by the publisher
  kUnsupported,       ///< of no known type, and the user went on without it
  kProhibitedDevice,  ///< uses a prohibited device
  kPropagation,       ///< refers to a sample that is left out
  kUnusedSample,      ///< nothing refers to it
  kUnresolved,        ///< its references could not be relocated
  kNotPackable,       ///< its references are of an unsupported kind
  kBadFormat,         ///< could not be packed, and the user went on without it
};

/// One file of the input folder on its way through the run.
struct CJobEntry {
  CScannedFile fFile;
  /// Path and type code from the start, data from phase 4 on.
  std::shared_ptr<CPackageEntry> fEntry;
  const IFileTypePacker* fPacker = nullptr;
  ELeftOut fLeftOut = ELeftOut::kNo;
  bool fFailed = false;
  /// Why the entry failed or was left out, in plain English; may be empty.
  std::string fReason;
  /// Of the source file when it was verified, in bytes.
  std::uint64_t fSize = 0;
  /// Of its data in the package, in bytes; 0 before it is packed.
  std::uint64_t fPackedSize = 0;
  /// When its packed bytes are, or may be, kept in the cache.
  std::optional<CCacheTicket> fCacheTicket;
  /// What the verifier found.
  std::vector<CResolvedReference> fReferences;
  std::set<std::u16string> fProhibitedDevices;
  std::set<ERemark> fRemarks;
  /// The references that could not be relocated, printed.
  std::vector<std::u16string> fUnresolved;

  /// True for a file that is to be verified and packed: no information file, not left out.
  bool TakesPart() const { return !fFile.fIsInformation && fLeftOut == ELeftOut::kNo; }
};

/// What a run is asked to do.
struct CPackSettings {
  NSTolbrook::CFileItem fInputFolder;
  NSTolbrook::CFileItem fOutputFolder;
  /// Threads that verify and pack.
  unsigned fJobs = 1;
  /// May be null; must outlive the run.
  const ISlicedLoopLibrary* fSlicedLoopLibrary = nullptr;
  /// Packed files of earlier runs; may be null, must outlive the run.
  CPackCache* fCache = nullptr;
  /// Of a check that gives advice; else null. Must outlive the run.
  const CAdviceRules* fAdviceRules = nullptr;
  /// Of a check that goes on behind what is wrong with the folder as a whole (its name, version,
  /// splash and shortcuts): takes each such failure. Without it the first one ends the run.
  std::function<void(const std::exception_ptr& failure)> fFolderFault;
};

/// All that a run knows; made when it starts and kept, without the working file, until the next one
/// starts.
struct CPackJobState {
  CPackSettings fSettings;
  NSTolbrook::CFileItem fOutputFile;
  CPackageInformation fInformation;
  CPackOptions fOptions;

  /// In scan order.
  std::vector<CJobEntry> fEntries;
  /// The information files' bytes as first read, so that a change on disk does not split the run.
  std::vector<CInformationFile> fInformationFiles;
  /// Index in fEntries of each file by its path.
  std::unordered_map<std::u16string, std::size_t> fEntryOfPath;
  std::vector<CScannedShortcut> fShortcuts;
  CEntryTree fTree;

  /// Hold the packed entries from phase 4 on while the run lasts.
  std::optional<NSBigFilePackage::CTemporaryFile> fWorkingFile;
  std::shared_ptr<NSBigFilePackage::CBlockStore> fStore;
  /// Gives them up; what was found out stays.
  void RemovePackedEntries() {
    fStore.reset();
    fWorkingFile.reset();
  }
  /// What goes into the package, information files among it for their texts.
  std::vector<std::shared_ptr<CPackageEntry>> fPackageEntries;
  /// True once the package file has its name, verified or not.
  bool fPackageWritten = false;
  /// The header as the composer wrote it.
  CPackageHeader fHeader;

  /// What the log tells; its three problem lists make the run count as failed.
  CPackLists fLists;
  /// Of a check: sorted by severity, the worst first, then by kind.
  std::vector<CAdvice> fAdvice;
  std::optional<NSTolbrook::CFileItem> fLogFile;
  /// The file that a phase was working on when a failure left it; empty when it was none.
  std::u16string fCurrentFile;
};

}  // namespace NSTambraPacking
