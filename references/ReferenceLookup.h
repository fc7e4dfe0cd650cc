#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "package/EntryTree.h"
#include "references/SampleReference.h"

namespace NSTambraPacking {

/// A file that a path leads to.
struct CFoundFile {
  CEntryTree::Node fNode = CEntryTree::kRoot;
  /// What of the path goes on inside the file, when that is a container.
  CPathComponents fInner;
  /// Found by the absolute form, though there is another, which leads nowhere.
  bool fBySearch = false;
};

/// How far a path led.
struct CLookupTrail {
  /// Nothing when the path leads to no file.
  std::optional<CFoundFile> fFound;
  /// The last folder reached, and how many components of the path were used up to get there; the
  /// next one is what was not found in it.
  CEntryTree::Node fFolder = CEntryTree::kRoot;
  std::size_t fUsed = 0;
  /// The path leads out of the tree.
  bool fLeavesTree = false;
};

/// Finds the files that references mean: the relative form from the folder of the document, the
/// database form from the root, then the components of the absolute form from the root and ever
/// shorter tails of them. The first that leads to a file of the tree counts.
class CReferenceLookup {
 public:
  /// `rootPath` is where the root itself lies, from the top of its volume, so that a relative path
  /// that climbs above the root and comes back is understood; empty when nothing is above (in a
  /// package). The tree must outlive the lookup.
  explicit CReferenceLookup(const CEntryTree& tree, CPathComponents rootPath = {});

  const CEntryTree& Tree() const { return *fTree; }

  /// `documentPath` is the path of the referring document from the root.
  std::optional<CFoundFile> Find(const CSampleReference& reference,
                                 std::u16string_view documentPath) const;

  /// Where one form alone leads. A form that is not valid leads nowhere.
  CLookupTrail FollowRelative(const CRelativePath& path, std::u16string_view documentPath) const;
  CLookupTrail FollowDatabase(const CDatabasePath& path) const;
  std::optional<CFoundFile> FindAbsolute(const CAbsolutePath& path) const;

  /// The components from the root of the file that was found, the inner ones behind them.
  CPathComponents ComponentsOf(const CFoundFile& found) const;

 private:
  using Components = std::span<const std::u16string>;

  CLookupTrail Descend(CEntryTree::Node folder, Components components) const;
  CLookupTrail ReturnFromAbove(std::size_t levels, Components components) const;

  const CEntryTree* fTree;
  CPathComponents fRootPath;
};

}  // namespace NSTambraPacking
