#include "app/NameLists.h"

#include <set>
#include <string_view>

namespace NSTambraPacking {

std::vector<std::u16string> DistinctNames(const std::vector<std::u16string>& names) {
  std::vector<std::u16string> distinct;
  std::set<std::u16string_view> taken;
  for (const std::u16string& name : names) {
    if (taken.insert(name).second) distinct.push_back(name);
  }
  return distinct;
}

std::u16string JoinNames(const CTextResources& texts, const std::vector<std::u16string>& names) {
  std::u16string joined;
  for (const std::u16string& name : names) {
    if (!joined.empty()) joined += texts.Text(kListSeparator);
    joined += name;
  }
  return joined;
}

}  // namespace NSTambraPacking
