#include "filetypes/DocumentReferences.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/ExceptionResponder.h"
#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTambraPacking {

std::vector<CKindedReference> KindedReferences(std::span<const CSF10ReferenceChunk> chunks) {
  std::vector<CKindedReference> references;
  std::transform(chunks.begin(), chunks.end(), std::back_inserter(references),
                 [](const CSF10ReferenceChunk& chunk) {
                   return CKindedReference{chunk.Kind(), chunk.Reference()};
                 });
  return references;
}

std::vector<CKindedReference> KindedReferences(std::span<const CSampleReference> references) {
  std::vector<CKindedReference> kinded;
  std::transform(references.begin(), references.end(), std::back_inserter(kinded),
                 [](const CSampleReference& reference) {
                   return CKindedReference{KindOfReference(reference), reference};
                 });
  return kinded;
}

void ResolveReferences(std::span<const CKindedReference> references, CVerifyContext& context) {
  if (context.fResolver == nullptr) return;
  for (const auto& [kind, reference] : references) {
    context.CheckStop();
    CResolvedReference resolved;
    resolved.fPrinted = reference.Print();
    resolved.fTambraName = reference.fTambraName;
    resolved.fResolution = context.fResolver->Resolve(reference, context.fPath);
    if (!resolved.fResolution.IsFound()) {
      resolved.fNotFound = std::make_shared<const CSampleReference>(reference);
    }
    context.fReferences.push_back(std::move(resolved));
  }
}

std::vector<CSampleReference> RelocateReferences(std::span<const CKindedReference> references,
                                                 CPackContext& context) {
  NSMordel::CheckInvariant(context.fRelocator != nullptr, "a document is packed without relocator");
  std::vector<CSampleReference> relocated;
  for (const auto& [kind, reference] : references) {
    context.CheckStop();
    try {
      relocated.push_back(context.fRelocator->Relocate(kind, reference, context.fPath));
    } catch (const NSMordel::XResolve&) {
      context.fUnresolved.push_back(reference.Print());
    } catch (NSMordel::XUnsupportedFormat& e) {
      e.AddContext(NSMordel::kTargetObjectType, "reference");
      throw;
    }
  }
  if (!context.fUnresolved.empty()) {
    throw NSMordel::XResolve(
        "references of the document lead to no file of the package",
        {{NSMordel::kTargetObjectType, "reference"},
         {NSMordel::kTargetObjectId, NSTolbrook::Utf8FromText(context.fUnresolved.front())},
         {NSMordel::kSecondaryObjectId, NSTolbrook::Utf8FromText(context.fPath)}});
  }
  return relocated;
}

}  // namespace NSTambraPacking
