#pragma once

#include <functional>
#include <vector>

#include "app/PackageComparison.h"

namespace NSTambraPacking {

/// How the second entry differs from the first, by what their type makes of the bytes; empty when
/// they are the same. Throws XRead and what `checkStop` throws.
std::vector<CDifference> CompareEntries(const CPackageEntry& before, const CPackageEntry& after,
                                        const std::function<void()>& checkStop);

/// The same of two DWOP streams alone, which are known to differ.
std::vector<CDifference> CompareSamples(const NSBigFilePackage::SharedMedia& before,
                                        const NSBigFilePackage::SharedMedia& after,
                                        const std::function<void()>& checkStop);

/// Whether the entry is a patch or song with references; false when it cannot be read as one.
/// Throws XRead.
bool HoldsReferences(const CPackageEntry& entry);

/// Notes a difference of two numbers, when there is one.
void CompareNumbers(EDifference kind, std::int64_t before, std::int64_t after,
                    std::vector<CDifference>& differences);

/// True when both hold the same bytes.
bool HaveSameBytes(const NSBigFilePackage::IMedia& left, const NSBigFilePackage::IMedia& right,
                   const std::function<void()>& checkStop);

}  // namespace NSTambraPacking
