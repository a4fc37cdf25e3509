// SPDX-License-Identifier: MIT
// Allocates blocks of a few sizes, in slabs whose free places are the bits of one word.
#include "foundation/system/SignalSafeMemory.h"

#include <bit>
#include <cerrno>
#include <cstdint>
#include <new>

#include <sys/mman.h>

namespace ZQFoundation::detail {

namespace {

// Block sizes, including headers, are powers of two. A larger block than the largest size is a separate
// mapping.
constexpr int smallestBits = 6;
constexpr int maxBits = 16;
constexpr std::size_t placesInSlab = 64;

/// Occupies its own first place, which is never free. Slabs are never freed, so a pointer to one is always
/// valid.
struct Slab {
    std::uint64_t takenPlaces; ///< one bit each
    Slab* next;
    int bits; ///< of the size of its blocks
};

/// Precedes the bytes of each block.
struct alignas(16) Header {
    Slab* slab;        ///< null: a separate mapping
    std::size_t place; ///< in the slab; else the size of the mapping
};

struct Slabs {
    Slab* first;
    Slab* likely;       ///< where a place was last taken or freed
    bool mayHavePlaces; ///< whether one was freed since all slabs were searched
};
constinit Slabs slabsOfSize[maxBits + 1] = {};

void* mapPages(std::size_t bytes) {
    const int callersError = errno;
    void* const pages = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    errno = callersError;
    if (pages == MAP_FAILED) {
        throw std::bad_alloc();
    }
    return pages;
}

Header* headerAt(Slab& slab, std::size_t place) noexcept {
    auto* const header = reinterpret_cast<Header*>(reinterpret_cast<char*>(&slab) + (place << slab.bits));
    *header = {&slab, place};
    return header;
}

/// A clear bit is all that matters about its place, so that it is irrelevant what happened between the load
/// and the exchange. Null when all places are taken.
Header* takePlace(Slab& slab) noexcept {
    std::uint64_t taken = __atomic_load_n(&slab.takenPlaces, __ATOMIC_RELAXED);
    while (taken != UINT64_MAX) {
        const auto place = static_cast<std::size_t>(std::countr_one(taken));
        if (__atomic_compare_exchange_n(&slab.takenPlaces, &taken, taken | std::uint64_t{1} << place, false,
                                        __ATOMIC_ACQUIRE, __ATOMIC_RELAXED)) {
            return headerAt(slab, place);
        }
    }
    return nullptr;
}

/// Makes a slab and takes its first free place.
Header* takePlaceInNewSlab(Slabs& slabs, int bits) {
    auto* const slab = static_cast<Slab*>(mapPages(placesInSlab << bits));
    slab->takenPlaces = 3;
    slab->bits = bits;
    slab->next = __atomic_load_n(&slabs.first, __ATOMIC_RELAXED);
    while (!__atomic_compare_exchange_n(&slabs.first, &slab->next, slab, false, __ATOMIC_RELEASE,
                                        __ATOMIC_RELAXED)) {
    }
    __atomic_store_n(&slabs.likely, slab, __ATOMIC_RELEASE);
    return headerAt(*slab, 1);
}

Header* takePlaceOfSize(int bits) {
    Slabs& slabs = slabsOfSize[bits];
    Slab* slab = __atomic_load_n(&slabs.likely, __ATOMIC_ACQUIRE);
    if (slab == nullptr) {
        return takePlaceInNewSlab(slabs, bits);
    }
    if (Header* const header = takePlace(*slab)) [[likely]] {
        return header;
    }
    if (__atomic_exchange_n(&slabs.mayHavePlaces, false, __ATOMIC_RELAXED)) {
        for (slab = __atomic_load_n(&slabs.first, __ATOMIC_ACQUIRE); slab != nullptr; slab = slab->next) {
            if (Header* const header = takePlace(*slab)) {
                __atomic_store_n(&slabs.mayHavePlaces, true, __ATOMIC_RELAXED); // perhaps in later slabs
                __atomic_store_n(&slabs.likely, slab, __ATOMIC_RELEASE);
                return header;
            }
        }
    }
    return takePlaceInNewSlab(slabs, bits);
}

} // namespace

void* takeSignalSafeMemory(std::size_t bytes) {
    if (bytes > SIZE_MAX / 2) {
        throw std::bad_alloc();
    }
    const std::size_t wanted = bytes + sizeof(Header);
    const int bits = wanted <= std::size_t{1} << smallestBits ? smallestBits
                                                              : static_cast<int>(std::bit_width(wanted - 1));
    if (bits <= maxBits) {
        return takePlaceOfSize(bits) + 1;
    }
    auto* const header = static_cast<Header*>(mapPages(wanted));
    *header = {nullptr, wanted};
    return header + 1;
}

void giveBackSignalSafeMemory(void* block) noexcept {
    if (block == nullptr) {
        return;
    }
    const Header header = *(static_cast<Header*>(block) - 1);
    if (header.slab == nullptr) {
        const int callersError = errno;
        ::munmap(static_cast<Header*>(block) - 1, header.place);
        errno = callersError;
        return;
    }
    __atomic_and_fetch(&header.slab->takenPlaces, ~(std::uint64_t{1} << header.place), __ATOMIC_RELEASE);
    Slabs& slabs = slabsOfSize[header.slab->bits];
    __atomic_store_n(&slabs.likely, header.slab, __ATOMIC_RELEASE);
    __atomic_store_n(&slabs.mayHavePlaces, true, __ATOMIC_RELAXED);
}

} // namespace ZQFoundation::detail
