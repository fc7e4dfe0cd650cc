#pragma once

#include <exception>
#include <string>

#include "app/TextResources.h"
#include "cli/Console.h"
#include "cli/ExitStatus.h"

namespace NSTambraCli {

/// The failure's own message and the object that it names, `subject` when it names none: a line on
/// standard error, or a JSON event. Nothing without a message; returns whether there was one.
bool ReportDetail(const CConsole& console, const NSTambraPacking::CTextResources& texts,
                  const std::exception_ptr& failure, const std::string& subject = {});

/// As ReportDetail, for a name that is taken already, with what helps; returns the exit status.
EExitStatus ReportTaken(const CConsole& console, const NSTambraPacking::CTextResources& texts,
                        const std::exception_ptr& failure);

}  // namespace NSTambraCli
