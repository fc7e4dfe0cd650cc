#pragma once

namespace NSTambraGui {

/// The desktop program: shows the main window, or the package that the arguments name, until the
/// last window is closed. Returns the program's exit status.
int RunTambraPacker(int argc, char** argv);

}  // namespace NSTambraGui
