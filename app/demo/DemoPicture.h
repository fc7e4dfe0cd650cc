#pragma once

#include "app/demo/DemoFile.h"

namespace NSTambraPacking {

/// The splash picture (64 by 64 pixels) and a larger cover.
DemoFiles MakeDemoPictures();

}  // namespace NSTambraPacking
