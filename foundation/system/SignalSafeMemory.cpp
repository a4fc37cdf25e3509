// SPDX-License-Identifier: MIT
// Allocates blocks of a few sizes, in slabs whose free places are the bits of one word.
// The log needs a few buffers for each line at most, and returns them at once. What matters is speed, and
// that a handler may run between any two instructions here; fragmentation does not, because there are few
// sizes.
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
// 64 bytes hold the smallest block with its header. Above 64 KiB a slab would be larger than 4 MiB.
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

/// The system call works in a signal handler, unlike the allocator, and the pages it returns are zero.
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
    // Slabs come zeroed, with no headers in them: each is written when its place is taken.
    *header = {&slab, place};
    return header;
}

/// A clear bit is all that matters about its place, so that it is irrelevant what happened between the load
/// and the exchange. Null when all places are taken.
Header* takePlace(Slab& slab) noexcept {
    // Relaxed is enough to look; the exchange acquires what the thread that freed the place did last.
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
    // A slab is only ever pushed in front, never removed, so the list needs no guard against a head that was
    // removed and added again in between.
    while (!__atomic_compare_exchange_n(&slabs.first, &slab->next, slab, false, __ATOMIC_RELEASE,
                                        __ATOMIC_RELAXED)) {
    }
    __atomic_store_n(&slabs.likely, slab, __ATOMIC_RELEASE);
    return headerAt(*slab, 1);
}

/// The likely slab first: a place in it was taken or freed last, usually by this thread. All slabs are
/// searched only if a place was freed since they were found full; otherwise a full search for each block
/// would make a process with many blocks slower and slower.
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
    // So that neither the header nor rounding up can overflow.
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
    // Copied before the place is freed: then the header belongs to the next one that takes it.
    const Header header = *(static_cast<Header*>(block) - 1);
    if (header.slab == nullptr) {
        const int callersError = errno;
        ::munmap(static_cast<Header*>(block) - 1, header.place);
        errno = callersError;
        return;
    }
    // Release: what was written to the block happens before the next owner takes the place.
    __atomic_and_fetch(&header.slab->takenPlaces, ~(std::uint64_t{1} << header.place), __ATOMIC_RELEASE);
    Slabs& slabs = slabsOfSize[header.slab->bits];
    __atomic_store_n(&slabs.likely, header.slab, __ATOMIC_RELEASE);
    __atomic_store_n(&slabs.mayHavePlaces, true, __ATOMIC_RELAXED);
}

} // namespace ZQFoundation::detail
