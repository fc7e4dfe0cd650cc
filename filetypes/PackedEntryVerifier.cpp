#include "filetypes/PackedEntryVerifier.h"

#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "filetypes/FileTypeRegistry.h"
#include "references/StandardReferenceResolver.h"

namespace NSTambraPacking {

CPackedEntryVerifier::CPackedEntryVerifier(std::u16string packageName,
                                           const ISlicedLoopLibrary* library,
                                           std::function<bool()> stopRequested)
    : fPackageName(std::move(packageName)),
      fLibrary(library),
      fStopRequested(std::move(stopRequested)) {}

void CPackedEntryVerifier::TakeEntries(const std::vector<std::shared_ptr<CPackageEntry>>& entries) {
  for (const auto& entry : entries) {
    try {
      fTree.AddFile(entry->Path(), entry->IsContainer());
    } catch (const NSMordel::XAlreadyExists&) {
      throw NSMordel::XFormatViolation(
          "the package holds two entries with one name, or a file with the name of a folder",
          {{NSMordel::kTargetObjectType, "file"},
           {NSMordel::kTargetObjectId, NSTolbrook::Utf8FromText(entry->Path())}});
    }
  }
}

std::vector<std::u16string> CPackedEntryVerifier::Verify(const CPackageEntry& entry,
                                                         bool resolveReferences) const {
  const IncludedPaths noneIncluded;  // that it is found is enough: only entries can be
  const CStandardReferenceResolver resolver(fLookup, fPackageName, noneIncluded);
  CVerifyContext context;
  context.fPath = entry.Path();
  context.fStopRequested = [this] { return fCancelled || (fStopRequested && fStopRequested()); };
  context.fSlicedLoopLibrary = fLibrary;
  if (resolveReferences) context.fResolver = &resolver;
  CFileTypeRegistry::Instance().VerifyPackedEntry(entry.TypeCode(), entry.Data(), context);
  std::vector<std::u16string> broken;
  for (const CResolvedReference& reference : context.fReferences) {
    if (!reference.fResolution.IsFound()) broken.push_back(reference.fPrinted);
  }
  return broken;
}

}  // namespace NSTambraPacking
