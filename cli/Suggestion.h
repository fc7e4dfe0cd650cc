#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace NSTambraCli {

/// The name that was most likely meant by `given`: the one that the fewest slips of the keyboard
/// (a letter too many, missing, wrong, or two in the wrong order) make of it, when these are at
/// most a third of its letters, or one; else an empty text.
std::string ClosestName(std::string_view given, const std::vector<std::string>& names);

}  // namespace NSTambraCli
