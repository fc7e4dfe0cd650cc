#pragma once

#include <string>
#include <utility>
#include <vector>

#include "app/TextResources.h"
#include "cli/Console.h"

namespace NSTambraCli {

/// Labels and the values behind them.
using CLabelledLines = std::vector<std::pair<NSTambraPacking::CStringNumber, std::u16string>>;

/// Prints the values in one column, the further lines of a value below its first.
void PrintLabelled(const CConsole& console, const NSTambraPacking::CTextResources& texts,
                   const CLabelledLines& lines);

}  // namespace NSTambraCli
