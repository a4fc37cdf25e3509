// SPDX-License-Identifier: MIT
// Replaces the allocator of the test program with one that counts.
#include "tests/kit/AllocationCount.h"

#include <cstdint>
#include <cstdlib>
#include <new>

#include "tests/kit/Sanitizers.h"

// A sanitizer has an allocator of its own and reports each allocation; elsewhere the allocator is replaced.
// The C library's functions are replaced rather than `new`, which calls them: so memory that is taken with
// `malloc` counts as well. Where the C library offers no second name for its own functions, only `new` is
// counted.

namespace {

// Not `thread_local` with an initializer that runs: this is used before anything else in the program.
constinit thread_local std::size_t allocations = 0;
constinit thread_local std::size_t greatestCount = SIZE_MAX;

/// Counts one; false when it is to fail.
[[maybe_unused]] bool mayAllocate() { return ++allocations <= greatestCount; }

} // namespace

#if ZQ_TEST_ADDRESS_SANITIZER || ZQ_TEST_THREAD_SANITIZER

extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*onMalloc)(const volatile void*, std::size_t),
                                                         void (*onFree)(const volatile void*));

namespace {

void countOne(const volatile void*, std::size_t) { ++allocations; }

void ignoreOne(const volatile void*) {}

const bool hooksAreInstalled = __sanitizer_install_malloc_and_free_hooks(countOne, ignoreOne) != 0;

} // namespace

#elif defined(__GLIBC__)

extern "C" {

void* __libc_malloc(std::size_t size) noexcept;
void* __libc_calloc(std::size_t count, std::size_t size) noexcept;
void* __libc_realloc(void* block, std::size_t size) noexcept;
void* __libc_memalign(std::size_t alignment, std::size_t size) noexcept;

void* malloc(std::size_t size) noexcept { return mayAllocate() ? __libc_malloc(size) : nullptr; }

void* calloc(std::size_t count, std::size_t size) noexcept {
    return mayAllocate() ? __libc_calloc(count, size) : nullptr;
}

void* realloc(void* block, std::size_t size) noexcept {
    return mayAllocate() ? __libc_realloc(block, size) : nullptr;
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return mayAllocate() ? __libc_memalign(alignment, size) : nullptr;
}

} // extern "C"

#else

void* operator new(std::size_t size) {
    void* const block = mayAllocate() ? std::malloc(size == 0 ? 1 : size) : nullptr;
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void operator delete(void* block) noexcept { std::free(block); }

void operator delete(void* block, std::size_t) noexcept { std::free(block); }

#endif

namespace ZQFoundation::kit {

std::size_t AllocationCount::now() {
#if ZQ_TEST_ADDRESS_SANITIZER || ZQ_TEST_THREAD_SANITIZER
    if (!hooksAreInstalled) {
        std::abort();
    }
#endif
    return allocations;
}

AllocationLimit::AllocationLimit(std::size_t limit) { greatestCount = allocations + limit; }

AllocationLimit::~AllocationLimit() { greatestCount = SIZE_MAX; }

bool AllocationLimit::wasReached() const { return allocations > greatestCount; }

} // namespace ZQFoundation::kit
