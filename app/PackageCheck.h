#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "codecs/SlicedLoopLibrary.h"
#include "package/PackageVerifier.h"

namespace NSTambraPacking {

/// How a check of a package is watched.
struct CPackageCheckOptions {
  /// May be null.
  const ISlicedLoopLibrary* fLibrary = nullptr;
  unsigned fJobs = 1;
  /// Asked often, from several threads; true ends the check.
  std::function<bool()> fStopRequested;
  /// Called as entries are done, one call at a time and from several threads: their packed bytes so
  /// far and all there are, and the path of the one that was just begun.
  std::function<void(std::uint64_t done, std::uint64_t all, const std::u16string& path)> fProgress;
};

/// Reads every entry of a package as its type demands. Throws as CPackageVerifier::Verify.
CVerificationResult CheckPackage(const NSBigFilePackage::SharedMedia& package,
                                 const CPackageCheckOptions& options);

}  // namespace NSTambraPacking
