#include "tests/support/AllocationWatch.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t gLargestAllocation = 0;

}  // namespace

void* operator new(std::size_t size) {
  gLargestAllocation = std::max(gLargestAllocation, size);
  if (void* memory = std::malloc(std::max<std::size_t>(size, 1))) return memory;
  throw std::bad_alloc();
}

// A sanitizer's own would not match the delete below.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  gLargestAllocation = std::max(gLargestAllocation, size);
  return std::malloc(std::max<std::size_t>(size, 1));
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace NSTest {

std::size_t LargestAllocation() noexcept { return gLargestAllocation; }
void ResetLargestAllocation() noexcept { gLargestAllocation = 0; }

}  // namespace NSTest
