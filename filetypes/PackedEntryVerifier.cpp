#include "filetypes/PackedEntryVerifier.h"

#include <utility>

#include "filetypes/FileTypeRegistry.h"
#include "package/PackageTree.h"
#include "references/StandardReferenceResolver.h"

namespace NSTambraPacking {

CPackedEntryVerifier::CPackedEntryVerifier(std::u16string packageName,
                                           const ISlicedLoopLibrary* library,
                                           std::function<bool()> stopRequested)
    : fPackageName(std::move(packageName)),
      fLibrary(library),
      fStopRequested(std::move(stopRequested)) {}

void CPackedEntryVerifier::TakeEntries(const std::vector<std::shared_ptr<CPackageEntry>>& entries) {
  AddEntries(entries, fTree);
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
