#pragma once

#include <string>

#include "cli/Program.h"

namespace NSTambraCli {

/// The manual page of the program in the language of man(7). `date` is that of the version, as it
/// stands in the page's foot.
std::string ManualPage(const CProgram& program, const std::string& date);

}  // namespace NSTambraCli
