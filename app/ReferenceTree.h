#pragma once

#include "app/PackJobState.h"
#include "references/ReferenceLookup.h"

namespace NSTambraPacking {

/// The lookup of references in the input folder of a run.
class CReferenceTree {
 public:
  /// The state must outlive the object and keep its tree.
  explicit CReferenceTree(const CPackJobState& state);

  const CReferenceLookup& Lookup() const { return fLookup; }

 private:
  CReferenceLookup fLookup;
};

}  // namespace NSTambraPacking
