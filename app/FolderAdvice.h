#pragma once

#include "app/AdviceList.h"
#include "app/PackJobState.h"

namespace NSTambraPacking {

/// Files of a type that is not packed, whether that failed the check or was settled by the rules.
void AdviseOnStrayFiles(const CPackJobState& state, CAdviceList& advice);

/// References that are not found where they say, but by the end of their absolute form.
void AdviseOnReferencesFoundBySearch(const CPackJobState& state, CAdviceList& advice);

/// Files and folders whose paths differ only in case or normalisation, each spelling behind the
/// first. Files that lie in folders of two spellings part on some systems and meet on others.
void AdviseOnCase(const CPackJobState& state, CAdviceList& advice);

/// Files and folders with names that extract refuses to write.
void AdviseOnNames(const CPackJobState& state, CAdviceList& advice);

/// A package that will take more than nine tenths of what its offsets can count. `sampleBytes` is
/// what its samples will take, about.
void AdviseOnSize(const CPackJobState& state, std::uint64_t sampleBytes, CAdviceList& advice);

}  // namespace NSTambraPacking
