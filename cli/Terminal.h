#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace NSTambraCli {

enum class EStandardStream { kInput, kOutput, kError };

/// What the user typed behind the program's name, in UTF-8; the parameters are those of main.
std::vector<std::string> ProgramArguments(int count, char** arguments);

/// True when the stream is a terminal rather than a file or a pipe.
bool IsTerminal(EStandardStream stream);

/// True when it is a terminal that takes escape sequences, as far as the system knows.
bool TakesEscapes(EStandardStream stream);

/// Columns of the terminal behind standard error; 80 when it does not tell.
int TerminalWidth();

/// A line from standard input, without its end; nothing at the end of the input, or as soon as
/// `stopRequested` gives true. Reads no further than the line.
std::optional<std::string> ReadLine(const std::function<bool()>& stopRequested);

/// Writes UTF-8 to standard output or standard error, whatever is behind it; false, with the reason
/// in errno, when it takes no more. What goes to a file or a pipe may wait in the C library's
/// buffer.
bool WriteText(EStandardStream stream, std::string_view text);
/// Writes what of standard output waits there; as WriteText.
bool FlushText();

/// Lets the bytes of what is written stand as they are, and writing to a closed pipe fail instead
/// of killing the program.
void PrepareConsole();

}  // namespace NSTambraCli
