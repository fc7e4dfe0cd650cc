#include "tests/support/AllocationWatch.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TAMBRA_SANITIZED
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define TAMBRA_SANITIZED
#endif
#endif

namespace {

thread_local std::size_t gLargestAllocation = 0;

void Note(std::size_t size) noexcept { gLargestAllocation = std::max(gLargestAllocation, size); }

}  // namespace

#ifdef TAMBRA_SANITIZED

// A sanitizer brings operators of its own, and a call to be told what they hand out.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*allocated)(const volatile void*,
                                                                           std::size_t),
                                                         void (*freed)(const volatile void*));

namespace {

const int gInstalled = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void*, std::size_t size) { Note(size); }, [](const volatile void*) {});

}  // namespace

#else

void* operator new(std::size_t size) {
  Note(size);
  if (void* memory = std::malloc(std::max<std::size_t>(size, 1))) return memory;
  throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

#endif

namespace NSTest {

std::size_t LargestAllocation() noexcept { return gLargestAllocation; }
void ResetLargestAllocation() noexcept { gLargestAllocation = 0; }

}  // namespace NSTest
