#include "references/ReferenceLookup.h"

#include <utility>

#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTambraPacking {

namespace {

using EKind = CEntryTree::EKind;

/// Steps down the tree that a search may take for each component of its path, and whatever its
/// length: far more than any real path needs. Without a bound a path of one name again and again in
/// a tree of the same would cost the product of their lengths.
constexpr std::size_t kSearchStepsForEach = 32;
constexpr std::size_t kSearchSteps = 4096;

bool IsSameName(const std::u16string& a, const std::u16string& b) {
  return a == b || NSTolbrook::ComparisonKey(a) == NSTolbrook::ComparisonKey(b);
}

}  // namespace

CReferenceLookup::CReferenceLookup(const CEntryTree& tree, CPathComponents rootPath)
    : fTree(&tree), fRootPath(std::move(rootPath)) {}

std::optional<CFoundFile> CReferenceLookup::Find(const CSampleReference& reference,
                                                 std::u16string_view documentPath) const {
  if (auto found = FollowRelative(reference.fRelativePath, documentPath).fFound) return found;
  if (auto found = FollowDatabase(reference.fDatabasePath).fFound) return found;
  auto found = FindAbsolute(reference.fAbsolutePath);
  if (found) {
    found->fBySearch = reference.fRelativePath.IsValid() || reference.fDatabasePath.IsValid();
  }
  return found;
}

CLookupTrail CReferenceLookup::FollowRelative(const CRelativePath& path,
                                              std::u16string_view documentPath) const {
  if (!path.IsValid()) return {};
  CPathComponents folderPath = SplitEntryPath(documentPath);
  if (!folderPath.empty()) folderPath.pop_back();
  const std::optional<CEntryTree::Node> start = fTree->FindPath(folderPath);
  if (!start) return {};
  CEntryTree::Node folder = *start;
  auto levels = static_cast<std::size_t>(path.StepUp());
  for (; levels > 0 && folder != CEntryTree::kRoot; --levels) folder = fTree->Parent(folder);
  if (levels > 0) return ReturnFromAbove(levels, path.Components());
  return Descend(folder, path.Components());
}

CLookupTrail CReferenceLookup::FollowDatabase(const CDatabasePath& path) const {
  if (!path.IsValid()) return {};
  return Descend(CEntryTree::kRoot, path.Components());
}

std::optional<CFoundFile> CReferenceLookup::FindAbsolute(const CAbsolutePath& path) const {
  if (!path.IsValid()) return {};
  const Components components = path.Components();
  std::size_t steps = kSearchSteps + kSearchStepsForEach * components.size();
  for (std::size_t start = 0; start < components.size(); ++start) {
    CLookupTrail trail = Descend(CEntryTree::kRoot, components.subspan(start));
    if (trail.fFound) return std::move(trail.fFound);
    if (trail.fUsed >= steps) return {};
    steps -= trail.fUsed;
  }
  return {};
}

CPathComponents CReferenceLookup::ComponentsOf(const CFoundFile& found) const {
  CPathComponents components = fTree->Components(found.fNode);
  components.insert(components.end(), found.fInner.begin(), found.fInner.end());
  return components;
}

/// From `levels` folders above the root: the path must first come down the root's own names.
CLookupTrail CReferenceLookup::ReturnFromAbove(std::size_t levels, Components components) const {
  CLookupTrail outside;
  outside.fLeavesTree = true;
  if (levels > fRootPath.size() || levels >= components.size()) return outside;
  const Components way = Components(fRootPath).last(levels);
  for (std::size_t i = 0; i < levels; ++i) {
    if (!IsSameName(way[i], components[i])) return outside;
  }
  CLookupTrail trail = Descend(CEntryTree::kRoot, components.subspan(levels));
  trail.fUsed += levels;
  return trail;
}

CLookupTrail CReferenceLookup::Descend(CEntryTree::Node folder, Components components) const {
  CLookupTrail trail;
  trail.fFolder = folder;
  CEntryTree::Node node = folder;
  for (std::size_t i = 0; i < components.size(); ++i) {
    const std::optional<CEntryTree::Node> entry = fTree->FindEntry(node, components[i]);
    if (!entry) return trail;
    const std::optional<CEntryTree::Node> target = fTree->Follow(*entry);
    trail.fLeavesTree = !target;
    if (!target) return trail;
    node = *target;
    const Components rest = components.subspan(i + 1);
    const EKind kind = fTree->Kind(node);
    if (kind == EKind::kContainer || (kind == EKind::kFile && rest.empty())) {
      trail.fFound = CFoundFile{node, CPathComponents(rest.begin(), rest.end()), false};
      return trail;
    }
    if (kind == EKind::kFile) return trail;
    trail.fFolder = node;
    trail.fUsed = i + 1;
  }
  return trail;
}

}  // namespace NSTambraPacking
