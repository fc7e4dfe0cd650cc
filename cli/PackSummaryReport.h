#pragma once

#include "app/PackJobState.h"
#include "app/TextResources.h"
#include "cli/Console.h"

namespace NSTambraCli {

/// What a run made, on standard error or as a JSON event ("summary"): files and bytes by type, the
/// time and speed, the package's size, and what was left out and why. `seconds` is what the run
/// took.
void NoteSummary(const CConsole& console, const NSTambraPacking::CTextResources& texts,
                 const NSTambraPacking::CPackJobState& state, double seconds);

}  // namespace NSTambraCli
