#pragma once

#include <memory>
#include <vector>

#include "package/EntryTree.h"
#include "package/PackageEntry.h"

namespace NSTambraPacking {

/// Adds the entries of a package to an empty tree and returns the node of each. Throws
/// XFormatViolation when two entries have one name, or a file has the name of a folder.
std::vector<CEntryTree::Node> AddEntries(const std::vector<std::shared_ptr<CPackageEntry>>& entries,
                                         CEntryTree& tree);

}  // namespace NSTambraPacking
