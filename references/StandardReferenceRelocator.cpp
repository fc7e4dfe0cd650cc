#include "references/StandardReferenceRelocator.h"

#include <algorithm>
#include <cstddef>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "references/ReferenceChunk.h"
#include "references/StandardReferenceResolver.h"

namespace NSTambraPacking {

namespace {

using NSTolbrook::Utf8FromText;

NSMordel::CContext Context(const CSampleReference& reference, std::u16string_view documentPath) {
  return {{NSMordel::kTargetObjectType, "reference"},
          {NSMordel::kTargetObjectId, Utf8FromText(reference.Print())},
          {NSMordel::kSecondaryObjectId, Utf8FromText(documentPath)}};
}

/// The way from the folder of the document at `documentPath` to the file at `target`.
CRelativePath RelativeWay(std::u16string_view documentPath, const CPathComponents& target) {
  const CPathComponents document = SplitEntryPath(documentPath);
  const std::size_t shortest = std::min(document.size(), target.size());
  const std::size_t sharedAtMost = shortest == 0 ? 0 : shortest - 1;
  std::size_t shared = 0;
  while (shared < sharedAtMost && document[shared] == target[shared]) ++shared;
  const std::size_t folders = document.empty() ? 0 : document.size() - 1;
  return CRelativePath(
      static_cast<std::int32_t>(folders - shared),
      CPathComponents(target.begin() + static_cast<std::ptrdiff_t>(shared), target.end()));
}

}  // namespace

CStandardReferenceRelocator::CStandardReferenceRelocator(const CReferenceLookup& lookup,
                                                         std::u16string packageName,
                                                         std::u16string packageURL)
    : fLookup(&lookup), fPackageName(std::move(packageName)), fPackageURL(std::move(packageURL)) {}

CSampleReference CStandardReferenceRelocator::Relocate(std::uint32_t kind,
                                                       const CSampleReference& reference,
                                                       std::u16string_view documentPath) const {
  if (kind != kSampleReferenceKind && kind != kLQXReferenceKind) {
    throw NSMordel::XUnsupportedFormat(
        "a reference of kind " + std::to_string(kind) + " cannot be relocated",
        Context(reference, documentPath));
  }
  CSampleReference relocated = reference;
  relocated.fAbsolutePath = {};
  relocated.fRelativePath = {};
  if (const auto found = fLookup->Find(reference, documentPath)) {
    const CPathComponents target = fLookup->ComponentsOf(*found);
    relocated.fTambraName = fPackageName;
    relocated.fTambraURL = fPackageURL;
    relocated.fDatabasePath = CDatabasePath(EDatabasePathKind::kPackage, fPackageName, target);
    relocated.fRelativePath = RelativeWay(documentPath, target);
    return relocated;
  }
  // A reference into this very package keeps its database form.
  if (NamesPackage(reference, fPackageName)) return relocated;
  throw NSMordel::XResolve(
      "the file of the reference \"" + Utf8FromText(reference.Print()) + "\" was not found",
      Context(reference, documentPath));
}

}  // namespace NSTambraPacking
