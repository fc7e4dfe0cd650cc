#include <filesystem>
#include <set>

#include "Parts/TolbrookPackage/Core/PortablePath.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "fuzz/FuzzInput.h"
#include "package/EntryPath.h"

using namespace NSTambraPacking;

/// The lines are paths of entries. One that is taken for plain leads straight down, and several
/// only when no system takes two for the same.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::u16string text = NSTolbrook::TextFromUtf8(NSFuzz::CFuzzInput(data, size).Text());
  std::vector<std::u16string> paths;
  for (std::size_t begin = 0; begin < text.size() && paths.size() < 16;) {
    const std::size_t end = std::min(text.find(u'\n', begin), text.size());
    paths.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  bool allPlain = true;
  std::set<std::u16string> keys;
  for (const auto& path : paths) {
    const std::u16string joined = JoinComponents(SplitEntryPath(path));
    NSFuzz::Require(JoinComponents(SplitEntryPath(joined)) == joined);
    keys.insert(NSTolbrook::ComparisonKey(path));
    if (!NSTolbrook::FaultOfPortablePath(path).empty()) {
      allPlain = false;
      continue;
    }
    const std::filesystem::path native(path);
    NSFuzz::Require(joined == path && native.is_relative() && native.lexically_normal() == native);
    NSFuzz::Require(path != u"." && path != u".." && !path.starts_with(u"../"));
    NSFuzz::Require(path.find_first_of(u":\\*?\"<>|\x7F\u202E") == path.npos);
  }
  const bool taken = NSFuzz::Read([&] {
                       NSTolbrook::CheckPortablePaths(paths);
                       return true;
                     }).has_value();
  if (taken) NSFuzz::Require(allPlain && keys.size() == paths.size());
  return 0;
}
