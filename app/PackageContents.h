#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/FileSystem.h"

#include "app/OpenedPackage.h"
#include "app/PackageExtractor.h"
#include "package/EntryTree.h"

namespace NSTambraPacking {

/// A reference of a packed document and where it leads.
struct CEntryReference {
  std::u16string fPrinted;
  /// The package that it says it leads into; empty when it says none.
  std::u16string fTambraName;
  /// The entry's path in this package; empty when it leads to none.
  std::u16string fTarget;
};

/// A package that is looked at: its header, its entries and the tree that they form. Nothing of it
/// changes; safe from several threads.
class CPackageContents {
 public:
  using Node = CEntryTree::Node;

  /// Throws as OpenPackageFile, CPackageReader::ReadEntries and AddEntries; XFormatViolation begins
  /// with the words that the file is no package.
  explicit CPackageContents(const NSTolbrook::NativePath& path);

  const CPackageHeader& Header() const { return fPackage.fReader.Header(); }
  const NSBigFilePackage::SharedMedia& Media() const { return fPackage.fMedia; }
  const CPackageEntries& Entries() const { return fEntries; }
  const CEntryTree& Tree() const { return fTree; }
  /// Null for a folder.
  const std::shared_ptr<CPackageEntry>& EntryAt(Node node) const { return fEntryOfNode.at(node); }

  /// The splash picture's bytes, as the header tells; a reader has seen that they are there.
  NSBigFilePackage::SharedMedia Splash() const;

  /// The entries at or below the nodes, each once, in the order of the index.
  CPackageEntries EntriesBelow(const std::vector<Node>& nodes) const;

  /// In the order of the document; none of what is no document. Throws as the verifier of such
  /// entries does, and XSilentAbort when `stopRequested` says so.
  std::vector<CEntryReference> ReferencesOf(const CPackageEntry& entry,
                                            std::function<bool()> stopRequested) const;

 private:
  COpenedPackage fPackage;
  CPackageEntries fEntries;
  CEntryTree fTree;
  std::vector<Node> fNodes;
  std::vector<std::shared_ptr<CPackageEntry>> fEntryOfNode;
};

}  // namespace NSTambraPacking
