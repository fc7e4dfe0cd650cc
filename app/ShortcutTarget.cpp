#include "app/ShortcutTarget.h"

#include <optional>
#include <string>
#include <string_view>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Shortcut.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "package/StdioMedia.h"

namespace NSTambraPacking {

namespace {

using NSTolbrook::EFileKind;
using NSTolbrook::NativePath;

bool Exists(const NativePath& path) {
  return NSTolbrook::FileStatus(path, true).fKind != EFileKind::kMissing;
}

/// The item of `folder` with this name in whatever case; nothing when there is none.
std::optional<NativePath> FindInFolder(const NativePath& folder, std::u16string_view name) {
  const NativePath native = NSTolbrook::NativeFromText(name);
  if (native.has_root_name()) return std::nullopt;  // a drive, which no folder holds
  const NativePath exact = folder / native;
  if (Exists(exact)) return exact;
  if (NSTolbrook::FileStatus(folder, true).fKind != EFileKind::kFolder) return std::nullopt;
  const std::u16string key = NSTolbrook::ComparisonKey(name);
  std::optional<NativePath> found;
  for (const NSTolbrook::CFolderItem& item : NSTolbrook::ListFolder(folder)) {
    const auto text = NSTolbrook::TextFromNative(item.fName);
    if (!text || NSTolbrook::ComparisonKey(*text) != key) continue;
    const NativePath path = folder / item.fName;
    // A folder's items come in no order; the least name is the same choice everywhere.
    if (Exists(path) && (!found || path < *found)) found = path;
  }
  return found;
}

/// Goes down (and up) the components of `path`, which are separated by either slash.
std::optional<NativePath> Follow(NativePath place, std::u16string_view path) {
  while (!path.empty()) {
    const std::size_t end = path.find_first_of(u"/\\");
    const std::u16string_view name = path.substr(0, end);
    path = end == std::u16string_view::npos ? std::u16string_view{} : path.substr(end + 1);
    if (name.empty() || name == u".") continue;
    if (name == u"..") {
      place = place.parent_path();
      continue;
    }
    const auto next = FindInFolder(place, name);
    if (!next) return std::nullopt;
    place = *next;
  }
  return place;
}

/// As Follow; what the user may not look at, or lies on a drive without a disk, leads nowhere.
std::optional<NativePath> FollowAsFarAsSeen(const NativePath& place, std::u16string_view path) {
  try {
    return Follow(place, path);
  } catch (const NSMordel::XPermission&) {
    return std::nullopt;
  } catch (const NSMordel::XNotReady&) {
    return std::nullopt;
  } catch (const NSMordel::XOpen&) {
    return std::nullopt;
  }
}

std::optional<NativePath> FollowShortcut(const NativePath& shortcut) {
  const auto file = NSBigFilePackage::CStdioMedia::OpenForReading(shortcut);
  const auto content = NSTolbrook::CShortcut::Parse(*file);
  if (!content.RelativePath().empty()) {
    const NativePath folder = NSTolbrook::CanonicalPath(shortcut.parent_path());
    if (auto target = FollowAsFarAsSeen(folder, content.RelativePath())) return target;
  }
  if (content.LocalBasePath().empty()) return std::nullopt;
  const NativePath base = NSTolbrook::NativeFromText(content.LocalBasePath());
  if (!base.is_absolute()) return std::nullopt;
  const auto below = NSTolbrook::TextFromNative(base.relative_path());
  return below ? FollowAsFarAsSeen(base.root_path(), *below) : std::nullopt;
}

}  // namespace

NativePath ShortcutTarget(const NativePath& shortcut) {
  const NSMordel::CContext context = {
      {NSMordel::kTargetObjectType, "file"},
      {NSMordel::kTargetObjectId, NSTolbrook::DisplayText(shortcut)}};
  try {
    if (auto target = FollowShortcut(shortcut)) return *target;
  } catch (const NSMordel::XFormatViolation& e) {
    throw NSMordel::XResolve(std::string("the file is no shortcut: ") + e.what(), context);
  }
  throw NSMordel::XResolve("the target of the shortcut does not exist", context);
}

}  // namespace NSTambraPacking
