#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "package/PackageEntry.h"
#include "package/PackageHeader.h"

namespace NSTambraPacking {

/// Opens a package file. Nothing in it is taken on trust: every count, length and offset is checked
/// against the file's size before memory is taken.
class CPackageReader {
 public:
  /// Reads the header. Throws as ReadPackageHeader, and XRead.
  explicit CPackageReader(NSBigFilePackage::SharedMedia package);

  const CPackageHeader& Header() const { return fHeader; }

  /// Reads the index and cuts each entry's bytes out of the file as a partial media, in the order
  /// of the index. Throws XRead, and XFormatViolation when
  /// - the index or the data region begins inside the header or behind the file's end,
  /// - the file count asks for more index entries than can stand in their region,
  /// - an index entry runs out of its region or has no name,
  /// - the bytes of an entry, or of the splash, do not lie inside the data region,
  /// - the entries together are longer than the data region kGreatestSharing times.
  ///
  /// Either region may come first and runs up to the other one, the second up to the file's end.
  /// Entries may share bytes and leave gaps: the format says where each one is, nothing else. What
  /// it costs to read them all grows with the file, not with its square.
  std::vector<std::shared_ptr<CPackageEntry>> ReadEntries() const;

 private:
  struct CRegions;

  CRegions CheckRegions() const;

  NSBigFilePackage::SharedMedia fPackage;
  NSBigFilePackage::SharedMedia fBuffered;
  CPackageHeader fHeader;
  std::uint64_t fHeaderEnd;
};

}  // namespace NSTambraPacking
