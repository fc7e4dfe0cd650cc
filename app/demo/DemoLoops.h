#pragma once

#include "app/demo/DemoFile.h"

namespace NSTambraPacking {

/// Stand-ins for sliced-loop files, one of each extension: chunk files that are built like them (a
/// header, and groups with the samples of a slice), but that no host plays.
DemoFiles MakeDemoLoops();

}  // namespace NSTambraPacking
