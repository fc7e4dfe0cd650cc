#pragma once

#include "app/demo/DemoFile.h"

namespace NSTambraPacking {

/// A SoundFont 2 bank with two presets, each of one looped sample.
CDemoFile MakeDemoSoundFont();

}  // namespace NSTambraPacking
