#pragma once

namespace NSTambraCli {

enum class EStandardStream { kInput, kOutput, kError };

/// True when the stream is a terminal rather than a file or a pipe.
bool IsTerminal(EStandardStream stream);

/// Columns of the terminal behind standard error; 80 when it does not tell.
int TerminalWidth();

/// Makes the console take and give UTF-8 where that has to be asked for, and lets writing to a
/// closed pipe fail instead of killing the program.
void PrepareConsole();

}  // namespace NSTambraCli
