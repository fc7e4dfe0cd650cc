#pragma once

#include "app/demo/DemoFile.h"

namespace NSTambraPacking {

/// The library's sampled sounds: drum hits and tones as WAVE and AIFF files of all kinds.
DemoFiles MakeDemoSounds();

}  // namespace NSTambraPacking
