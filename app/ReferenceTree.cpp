#include "app/ReferenceTree.h"

namespace NSTambraPacking {

namespace {

/// The components of the input root itself. Where one is no text, no path can name it.
CPathComponents RootComponents(const CPackJobState& state) {
  CPathComponents components;
  const auto root = NSTolbrook::CanonicalPath(state.fSettings.fInputFolder.Path()).relative_path();
  for (const auto& component : root) {
    const auto name = NSTolbrook::TextFromNative(component);
    if (!name) return {};
    components.push_back(*name);
  }
  return components;
}

}  // namespace

CReferenceTree::CReferenceTree(const CPackJobState& state)
    : fLookup(state.fTree, RootComponents(state)) {}

}  // namespace NSTambraPacking
