#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "references/ReferenceLookup.h"

namespace NSTambraPacking {

/// Why a reference may lead nowhere, the surest reason first.
enum class EReferenceHintKind {
  /// The file or a folder on its way is there but was left out.
  kLeftOut,
  /// The path leads out of the input folder.
  kOutsideTree,
  /// A file of the same name lies in another folder.
  kOtherFolder,
  /// The folder holds a file that differs only in its extension.
  kOtherExtension,
  /// The folder holds a file whose name differs by a slip or two of the keyboard.
  kSimilarName
};

struct CReferenceHint {
  EReferenceHintKind fKind;
  /// What was found instead (for kLeftOut: what was left out), from the root, joined with "/";
  /// empty for kOutsideTree.
  std::u16string fPath;

  friend bool operator==(const CReferenceHint&, const CReferenceHint&) = default;
};

/// Looks for what the author of a reference may have meant, when it leads to no file that is
/// packed.
class CReferenceHints {
 public:
  /// Hints of one kind that one reference gets at most.
  static constexpr std::size_t kGreatestHintCount = 3;

  /// `leftOutPaths` are the files and folders that were left out, whether the tree knows them or
  /// not. `lookup` must outlive the hints; its tree must not change.
  CReferenceHints(const CReferenceLookup& lookup, std::span<const std::u16string> leftOutPaths);

  /// In the order of the kinds, and none twice; empty when nothing can be said. Safe from several
  /// threads.
  std::vector<CReferenceHint> Find(const CSampleReference& reference,
                                   std::u16string_view documentPath) const;

 private:
  void AddLeftOut(std::vector<CReferenceHint>& hints, const CPathComponents& path) const;
  void AddOtherFolders(std::vector<CReferenceHint>& hints, const std::u16string& name) const;
  void AddNeighbours(std::vector<CReferenceHint>& hints, EReferenceHintKind kind,
                     CEntryTree::Node folder, const std::u16string& name) const;

  const CReferenceLookup* fLookup;
  /// By comparison key: of the whole path, and of the name alone.
  std::unordered_map<std::u16string, std::u16string> fLeftOut;
  std::size_t fGreatestLeftOutDepth = 0;
  std::unordered_map<std::u16string, std::vector<CEntryTree::Node>> fFilesByName;
};

}  // namespace NSTambraPacking
