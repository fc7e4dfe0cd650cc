#pragma once

#include <string>
#include <vector>

namespace NSTambraCli {

/// Runs the program with its arguments (UTF-8, without the program's own name). Returns the exit
/// status and never throws.
int RunTambra(const std::vector<std::string>& arguments);

}  // namespace NSTambraCli
