#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/OutputFolder.h"

#include "package/PackageEntry.h"

namespace NSTambraPacking {

using CPackageEntries = std::vector<std::shared_ptr<CPackageEntry>>;

/// The entries, in their order, that at least one of the names means (see MatchesPattern); all when
/// there are no names. Throws XNotFound for the first name that means none.
CPackageEntries SelectEntries(const CPackageEntries& entries,
                              const std::vector<std::u16string>& names);

/// What became of one entry.
struct CExtractedEntry {
  enum class EKind {
    kWhole,      ///< the file is the one that was packed, as far as the package tells
    kDifferent,  ///< the file is there, but not the one that was packed byte for byte
    kDamaged,    ///< there is no file: the entry cannot be read
  };
  EKind fKind = EKind::kWhole;
  std::string fReason;  ///< why it is different or damaged
};

/// Gives the files of a package back: samples as the audio files that they were made of, all else
/// as the package holds it.
class CPackageExtractor {
 public:
  using EExisting = NSTolbrook::IOutputFile::EExisting;
  /// Called before each entry with its number and, once it is done, with what became of it.
  struct CObserver {
    std::function<void(std::size_t index, const CPackageEntry& entry)> fBegun;
    std::function<void(const CPackageEntry& entry, const CExtractedEntry& outcome)> fDone;
    /// May throw, which ends the extraction; called often.
    std::function<void()> fCheckStop;
  };

  /// Makes `folder` when it is not there. Throws as CheckPortablePaths, before that; XAlreadyExists
  /// for an entry whose name is taken below the folder (with kReplace by other than a file),
  /// XPermission when a link is in an entry's way; as MakeFolders and COutputFolder.
  CPackageExtractor(CPackageEntries entries, const NSTolbrook::NativePath& folder,
                    EExisting existing);

  /// Writes the files one by one; each has its name only when it is whole. A damaged entry is no
  /// failure. Throws XRead for a package that cannot be read, and what IOutputFile throws; the
  /// files that were written before stay. Memory does not grow with the entries' sizes.
  void Extract(const CObserver& observer) const;

 private:
  CExtractedEntry ExtractEntry(const CPackageEntry& entry,
                               const std::function<void()>& checkStop) const;

  CPackageEntries fEntries;
  NSTolbrook::COutputFolder fFolder;
  EExisting fExisting;
};

}  // namespace NSTambraPacking
