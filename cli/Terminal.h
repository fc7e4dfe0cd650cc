#pragma once

#include <functional>
#include <optional>
#include <string>

namespace NSTambraCli {

enum class EStandardStream { kInput, kOutput, kError };

/// True when the stream is a terminal rather than a file or a pipe.
bool IsTerminal(EStandardStream stream);

/// Columns of the terminal behind standard error; 80 when it does not tell.
int TerminalWidth();

/// A line from standard input, without its end; nothing at the end of the input, or as soon as
/// `stopRequested` gives true. Reads no further than the line.
std::optional<std::string> ReadLine(const std::function<bool()>& stopRequested);

/// Makes the console take and give UTF-8 where that has to be asked for, and lets writing to a
/// closed pipe fail instead of killing the program.
void PrepareConsole();

}  // namespace NSTambraCli
