#pragma once

#include <string>

namespace NSTambraCli {

/// The program's version first, alone on its line; then what it can read and what it is built of.
std::string VersionReport();

}  // namespace NSTambraCli
