#include "cli/Suggestion.h"

#include <algorithm>
#include <utility>

namespace NSTambraCli {

namespace {

/// Optimal string alignment distance (Damerau 1964, Wagner and Fischer 1974), by rows.
std::size_t Distance(std::string_view from, std::string_view to) {
  using Row = std::vector<std::size_t>;
  Row beforeLast(to.size() + 1);
  Row last(to.size() + 1);
  for (std::size_t column = 0; column <= to.size(); ++column) last[column] = column;
  for (std::size_t row = 1; row <= from.size(); ++row) {
    Row current(to.size() + 1, row);
    for (std::size_t column = 1; column <= to.size(); ++column) {
      const std::size_t wrong = from[row - 1] == to[column - 1] ? 0 : 1;
      current[column] =
          std::min({last[column] + 1, current[column - 1] + 1, last[column - 1] + wrong});
      const bool isSwapped = row > 1 && column > 1 && from[row - 1] == to[column - 2] &&
                             from[row - 2] == to[column - 1];
      if (isSwapped) current[column] = std::min(current[column], beforeLast[column - 2] + 1);
    }
    beforeLast = std::exchange(last, std::move(current));
  }
  return last.back();
}

}  // namespace

std::string ClosestName(std::string_view given, const std::vector<std::string>& names) {
  std::size_t least = std::max<std::size_t>(1, given.size() / 3) + 1;
  std::string closest;
  for (const std::string& name : names) {
    const std::size_t distance = Distance(given, name);
    if (distance >= least) continue;
    least = distance;
    closest = name;
  }
  return closest;
}

}  // namespace NSTambraCli
