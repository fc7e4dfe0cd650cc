#pragma once

#include <string>

#include "references/ReferenceInterfaces.h"
#include "references/ReferenceLookup.h"

namespace NSTambraPacking {

/// Turns references to files of the input folder into references into the package being built.
class CStandardReferenceRelocator : public IReferenceRelocator {
 public:
  /// `lookup` must outlive the relocator.
  CStandardReferenceRelocator(const CReferenceLookup& lookup, std::u16string packageName,
                              std::u16string packageURL);

  CSampleReference Relocate(std::uint32_t kind, const CSampleReference& reference,
                            std::u16string_view documentPath) const override;

 private:
  const CReferenceLookup* fLookup;
  std::u16string fPackageName;
  std::u16string fPackageURL;
};

}  // namespace NSTambraPacking
