#include "package/PackageTree.h"

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/PortablePath.h"

namespace NSTambraPacking {

std::vector<CEntryTree::Node> AddEntries(const std::vector<std::shared_ptr<CPackageEntry>>& entries,
                                         CEntryTree& tree) {
  std::vector<CEntryTree::Node> nodes;
  for (const auto& entry : entries) {
    try {
      nodes.push_back(tree.AddFile(entry->Path(), entry->IsContainer()));
    } catch (const NSMordel::XAlreadyExists&) {
      throw NSMordel::XFormatViolation(
          "the package holds two entries with one name, or a file with the name of a folder: \"" +
          NSTolbrook::EscapedText(entry->Path()) + "\"");
    }
  }
  return nodes;
}

}  // namespace NSTambraPacking
