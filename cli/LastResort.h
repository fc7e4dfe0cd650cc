#pragma once

#include "cli/ExitStatus.h"

namespace NSTambraCli {

/// The message of the alert "out of memory", for when there is none to read the texts with.
inline constexpr const char* kOutOfMemoryText =
    "The Operation could not be completed because not enough memory is available.";
/// That of the alert for what is no exception of any known kind.
inline constexpr const char* kUnknownErrorText = "An unknown error occured!";

/// Shows the exception that is being handled on standard error when everything else failed, and
/// says how the program ends. Takes no memory. Call it inside a catch block.
EExitStatus ShowLastFailure() noexcept;

}  // namespace NSTambraCli
