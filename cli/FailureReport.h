#pragma once

#include <exception>

#include "app/TextResources.h"
#include "cli/Console.h"

namespace NSTambraCli {

/// The failure's own message and the object that it names: on standard error, or as a JSON event.
void ReportDetail(const CConsole& console, const NSTambraPacking::CTextResources& texts,
                  const std::exception_ptr& failure);

}  // namespace NSTambraCli
