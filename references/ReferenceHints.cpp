#include "references/ReferenceHints.h"

#include <algorithm>

#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTambraPacking {

namespace {

using NSTolbrook::ComparisonKey;
using EKind = CEntryTree::EKind;

/// Files of a folder that are compared with a name; bounds the time that a huge folder takes.
constexpr std::size_t kGreatestNeighbourCount = 4096;
constexpr std::size_t kGreatestComparedLength = 255;
constexpr std::size_t kGreatestDistance = 2;
/// A slip is likely only in a name of so many characters for each.
constexpr std::size_t kLengthPerSlip = 4;

/// True when at most `limit` characters are put in, left out, changed or swapped with their
/// neighbour (optimal string alignment; only the diagonals within the limit are filled in).
bool IsWithinDistance(std::u16string_view a, std::u16string_view b, std::size_t limit) {
  const std::size_t far = limit + 1;
  if (std::max(a.size(), b.size()) > std::min(a.size(), b.size()) + limit) return false;
  std::vector<std::size_t> beforeLast;
  std::vector<std::size_t> last;
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j < row.size(); ++j) row[j] = std::min(j, far);
  for (std::size_t i = 1; i <= a.size(); ++i) {
    beforeLast = std::move(last);
    last = std::move(row);
    row.assign(b.size() + 1, far);
    row[0] = std::min(i, far);
    const std::size_t from = i > limit ? i - limit : 1;
    for (std::size_t j = from; j <= std::min(b.size(), i + limit); ++j) {
      const std::size_t change = a[i - 1] == b[j - 1] ? 0 : 1;
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + change});
      const bool isSwapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (isSwapped) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
    }
  }
  return row[b.size()] <= limit;
}

std::u16string_view Stem(std::u16string_view name) {
  const std::size_t dot = name.rfind(u'.');
  return dot == std::u16string_view::npos || dot == 0 ? name : name.substr(0, dot);
}

bool IsMeant(EReferenceHintKind kind, std::u16string_view wanted, std::u16string_view candidate) {
  const bool sameStem = Stem(wanted) == Stem(candidate);
  if (kind == EReferenceHintKind::kOtherExtension) return sameStem;
  const std::size_t length = std::min(Stem(wanted).size(), kGreatestComparedLength);
  const std::size_t limit = std::min(kGreatestDistance, length / kLengthPerSlip);
  return !sameStem && limit > 0 && candidate.size() <= kGreatestComparedLength &&
         wanted.size() <= kGreatestComparedLength && IsWithinDistance(wanted, candidate, limit);
}

bool IsFile(EKind kind) { return kind == EKind::kFile || kind == EKind::kContainer; }

/// A path that is only text so far: nothing on it need exist.
CPathComponents RelativeAsWritten(const CRelativePath& path, std::u16string_view documentPath) {
  CPathComponents components = SplitEntryPath(documentPath);
  const auto dropped = static_cast<std::size_t>(path.StepUp()) + 1;
  if (!path.IsValid() || dropped > components.size()) return {};
  components.resize(components.size() - dropped);
  components.insert(components.end(), path.Components().begin(), path.Components().end());
  return components;
}

void Add(std::vector<CReferenceHint>& hints, EReferenceHintKind kind, std::u16string path) {
  const auto ofKind = std::count_if(hints.begin(), hints.end(), [kind](const CReferenceHint& hint) {
    return hint.fKind == kind;
  });
  if (static_cast<std::size_t>(ofKind) >= CReferenceHints::kGreatestHintCount) return;
  const bool isKnown = std::any_of(hints.begin(), hints.end(), [&path](const CReferenceHint& hint) {
    return hint.fPath == path;
  });
  if (!isKnown) hints.push_back({kind, std::move(path)});
}

}  // namespace

