#pragma once

#include <vector>

#include "app/Advice.h"
#include "cli/Console.h"

namespace NSTambraCli {

/// The advice of a check, sorted as it is there: a heading for each severity and kind with the
/// files and what was found in them, or JSON events ("advice").
void PrintAdvice(const CConsole& console, const NSTambraPacking::CTextResources& texts,
                 const std::vector<NSTambraPacking::CAdvice>& advice);

/// The last line of a check that found nothing but advice: how many pieces of each severity.
void PrintAdviceCounts(const CConsole& console, const NSTambraPacking::CTextResources& texts,
                       std::size_t files, const std::vector<NSTambraPacking::CAdvice>& advice);

/// All kinds with their severities and titles.
void PrintAdviceKinds(const CConsole& console, const NSTambraPacking::CTextResources& texts);

/// What a kind of advice is, why it matters and how to mend it.
void ExplainAdvice(const CConsole& console, const NSTambraPacking::CTextResources& texts,
                   const NSTambraPacking::CAdviceKind& kind);

}  // namespace NSTambraCli
