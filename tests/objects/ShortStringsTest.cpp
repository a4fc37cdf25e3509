// SPDX-License-Identifier: MIT
// Pieces of every length, with their memory shared or not, released in any order and by other threads.
#include "foundation/objects/ShortStrings.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/kit/AllocationCount.h"
#include "tests/kit/Texts.h"

using namespace ZQFoundation;
using detail::StringPieces;

namespace {

template <class Unit>
NSArray piecesOf(std::basic_string_view<Unit> text, const std::vector<std::size_t>& lengths,
                 std::size_t expected) {
    const kit::Exact<Unit> exact(text);
    StringPieces<Unit> pieces(exact.data(), exact.size(), expected);
    std::size_t start = 0;
    for (const std::size_t length : lengths) {
        pieces.add(start, start + length);
        start += length;
    }
    return pieces.array();
}

TEST(ShortStrings, haveTheirTextAtEveryLengthAndPlace) {
    kit::Numbers numbers(3);
    for (const std::u16string_view alphabet :
         {u"abc", u"abc\u20AC", u"\u20AC\xD800", u"aaaaaaaaaaaaa\u0080"}) {
        for (int round = 0; round < 500; ++round) {
            std::vector<std::size_t> lengths(1 + numbers.below(40));
            std::size_t total = 0;
            for (std::size_t& length : lengths) {
                length = numbers.below(round % 3 == 0 ? 100 : 12);
                total += length;
            }
            const std::u16string text = numbers.text(alphabet, total);
            std::vector<std::u16string> expected;
            std::size_t start = 0;
            for (const std::size_t length : lengths) {
                expected.push_back(text.substr(start, length));
                start += length;
            }
            const std::size_t guess = numbers.below(2 * lengths.size());
            ASSERT_EQ(kit::textsOf(piecesOf<char16_t>(text, lengths, guess)), expected);
            const std::string bytes(text.begin(), text.end());
            if (alphabet == u"abc") {
                ASSERT_EQ(kit::textsOf(piecesOf<char>(bytes, lengths, guess)), expected);
            }
        }
    }
}

TEST(ShortStrings, equalStringsMadeAlone) {
    const NSArray pieces = piecesOf<char16_t>(u"oneZ\u00FCrich", {3, 6}, 2);
    EXPECT_EQ(pieces[0], NSString("one"));
    EXPECT_EQ(pieces[0].hash(), NSString("one").hash());
    EXPECT_EQ(pieces[1], NSString(u"Z\u00FCrich"));
    EXPECT_EQ(pieces[1].hash(), NSString(u"Z\u00FCrich").hash());
}

TEST(ShortStrings, outliveTheirArrayAndTheirNeighbors) {
    for (std::size_t kept = 0; kept < 100; ++kept) {
        NSObject piece =
            piecesOf<char>(std::string(400, 'x') + "yyyy", std::vector<std::size_t>(101, 4), 101)[kept];
        EXPECT_EQ(piece, NSString("xxxx"));
        const NSObject copy = piece;
        piece = NSString("another");
        EXPECT_EQ(copy, NSString("xxxx"));
    }
}

template <class Unit>
void expectTextBesideFreedMemory(std::basic_string_view<Unit> text) {
    detail::ShortStrings strings;
    // The only string of its block, released at once, as the repeated key of a dictionary is.
    EXPECT_EQ(strings.make(text.data(), 4, text.size(), 20), NSString(StringView(text.data(), 4)));
    // Whatever size the block had, one of these takes its memory if it was freed.
    std::vector<std::string> neighbors;
    for (std::size_t size = 16; size <= 1024; size += 8) {
        neighbors.emplace_back(size, 'n');
    }
    const NSString next = strings.make(text.data() + 4, 4, text.size() - 4, 20);
    EXPECT_EQ(next, NSString(StringView(text.data() + 4, 4)));
    for (const std::string& neighbor : neighbors) {
        EXPECT_EQ(neighbor, std::string(neighbor.size(), 'n'));
    }
}

TEST(ShortStrings, areNotMadeInMemoryThatIsFreed) {
    expectTextBesideFreedMemory<char>("onceonlyand more text, so that a block is full");
    expectTextBesideFreedMemory<char16_t>(u"onceonlyand more text, so that a block is full");
    expectTextBesideFreedMemory<char16_t>(u"\u00FCnceonly\u00FCnd more text, so that a block is full");
}

TEST(ShortStrings, takeFewerAllocationsThanThereArePieces) {
    const std::string text(4000, 'x');
    const std::vector<std::size_t> lengths(1000, 4);
    const std::size_t before = kit::AllocationCount::now();
    const NSArray pieces = piecesOf<char>(text, lengths, lengths.size());
    EXPECT_LT(kit::AllocationCount::now() - before, lengths.size() / 8);
    EXPECT_EQ(pieces.count(), lengths.size());
}

TEST(ShortStringsConcurrency, neighborsAreReleasedByTwoThreads) {
    for (int round = 0; round < 50; ++round) {
        std::vector<NSObject> odd;
        std::vector<NSObject> even;
        NSArray pieces = piecesOf<char>(std::string(2000, 'x'), std::vector<std::size_t>(500, 4), 500);
        for (std::size_t i = 0; i < pieces.count(); i += 2) {
            even.push_back(pieces[i]);
            odd.push_back(pieces[i + 1]);
        }
        const NSObject kept = pieces[250];
        pieces = nullptr;
        std::thread other([taken = std::move(odd)]() mutable { taken.clear(); });
        even.clear();
        other.join();
        EXPECT_EQ(kept, NSString("xxxx"));
    }
}

} // namespace
