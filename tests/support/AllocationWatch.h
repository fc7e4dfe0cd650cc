#pragma once

#include <cstddef>

namespace NSTest {

/// The largest single piece of memory in bytes that this thread took with new since the last
/// reset. A program that uses it gets its own operator new, which counts.
std::size_t LargestAllocation() noexcept;
void ResetLargestAllocation() noexcept;

}  // namespace NSTest
