#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "package/EntryPath.h"

namespace NSTambraPacking {

/// The folders and files of an input folder or of a package, as the lookup of references sees them.
/// A name is found in logarithmic time, exactly or by its comparison key. Reading from several
/// threads at once is safe while nothing is added.
class CEntryTree {
 public:
  /// A number of a node of this tree; the root is 0.
  using Node = std::uint32_t;
  static constexpr Node kRoot = 0;

  enum class EKind {
    kFolder,
    kFile,
    /// A file that a path may go on inside of (a SoundFont bank, a sliced-loop file).
    kContainer,
    /// A file "X.lnk" that stands for another file or folder, by the name "X" or its own.
    kShortcut
  };

  /// Shortcuts that lead to shortcuts are followed so many times.
  static constexpr int kGreatestShortcutChain = 16;

  CEntryTree();

  /// Each adds the last component of `path` (joined with "/", from the root), and the folders above
  /// it where they are not there yet. Two names that differ only in case or normalisation may stand
  /// side by side; the one added first is what the other spellings find.
  /// Throws XAlreadyExists when the very path is there already (for AddFolder: as anything but a
  /// folder) or goes through something that is no folder.
  Node AddFolder(std::u16string_view path);
  Node AddFile(std::u16string_view path, bool isContainer);
  /// `target` is the path from the root that the shortcut leads to; nothing when that lies outside.
  Node AddShortcut(std::u16string_view path, std::optional<std::u16string> target);

  EKind Kind(Node node) const { return fNodes.at(node).fKind; }
  const std::u16string& Name(Node node) const { return fNodes.at(node).fName; }
  /// The folder that holds `node`; the root for the root itself.
  Node Parent(Node node) const { return fNodes.at(node).fParent; }
  /// What was added to a folder, in the order in which it came.
  const std::vector<Node>& Children(Node folder) const { return fNodes.at(folder).fChildren; }
  CPathComponents Components(Node node) const;
  std::u16string Path(Node node) const { return JoinComponents(Components(node)); }
  /// All nodes are below this number.
  Node NodeCount() const { return static_cast<Node>(fNodes.size()); }

  /// What stands under `name` in a folder: the exact name first, then one with the same comparison
  /// key, then the same two for `name` + ".lnk". Shortcuts are not followed.
  std::optional<Node> FindEntry(Node folder, std::u16string_view name) const;

  /// Where a shortcut leads in the end, `node` itself when it is none. Nothing when it leads
  /// outside or nowhere, or the chain is too long.
  std::optional<Node> Follow(Node node) const;

  /// FindEntry, and then Follow.
  std::optional<Node> FindChild(Node folder, std::u16string_view name) const;

  /// The node at a path from the root by exact names, else comparison keys; no shortcut is
  /// followed.
  std::optional<Node> FindPath(const CPathComponents& components) const;

 private:
  struct CNode {
    EKind fKind;
    Node fParent;
    std::u16string fName;
    std::vector<Node> fChildren;
  };

  Node Add(std::u16string_view path, EKind kind);
  Node AddChild(Node folder, const std::u16string& name, EKind kind);
  std::optional<Node> FindExact(Node folder, std::u16string_view name) const;
  std::optional<Node> FindExactOrFolded(Node folder, std::u16string_view name) const;

  std::vector<CNode> fNodes;
  /// By the folder's number and the name or key (see MapKey in the source). Ordered, since the
  /// names of a hostile package could all be made to have one hash value.
  std::map<std::u16string, Node> fByName;
  std::map<std::u16string, Node> fByKey;
  std::unordered_map<Node, std::u16string> fShortcutTargets;
};

}  // namespace NSTambraPacking
