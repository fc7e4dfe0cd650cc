#pragma once

#include "app/PackJobState.h"
#include "app/TextResources.h"
#include "cli/Console.h"

namespace NSTambraCli {

/// What a run found out, in the sections and words of the packing log, each failed file with its
/// reason: on standard output for a check, or as JSON events ("finding").
void PrintFindings(const CConsole& console, const NSTambraPacking::CTextResources& texts,
                   const NSTambraPacking::CPackJobState& state);

/// Why files failed or were left out: on standard error, or as JSON events ("reason").
void NoteReasons(const CConsole& console, const NSTambraPacking::CTextResources& texts,
                 const NSTambraPacking::CPackJobState& state);

/// What is worth knowing about files that were accepted: on standard error, or as JSON events
/// ("remark").
void NoteRemarks(const CConsole& console, const NSTambraPacking::CTextResources& texts,
                 const NSTambraPacking::CPackJobState& state);

}  // namespace NSTambraCli
