#pragma once

#include "app/demo/DemoFile.h"

namespace NSTambraPacking {

/// Patches of every device (".dp11" in both its forms), a patch of a plug-in device, and a groove
/// patch. Together with the songs they refer to every sound, loop and bank of the library.
DemoFiles MakeDemoPatches();

/// Songs of every format, and an unfinished one with a reference that leads nowhere, in the folder
/// that is left out.
DemoFiles MakeDemoSongs();

/// Files that the packer takes as they are.
DemoFiles MakeDemoRawFiles();

}  // namespace NSTambraPacking
