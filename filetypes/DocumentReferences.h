#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "filetypes/FileTypeInterfaces.h"
#include "references/ReferenceChunk.h"

namespace NSTambraPacking {

/// A reference of a document and the kind that its relocation is judged by.
struct CKindedReference {
  std::uint32_t fKind;
  CSampleReference fReference;
};

std::vector<CKindedReference> KindedReferences(std::span<const CSF10ReferenceChunk> chunks);
std::vector<CKindedReference> KindedReferences(std::span<const CSampleReference> references);

/// Looks every reference up, when the context has a resolver, and notes where it leads.
void ResolveReferences(std::span<const CKindedReference> references, CVerifyContext& context);

/// The references as they stand in the package. Every one that cannot be resolved is noted in the
/// context before XResolve is thrown for them; XUnsupportedFormat of the relocator comes with the
/// target_object_type "reference".
std::vector<CSampleReference> RelocateReferences(std::span<const CKindedReference> references,
                                                 CPackContext& context);

}  // namespace NSTambraPacking
