#pragma once

#include <string>
#include <unordered_set>

#include "references/ReferenceInterfaces.h"
#include "references/ReferenceLookup.h"

namespace NSTambraPacking {

/// The paths, joined with "/", of the files that are packed.
using IncludedPaths = std::unordered_set<std::u16string>;

/// Classifies references against a tree and the files of it that are packed.
class CStandardReferenceResolver : public IReferenceResolver {
 public:
  /// `lookup` and `included` must outlive the resolver.
  CStandardReferenceResolver(const CReferenceLookup& lookup, std::u16string packageName,
                             const IncludedPaths& included);

  CResolution Resolve(const CSampleReference& reference,
                      std::u16string_view documentPath) const override;

 private:
  const CReferenceLookup* fLookup;
  std::u16string fPackageName;
  const IncludedPaths* fIncluded;
};

/// True when a reference says that it leads into the package of that name.
bool NamesPackage(const CSampleReference& reference, const std::u16string& packageName);

}  // namespace NSTambraPacking
