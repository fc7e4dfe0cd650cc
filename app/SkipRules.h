#pragma once

#include "app/PackJobState.h"

namespace NSTambraPacking {

/// The three passes over the verified entries, in this order: files that use prohibited devices
/// (listed, left out), files that refer to something that is left out (left out with it when the
/// options say so), samples that no remaining file refers to (listed, left out). Then the lists of
/// failed, unresolved and external entries are made of those that remain.
void ApplySkipRules(CPackJobState& state);

}  // namespace NSTambraPacking
