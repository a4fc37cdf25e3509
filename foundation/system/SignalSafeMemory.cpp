// SPDX-License-Identifier: MIT
// Blocks of a few sizes, in slabs whose free places are the bits of one word.
#include "foundation/system/SignalSafeMemory.h"

#include <bit>
#include <cerrno>
#include <cstdint>
#include <new>

#include <sys/mman.h>

namespace ZQFoundation::detail {

namespace {

// Sizes of blocks, their headers included, are powers of two. A block beyond the greatest is a mapping of its
// own.
constexpr int smallestBits = 6;
constexpr int greatestBits = 16;
constexpr std::size_t placesInSlab = 64;

/// Stands at its first place, which is never free. Slabs are made and never given back, so whoever looks at
/// one finds it.
struct Slab {
    std::uint64_t takenPlaces; ///< one bit each
    Slab* next;
    int bits; ///< of the size of its blocks
};

/// Stands in front of the bytes of each block.
struct alignas(16) Header {
    Slab* slab;        ///< null: a mapping of its own
    std::size_t place; ///< in the slab; else the size of the mapping
};

struct Slabs {
    Slab* first;
    Slab* likely;       ///< where a place was taken or given back last
    bool mayHavePlaces; ///< whether one was given back since all slabs were searched
};
constinit Slabs slabsOfSize[greatestBits + 1] = {};

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

/// Whether a bit is clear says all that matters about its place, so that it does not matter what has happened
/// between the look and the exchange. Null when all places are taken.
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

/// With its first free place taken.
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
                __atomic_store_n(&slabs.mayHavePlaces, true, __ATOMIC_RELAXED); // perhaps behind it as well
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
    if (bits <= greatestBits) {
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
