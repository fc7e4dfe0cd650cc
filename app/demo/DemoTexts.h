#pragma once

#include "app/demo/DemoFile.h"

namespace NSTambraPacking {

/// The information files, each in another of the encodings that publishers use.
DemoFiles MakeDemoTexts();

}  // namespace NSTambraPacking
