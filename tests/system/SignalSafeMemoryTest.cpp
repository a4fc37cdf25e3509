// SPDX-License-Identifier: MIT
// Memory that signal handlers can allocate.
#include "foundation/system/SignalSafeMemory.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <deque>
#include <new>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "tests/kit/Interruptions.h"
#include "tests/kit/Threads.h"

using namespace ZQFoundation;
using namespace ZQFoundation::detail;

namespace {

/// A block filled with one byte, which nobody else may have overwritten.
class Block {
public:
    Block(std::size_t size, unsigned char filling)
        : bytes_(static_cast<unsigned char*>(takeSignalSafeMemory(size))), size_(size), filling_(filling) {
        std::memset(bytes_, filling_, size_);
    }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;
    ~Block() { giveBackSignalSafeMemory(bytes_); }

    const void* address() const { return bytes_; }
    bool isWhole() const {
        for (std::size_t i = 0; i < size_; ++i) {
            if (bytes_[i] != filling_) {
                return false;
            }
        }
        return reinterpret_cast<std::uintptr_t>(bytes_) % 16 == 0;
    }

private:
    unsigned char* bytes_;
    std::size_t size_;
    unsigned char filling_;
};

/// Every size around those at which blocks get greater.
std::vector<std::size_t> sizes() {
    std::vector<std::size_t> sizes{0, 1};
    for (std::size_t power = 16; power <= std::size_t{1} << 20; power *= 2) {
        for (std::size_t size = power - 17; size <= power + 1; ++size) {
            sizes.push_back(size);
        }
    }
    return sizes;
}

TEST(SignalSafeMemory, givesEachBlockItsOwnBytes) {
    for (const std::size_t size : sizes()) {
        std::deque<Block> blocks;
        for (int i = 0; i < (size < 5'000 ? 200 : 3); ++i) {
            blocks.emplace_back(size, static_cast<unsigned char>(i));
        }
        for (const Block& block : blocks) {
            ASSERT_TRUE(block.isWhole()) << size;
        }
    }
}

TEST(SignalSafeMemory, takesAgainWhatWasGivenBack) {
    std::set<const void*> first;
    std::set<const void*> all;
    for (int round = 0; round < 20; ++round) { // oldest first, youngest first, every other one
        std::deque<Block> blocks;
        for (int i = 0; i < 1'000; ++i) {
            blocks.emplace_back(100, static_cast<unsigned char>(i));
            (round == 0 ? first : all).insert(blocks.back().address());
            if (round % 3 == 1 && i % 2 == 1) {
                blocks.pop_front();
            }
        }
        while (round % 2 == 0 && !blocks.empty()) {
            blocks.pop_back();
        }
    }
    all.insert(first.begin(), first.end());
    EXPECT_EQ(first.size(), 1'000U);
    EXPECT_LE(all.size(), 1'100U);
}

TEST(SignalSafeMemory, doesNotGrowUnderAQueue) {
    std::set<const void*> addresses;
    std::deque<Block> queue;
    for (int i = 0; i < 100'000; ++i) {
        queue.emplace_back(200, static_cast<unsigned char>(i));
        addresses.insert(queue.back().address());
        if (queue.size() > 500) {
            queue.pop_front();
        }
    }
    EXPECT_LE(addresses.size(), 600U);
}

TEST(SignalSafeMemory, refusesWhatNoMemoryHasRoomFor) {
    errno = EDOM;
    EXPECT_THROW(static_cast<void>(takeSignalSafeMemory(SIZE_MAX)), std::bad_alloc);
    EXPECT_THROW(static_cast<void>(takeSignalSafeMemory(SIZE_MAX / 2)), std::bad_alloc);
    giveBackSignalSafeMemory(nullptr);
    giveBackSignalSafeMemory(takeSignalSafeMemory(1'000'000));
    EXPECT_EQ(errno, EDOM);
}

/// Blocks of all sizes, kept for a while, by a thread; false when another one's bytes were found in them.
bool takeAndGiveBack(unsigned seed) {
    bool isRight = true;
    std::deque<Block> kept;
    for (unsigned i = 0; i < 20'000; ++i) {
        seed = seed * 1103515245 + 12345;
        kept.emplace_back((seed >> 16) % (i % 100 == 0 ? 100'000 : 600),
                          static_cast<unsigned char>(seed >> 8));
        if (kept.size() > 40) {
            isRight = isRight && kept.front().isWhole();
            kept.pop_front();
        }
    }
    return isRight;
}

TEST(SignalSafeMemoryConcurrency, keepsBlocksOfThreadsApart) {
    std::atomic<int> right = 0;
    kit::inThreads(4, [&right](std::size_t number) {
        right += takeAndGiveBack(static_cast<unsigned>(number) + 1) ? 1 : 0;
    });
    EXPECT_EQ(right, 4);
}

constinit int rightInHandler = 0;

void takeInHandler() {
    const Block first(100, 1);
    const Block second(100, 2);
    rightInHandler += first.isWhole() && second.isWhole() ? 1 : 0;
}

TEST(SignalSafeMemoryConcurrency, servesAHandlerThatInterruptsIt) {
    constexpr int interruptions = 20'000;
    const kit::Interruptions handler(takeInHandler, interruptions);
    bool isRight = true;
    while (!handler.areOver()) {
        const Block block(100, 3);
        isRight = isRight && block.isWhole();
    }
    EXPECT_TRUE(isRight);
    EXPECT_EQ(rightInHandler, interruptions);
}

} // namespace
