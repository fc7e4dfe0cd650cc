#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "package/PackageEntry.h"
#include "package/PackageHeader.h"
#include "package/PhaseReport.h"

namespace NSTambraPacking {

class IPictureReader;
class ISpecialFiles;

/// The phase in which the package file is composed.
inline constexpr int kComposePhase = 7;

/// Turns the list of packed entries into a package file: header, index and data without gaps, the
/// entries in list order.
class CPackageComposer {
 public:
  using CEntries = std::vector<std::shared_ptr<CPackageEntry>>;

  /// All four must outlive the composer; `job` and `progress` may be null (see CPhaseReport).
  CPackageComposer(ISpecialFiles& specialFiles, const IPictureReader& pictureReader,
                   CTambraPacker* job, ITambraPackingProgress* progress);

  /// Composes the package into `output`, which must be empty, and returns the header as written.
  /// Each entry is reported once, while the list is walked for the information files (which are
  /// not stored) and the splash. Nothing is written before all entries are known to fit.
  ///
  /// Throws, in this order:
  /// - XSilentAbort "User aborted" on a stop request, asked at the start, before each entry is
  ///   written and between the pieces of a long one;
  /// - while walking: XOpen for an information file or splash without data, what ISpecialFiles
  ///   throws, and as CheckSplashSize;
  /// - XNotFound "tambra name not found" with the context key kTambraNameKey, else "splash file
  ///   not found" with kSplashKey;
  /// - XOpen for an entry without data, XOutOfSpace for a package beyond kPackageLimit, with the
  ///   size and the limit in the message;
  /// - what reading and writing throw; a failure to read an entry carries its FileContext.
  CPackageHeader Compose(const CEntries& entries, NSBigFilePackage::IMedia& output);

 private:
  struct CPlan;

  CPlan WalkEntries(const CEntries& entries);
  void WriteData(const CPlan& plan, NSBigFilePackage::IMedia& output) const;

  ISpecialFiles& fSpecialFiles;
  const IPictureReader& fPictureReader;
  CPhaseReport fReport;
};

}  // namespace NSTambraPacking
