#include "package/EntryPath.h"

#include <algorithm>

namespace NSTambraPacking {

CPathComponents SplitEntryPath(std::u16string_view path) {
  CPathComponents components;
  for (std::size_t start = 0; start < path.size();) {
    const std::size_t end = std::min(path.find(u'/', start), path.size());
    if (end > start) components.emplace_back(path.substr(start, end - start));
    start = end + 1;
  }
  return components;
}

std::u16string JoinComponents(const CPathComponents& components) {
  std::u16string path;
  for (const std::u16string& component : components) {
    if (!path.empty()) path += u'/';
    path += component;
  }
  return path;
}

}  // namespace NSTambraPacking
