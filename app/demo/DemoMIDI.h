#pragma once

#include "app/demo/DemoFile.h"

namespace NSTambraPacking {

/// Two Standard MIDI Files: a drum groove in one track (format 0), and a bass with chords in tracks
/// of their own (format 1).
DemoFiles MakeDemoMIDIFiles();

}  // namespace NSTambraPacking
