#pragma once

#include <span>
#include <string>
#include <utility>
#include <vector>

#include "cli/Program.h"

namespace NSTambraCli {

/// What can stand at the end of an unfinished command line.
struct CCompletion {
  enum class EFiles { kNone, kAny, kFolders, kPackages };
  EFiles fFiles = EFiles::kNone;  ///< what files can; the shell finds them
  /// Each with a description, which may be empty. Words that end with "/" or "=" go on.
  std::vector<std::pair<std::string, std::string>> fWords;
};

/// Completes the last of `words`, which may be empty; the others stand before it.
CCompletion Complete(const CProgram& program, std::span<const std::string> words);

/// What the shells' completion scripts call, in no help.
inline constexpr const char* kCompletionCommand = "complete";

/// tambra complete plain|bash WORD... (the program's name is none of the words). With "bash" the
/// words are as they were typed, quotes included. Prints "words", "files", "folders" or "packages",
/// then each word with a tab and its description on a line.
int PrintCompletion(const CConsole& console, const CProgram& program,
                    std::span<const std::string> arguments);

/// A word without the quotes and backslashes of a POSIX shell; an open quote counts as closed at
/// the end. Nothing is expanded but "~/" at the beginning.
std::string Unquoted(const std::string& typed);

}  // namespace NSTambraCli
