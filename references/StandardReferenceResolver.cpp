#include "references/StandardReferenceResolver.h"

namespace NSTambraPacking {

CStandardReferenceResolver::CStandardReferenceResolver(const CReferenceLookup& lookup,
                                                       std::u16string packageName,
                                                       const IncludedPaths& included)
    : fLookup(&lookup), fPackageName(std::move(packageName)), fIncluded(&included) {}

CResolution CStandardReferenceResolver::Resolve(const CSampleReference& reference,
                                                std::u16string_view documentPath) const {
  if (const auto found = fLookup->Find(reference, documentPath)) {
    std::u16string path = fLookup->Tree().Path(found->fNode);
    const bool isIncluded = fIncluded->contains(path);
    return {isIncluded ? EReferenceClass::kFoundIncluded : EReferenceClass::kFoundNotIncluded,
            std::move(path), found->fBySearch};
  }
  const bool isInternal = NamesPackage(reference, fPackageName);
  return {isInternal ? EReferenceClass::kInternal : EReferenceClass::kExternal, {}, false};
}

bool NamesPackage(const CSampleReference& reference, const std::u16string& packageName) {
  return !reference.fTambraName.empty() && reference.fTambraName == packageName;
}

}  // namespace NSTambraPacking
