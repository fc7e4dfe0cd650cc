#pragma once

#include <string>

#include "app/Advice.h"
#include "cli/Command.h"

namespace NSTambraCli {

/// What a check of a folder is asked to do.
struct CCheckOptions {
  std::string fInput = {};
  unsigned fJobs = 0;           ///< 0 for all cores
  std::string fOverrides = {};  ///< a file of advice rules; may be empty
  /// The lightest severity of advice that fails the check.
  NSTambraPacking::ESeverity fFailOn = NSTambraPacking::ESeverity::kError;
};

/// Does what a run would do up to the verification of the folder, prints what that finds and the
/// advice, and returns the exit status.
int RunCheck(const CGlobalOptions& global, const CCheckOptions& options);

}  // namespace NSTambraCli
