// SPDX-License-Identifier: MIT
// New identifiers: their form, and that no two are the same, in threads and forked children either.
#include <array>
#include <cerrno>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/objects/NSString.h"
#include "tests/kit/Child.h"
#include "tests/kit/Threads.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;

namespace {

constexpr std::size_t identifierLength = 36;

std::string newIdentifier() { return kit::utf8Of(NSString::stringWithNewUUID()); }

TEST(NewUUID, hasFormVersionAndVariant) {
    std::set<char> variants;
    for (int round = 0; round < 1000; ++round) {
        const std::string text = newIdentifier();
        std::string form;
        for (const char character : text) {
            form += character == '-' ? '-' : std::string("0123456789ABCDEF").find(character) < 16 ? 'x' : '?';
        }
        ASSERT_EQ(form, "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx") << text;
        ASSERT_EQ(text[14], '4') << text;
        variants.insert(text[19]);
    }
    EXPECT_EQ(variants, (std::set<char>{'8', '9', 'A', 'B'}));
}

TEST(NewUUID, isRandomInEveryOtherBit) {
    std::array<int, identifierLength * 4> ones{};
    constexpr int rounds = 4000;
    for (int round = 0; round < rounds; ++round) {
        const std::string text = newIdentifier();
        for (std::size_t place = 0; place < text.size(); ++place) {
            const std::size_t value = std::string("0123456789ABCDEF").find(text[place]);
            for (std::size_t bit = 0; value != std::string::npos && bit < 4; ++bit) {
                ones[place * 4 + bit] += static_cast<int>(value >> bit & 1);
            }
        }
    }
    const std::string fixed = "        -    -4   -v   -            ";
    for (std::size_t place = 0; place < identifierLength; ++place) {
        for (std::size_t bit = 0; bit < (fixed[place] == ' ' ? 4U : fixed[place] == 'v' ? 2U : 0U); ++bit) {
            // Eight standard deviations: less than once in 10^14 runs.
            EXPECT_NEAR(ones[place * 4 + bit], rounds / 2, 253) << place << " " << bit;
        }
    }
}

TEST(NewUUID, isNeverTheSameInConcurrentThreads) {
    std::vector<std::vector<std::string>> texts(4);
    kit::inThreads(texts.size(), [&texts](std::size_t number) {
        for (int round = 0; round < 10000; ++round) {
            texts[number].push_back(newIdentifier());
        }
    });
    std::set<std::string> seen;
    for (const std::vector<std::string>& own : texts) {
        seen.insert(own.begin(), own.end());
    }
    EXPECT_EQ(seen.size(), 40000U);
}

TEST(NewUUID, isAnotherOneInEachForkedChild) {
    // What is kept from one call to the next is there before the forks.
    std::set<std::string> seen{newIdentifier()};
    for (int child = 0; child < 20; ++child) {
        const std::string texts = kit::textFromChild([] { return newIdentifier() + newIdentifier(); });
        EXPECT_TRUE(seen.insert(texts.substr(0, identifierLength)).second);
        EXPECT_TRUE(seen.insert(texts.substr(identifierLength)).second);
        EXPECT_TRUE(seen.insert(newIdentifier()).second);
    }
}

TEST(NewUUID, leavesErrnoAlone) {
    errno = 4711;
    EXPECT_EQ(NSString::stringWithNewUUID().length(), identifierLength);
    EXPECT_EQ(errno, 4711);
}

} // namespace
