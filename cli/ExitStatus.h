#pragma once

namespace NSTambraCli {

/// What the program tells the shell.
enum EExitStatus : int {
  kExitDone = 0,       ///< packed, the check passed, or the command did its work
  kExitProblems = 1,   ///< finished with problems, or a difference was found
  kExitUsage = 2,      ///< the command line is wrong
  kExitAborted = 3,    ///< ended by the run's own tests or a refused question, or the check failed
  kExitFailed = 4,     ///< ended by an error, an unusable folder, or a package that is not sound
  kExitStopped = 130,  ///< stopped by the user
};

}  // namespace NSTambraCli
