#include "app/PackageContents.h"

#include "app/FormFault.h"
#include "filetypes/FileTypeRegistry.h"
#include "package/PackageTree.h"
#include "package/PartialMedia.h"
#include "references/ReferenceLookup.h"
#include "references/StandardReferenceResolver.h"

namespace NSTambraPacking {

CPackageContents::CPackageContents(const NSTolbrook::NativePath& path)
    : fPackage(OpenPackageFile(path)) {
  fEntries = WithFormFault(kNoPackage, [this] { return fPackage.fReader.ReadEntries(); });
  fNodes = AddEntries(fEntries, fTree);
  fEntryOfNode.resize(fTree.NodeCount());
  for (std::size_t i = 0; i < fEntries.size(); ++i) fEntryOfNode[fNodes[i]] = fEntries[i];
}

NSBigFilePackage::SharedMedia CPackageContents::Splash() const {
  return std::make_shared<NSBigFilePackage::CPartialMedia>(
      Media(), std::uint64_t{Header().fDataStart} + Header().fSplashOffset, Header().fSplashSize);
}

CPackageEntries CPackageContents::EntriesBelow(const std::vector<Node>& nodes) const {
  std::vector<bool> isWanted(fTree.NodeCount());
  for (const Node node : nodes) isWanted.at(node) = true;
  // A folder has a lower number than what lies in it.
  for (Node node = 1; node < fTree.NodeCount(); ++node) {
    if (isWanted[fTree.Parent(node)]) isWanted[node] = true;
  }
  CPackageEntries entries;
  for (std::size_t i = 0; i < fEntries.size(); ++i) {
    if (isWanted[fNodes[i]]) entries.push_back(fEntries[i]);
  }
  return entries;
}

std::vector<CEntryReference> CPackageContents::ReferencesOf(
    const CPackageEntry& entry, std::function<bool()> stopRequested) const {
  std::vector<CEntryReference> references;
  if (!CFileTypeRegistry::Instance().HasReferences(entry.TypeCode())) return references;
  const IncludedPaths noneIncluded;  // that it is found is enough: only entries can be
  const CReferenceLookup lookup(fTree);
  const CStandardReferenceResolver resolver(lookup, Header().fTambraName, noneIncluded);
  CVerifyContext context;
  context.fPath = entry.Path();
  context.fStopRequested = std::move(stopRequested);
  context.fResolver = &resolver;
  CFileTypeRegistry::Instance().VerifyPackedEntry(entry.TypeCode(), entry.Data(), context);
  for (CResolvedReference& reference : context.fReferences) {
    references.push_back({std::move(reference.fPrinted), std::move(reference.fTambraName),
                          std::move(reference.fResolution.fPath)});
  }
  return references;
}

}  // namespace NSTambraPacking
