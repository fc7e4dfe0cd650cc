#include "package/EntryTree.h"

#include <algorithm>
#include <limits>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTambraPacking {

namespace {

constexpr std::u16string_view kShortcutExtension = u".lnk";

/// The folder's number in two code units and the name behind it.
std::u16string MapKey(CEntryTree::Node folder, std::u16string_view name) {
  std::u16string key;
  key.reserve(2 + name.size());
  key += static_cast<char16_t>(folder >> 16);
  key += static_cast<char16_t>(folder & 0xFFFF);
  key += name;
  return key;
}

std::optional<CEntryTree::Node> Find(const std::map<std::u16string, CEntryTree::Node>& map,
                                     const std::u16string& key) {
  const auto found = map.find(key);
  return found == map.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace

CEntryTree::CEntryTree() { fNodes.push_back({EKind::kFolder, kRoot, {}, {}}); }

CEntryTree::Node CEntryTree::AddFolder(std::u16string_view path) {
  return Add(path, EKind::kFolder);
}

CEntryTree::Node CEntryTree::AddFile(std::u16string_view path, bool isContainer) {
  return Add(path, isContainer ? EKind::kContainer : EKind::kFile);
}

CEntryTree::Node CEntryTree::AddShortcut(std::u16string_view path,
                                         std::optional<std::u16string> target) {
  const Node node = Add(path, EKind::kShortcut);
  if (target) fShortcutTargets.emplace(node, *std::move(target));
  return node;
}

CEntryTree::Node CEntryTree::Add(std::u16string_view path, EKind kind) {
  const CPathComponents components = SplitEntryPath(path);
  if (components.empty() && kind != EKind::kFolder) {
    throw NSMordel::XAlreadyExists("a file without a name would take the place of the root");
  }
  Node node = kRoot;
  for (std::size_t i = 0; i < components.size(); ++i) {
    const bool isLast = i + 1 == components.size();
    const EKind wanted = isLast ? kind : EKind::kFolder;
    const std::optional<Node> existing = FindExact(node, components[i]);
    if (!existing) {
      node = AddChild(node, components[i], wanted);
      continue;
    }
    node = *existing;
    if (wanted == EKind::kFolder && Kind(node) == EKind::kFolder) continue;
    throw NSMordel::XAlreadyExists("the path \"" + NSTolbrook::Utf8FromText(path) +
                                   "\" meets another file at \"" +
                                   NSTolbrook::Utf8FromText(Path(node)) + "\"");
  }
  return node;
}

CEntryTree::Node CEntryTree::AddChild(Node folder, const std::u16string& name, EKind kind) {
  if (fNodes.size() > std::numeric_limits<Node>::max()) {
    throw NSMordel::XOutOfItems("a folder tree holds too many files");
  }
  const auto node = static_cast<Node>(fNodes.size());
  fNodes.push_back({kind, folder, name, {}});
  fNodes[folder].fChildren.push_back(node);
  fByName.emplace(MapKey(folder, name), node);
  fByKey.emplace(MapKey(folder, NSTolbrook::ComparisonKey(name)), node);
  return node;
}

CPathComponents CEntryTree::Components(Node node) const {
  CPathComponents components;
  for (; node != kRoot; node = Parent(node)) components.push_back(Name(node));
  std::reverse(components.begin(), components.end());
  return components;
}

std::optional<CEntryTree::Node> CEntryTree::FindExact(Node folder, std::u16string_view name) const {
  return Find(fByName, MapKey(folder, name));
}

std::optional<CEntryTree::Node> CEntryTree::FindExactOrFolded(Node folder,
                                                              std::u16string_view name) const {
  if (const std::optional<Node> exact = FindExact(folder, name)) return exact;
  return Find(fByKey, MapKey(folder, NSTolbrook::ComparisonKey(name)));
}

std::optional<CEntryTree::Node> CEntryTree::FindEntry(Node folder, std::u16string_view name) const {
  if (const std::optional<Node> entry = FindExactOrFolded(folder, name)) return entry;
  const auto shortcut = FindExactOrFolded(folder, std::u16string(name).append(kShortcutExtension));
  return shortcut && Kind(*shortcut) == EKind::kShortcut ? shortcut : std::nullopt;
}

std::optional<CEntryTree::Node> CEntryTree::Follow(Node node) const {
  for (int followed = 0; Kind(node) == EKind::kShortcut; ++followed) {
    const auto target = fShortcutTargets.find(node);
    if (target == fShortcutTargets.end() || followed == kGreatestShortcutChain) return {};
    const std::optional<Node> next = FindPath(SplitEntryPath(target->second));
    if (!next) return {};
    node = *next;
  }
  return node;
}

std::optional<CEntryTree::Node> CEntryTree::FindChild(Node folder, std::u16string_view name) const {
  const std::optional<Node> entry = FindEntry(folder, name);
  return entry ? Follow(*entry) : std::nullopt;
}

std::optional<CEntryTree::Node> CEntryTree::FindPath(const CPathComponents& components) const {
  std::optional<Node> node = kRoot;
  for (std::size_t i = 0; node && i < components.size(); ++i) {
    node = FindExactOrFolded(*node, components[i]);
  }
  return node;
}

}  // namespace NSTambraPacking
