#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "filetypes/FileTypeInterfaces.h"
#include "package/PackageVerifier.h"
#include "references/ReferenceLookup.h"

namespace NSTambraPacking {

/// Checks the entries of a finished package by their type codes; references are looked up among
/// the package's own entries.
class CPackedEntryVerifier : public IEntryVerifier {
 public:
  /// `library` may be null; both it and what `stopRequested` needs must outlive the verifier.
  CPackedEntryVerifier(std::u16string packageName, const ISlicedLoopLibrary* library,
                       std::function<bool()> stopRequested);

  /// Throws XFormatViolation when two entries have one name.
  void TakeEntries(const std::vector<std::shared_ptr<CPackageEntry>>& entries) override;
  std::vector<std::u16string> Verify(const CPackageEntry& entry,
                                     bool resolveReferences) const override;
  void Cancel() override { fCancelled = true; }

 private:
  std::u16string fPackageName;
  const ISlicedLoopLibrary* fLibrary;
  std::function<bool()> fStopRequested;
  CEntryTree fTree;
  CReferenceLookup fLookup{fTree};
  std::atomic<bool> fCancelled = false;
};

}  // namespace NSTambraPacking
