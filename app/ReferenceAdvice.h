#pragma once

#include <string>
#include <vector>

#include "app/PackJobState.h"
#include "app/TextResources.h"

namespace NSTambraPacking {

/// A reference that leads to no packed file, and what its author may have meant.
struct CReferenceAdvice {
  std::u16string fEntry;      ///< the referring document
  std::u16string fReference;  ///< printed
  std::vector<std::u16string> fHints;
};

/// Advice for every unresolved and external reference of the entries that take part, in the order
/// of the entries; a reference about which nothing can be said has no hints.
std::vector<CReferenceAdvice> AdviseOnReferences(const CTextResources& texts,
                                                 const CPackJobState& state);

}  // namespace NSTambraPacking
