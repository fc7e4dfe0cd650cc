#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "app/PackageContents.h"
#include "app/TextResources.h"

namespace NSTambraGui {

/// A package with all that its tree shows, made ready beside the window's thread. Lists are by
/// node.
struct CPackageListing {
  using Node = NSTambraPacking::CPackageContents::Node;

  /// Folders below this depth are not shown as such: their files stand in the last one that is,
  /// under the rest of their path.
  static constexpr int kGreatestDepth = 64;

  std::unique_ptr<const NSTambraPacking::CPackageContents> fContents;
  std::vector<QString> fNames;          ///< harmless to show
  std::vector<std::u16string> fFolded;  ///< the whole path for the filter
  std::vector<Node> fShownParents;
  std::vector<bool> fIsShown;
  std::vector<std::uint32_t> fRanks;           ///< by name, numbers in it counting as such
  std::vector<std::uint32_t> fTypeRanks;       ///< by the name of the type; folders are alike
  std::map<std::int32_t, QString> fTypeNames;  ///< those that there are

  /// The entry's type, or that it is a folder.
  const QString& TypeName(Node node) const;
  /// Of a file.
  std::int32_t TypeCode(Node node) const { return fContents->EntryAt(node)->TypeCode(); }
  bool IsFolder(Node node) const { return fContents->EntryAt(node) == nullptr; }

  QString fFolderName;
};

/// Throws as CPackageContents, and what `checkStop` throws.
std::shared_ptr<const CPackageListing> ListPackage(const NSTambraPacking::CTextResources& texts,
                                                   const NSTolbrook::NativePath& path,
                                                   const std::function<void()>& checkStop);

/// Bytes with a unit that suits them.
QString SizeText(std::uint64_t bytes);

/// `text` as it may be shown, its line ends kept, cut where it gets very long.
QString ShownText(std::u16string_view text);

}  // namespace NSTambraGui