CReferenceHints::CReferenceHints(const CReferenceLookup& lookup,
                                 std::span<const std::u16string> leftOutPaths)
    : fLookup(&lookup) {
  for (const std::u16string& path : leftOutPaths) {
    fLeftOut.emplace(ComparisonKey(path), path);
    fGreatestLeftOutDepth = std::max(fGreatestLeftOutDepth, SplitEntryPath(path).size());
  }
  const CEntryTree& tree = lookup.Tree();
  for (CEntryTree::Node node = 0; node < tree.NodeCount(); ++node) {
    if (IsFile(tree.Kind(node))) fFilesByName[ComparisonKey(tree.Name(node))].push_back(node);
  }
}

std::vector<CReferenceHint> CReferenceHints::Find(const CSampleReference& reference,
                                                  std::u16string_view documentPath) const {
  std::vector<CReferenceHint> hints;
  if (const auto found = fLookup->Find(reference, documentPath)) {
    AddLeftOut(hints, fLookup->Tree().Components(found->fNode));
    return hints;
  }
  const CPathComponents& relative = reference.fRelativePath.Components();
  const CPathComponents& database = reference.fDatabasePath.Components();
  const CPathComponents& absolute = reference.fAbsolutePath.Components();
  AddLeftOut(hints, RelativeAsWritten(reference.fRelativePath, documentPath));
  AddLeftOut(hints, database);

  const CLookupTrail byRelative = fLookup->FollowRelative(reference.fRelativePath, documentPath);
  const CLookupTrail byDatabase = fLookup->FollowDatabase(reference.fDatabasePath);
  if (byRelative.fLeavesTree || byDatabase.fLeavesTree) {
    Add(hints, EReferenceHintKind::kOutsideTree, {});
  }
  for (const CPathComponents* path : {&relative, &database, &absolute}) {
    if (!path->empty()) AddOtherFolders(hints, path->back());
  }
  if (!reference.fTrueName.empty()) AddOtherFolders(hints, reference.fTrueName);
  for (const EReferenceHintKind kind :
       {EReferenceHintKind::kOtherExtension, EReferenceHintKind::kSimilarName}) {
    for (const auto& [trail, path] :
         {std::pair(&byRelative, &relative), {&byDatabase, &database}}) {
      const bool folderIsThere = !trail->fLeavesTree && trail->fUsed + 1 == path->size();
      if (folderIsThere) AddNeighbours(hints, kind, trail->fFolder, path->back());
    }
  }
  return hints;
}

void CReferenceHints::AddLeftOut(std::vector<CReferenceHint>& hints,
                                 const CPathComponents& path) const {
  CPathComponents prefix;
  for (std::size_t i = 0; i < std::min(path.size(), fGreatestLeftOutDepth); ++i) {
    prefix.push_back(path[i]);
    const auto leftOut = fLeftOut.find(ComparisonKey(JoinComponents(prefix)));
    if (leftOut != fLeftOut.end()) Add(hints, EReferenceHintKind::kLeftOut, leftOut->second);
  }
}

void CReferenceHints::AddOtherFolders(std::vector<CReferenceHint>& hints,
                                      const std::u16string& name) const {
  const auto files = fFilesByName.find(ComparisonKey(name));
  if (files == fFilesByName.end()) return;
  for (std::size_t i = 0; i < std::min(files->second.size(), kGreatestHintCount); ++i) {
    Add(hints, EReferenceHintKind::kOtherFolder, fLookup->Tree().Path(files->second[i]));
  }
}

void CReferenceHints::AddNeighbours(std::vector<CReferenceHint>& hints, EReferenceHintKind kind,
                                    CEntryTree::Node folder, const std::u16string& name) const {
  const CEntryTree& tree = fLookup->Tree();
  const std::vector<CEntryTree::Node>& children = tree.Children(folder);
  const std::u16string wanted = ComparisonKey(name);
  for (std::size_t i = 0; i < std::min(children.size(), kGreatestNeighbourCount); ++i) {
    const CEntryTree::Node file = children[i];
    if (!IsFile(tree.Kind(file))) continue;
    if (IsMeant(kind, wanted, ComparisonKey(tree.Name(file)))) Add(hints, kind, tree.Path(file));
  }
}

}  // namespace NSTambraPacking
