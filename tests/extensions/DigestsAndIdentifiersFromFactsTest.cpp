// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <array>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/kit/Texts.h"
#include "tests/kit/Values.h"
#include "tests/process/Scene.h"

using namespace ZQFoundation;
using namespace std::string_literals;
using kit::stringOf;
using kit::utf8Of;

namespace {

std::string digestOf(const NSString& text) { return utf8Of(text.md5String()); }

std::string newIdentifier() { return utf8Of(NSString::stringWithNewUUID()); }

constexpr std::size_t identifierLength = 36;

// Digests

TEST(DigestsFromFacts, areThoseOfTheStandardSuite) {
    const char* const rows[][2] = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"a", "0cc175b9c0f1b6a831c399e269772661"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
         "d174ab98d277d9f5a5611c2c9f419d9f"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
         "57edf4a22be3c955ac49da2e2107b67a"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(digestOf(row[0]), row[1]) << row[0];
    }
}

TEST(DigestsFromFacts, areRightAroundTheEndsOfBlocks) {
    const struct {
        std::size_t length;
        const char* digest;
    } rows[] = {
        {1, "0cc175b9c0f1b6a831c399e269772661"},       {54, "eced9e0b81ef2bba605cbc5e2e76a1d0"},
        {55, "ef1772b6dff9a122358552954ad0df65"},      {56, "3b0c8ac703f828b04c6c197006d17218"},
        {57, "652b906d60af96844ebd21b674f35e93"},      {63, "b06521f39153d618550606be297466d5"},
        {64, "014842d480b571495a4a0363793f7367"},      {65, "c743a45e0d2e6a95cb859adae0248435"},
        {111, "089f243d1e831c5879aa375ee364a06e"},     {112, "9146ef3527c7cfcc66dc615c3986e391"},
        {119, "8a7bd0732ed6a28ce75f6dabc90e1613"},     {120, "5f61c0ccad4cac44c75ff505e1f1e537"},
        {127, "020406e1d05cdc2aa287641f7ae2cc39"},     {128, "e510683b3f5ffe4093d021808bc6ff70"},
        {129, "b325dc1c6f5e7a2b7cf465b9feab7948"},     {1000, "cabe45dcc9ae5b66ba86600cca6b8ba8"},
        {1000000, "7707d6ae4e027c70eea2a935c2296f21"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(digestOf(std::string(row.length, 'a')), row.digest) << row.length;
    }
}

TEST(DigestsFromFacts, areRightAtEveryLength) {
    std::string digests;
    for (std::size_t length = 0; length <= 300; ++length) {
        std::string text;
        for (std::size_t i = 0; i < length; ++i) {
            text += static_cast<char>(33 + (i * 7 + length) % 94);
        }
        digests += digestOf(text);
    }
    EXPECT_EQ(digests.size(), 301u * 32);
    EXPECT_EQ(digestOf(digests), "cb72dc633ab519252f45c8f2599d1de5");
}

TEST(DigestsFromFacts, areTakenFromTheUtf8Form) {
    EXPECT_EQ(digestOf(u"\u00E9"), "66ddcd97cfdeabb2f6fb8a999b4bc76f");
    EXPECT_EQ(digestOf(u"\u20AC"), "bca53fde466a76b7bee3e18997e94a7a");
    EXPECT_EQ(digestOf(u"\U0001F600"), "2a02eac39d716a70ecf37579185927b6");
    EXPECT_EQ(digestOf(u"a\u0301"), "44b83bbc12da505b97ae458cb84798cf");
    EXPECT_EQ(digestOf(u"\uFEFF"), "ecaa88f7fa0bf610a5a26cf545dcd3aa");
}

TEST(DigestsFromFacts, endAtTheFirstZero) {
    EXPECT_EQ(digestOf(stringOf(u"abc\0def"s)), digestOf("abc"));
    EXPECT_EQ(digestOf(stringOf(u"\0abc"s)), digestOf(""));
    EXPECT_EQ(digestOf(stringOf(u"\0"s)), digestOf(""));
    EXPECT_EQ(digestOf(stringOf(u"\u00E9\0x\0"s)), digestOf(u"\u00E9"));
    const std::u16string longText(100, u'a');
    EXPECT_EQ(digestOf(stringOf(longText + u"\0b"s)), digestOf(longText));
}

TEST(DigestsFromFacts, areLowerCaseHexadecimalDigitsWithLeadingZeros) {
    bool hasLeadingZero = false;
    for (int number = 0; number < 200; ++number) {
        const std::string digest = digestOf(std::to_string(number));
        EXPECT_EQ(digest.size(), 32u);
        EXPECT_EQ(digest.find_first_not_of("0123456789abcdef"), std::string::npos) << digest;
        hasLeadingZero = hasLeadingZero || digest.front() == '0';
    }
    EXPECT_TRUE(hasLeadingZero);
}

TEST(DigestsFromFacts, ofNilAreNil) { EXPECT_FALSE(NSString().md5String()); }

// Identifiers

TEST(IdentifiersFromFacts, haveFiveGroupsOfUpperCaseDigits) {
    for (int round = 0; round < 1000; ++round) {
        const std::string text = newIdentifier();
        ASSERT_EQ(text.size(), identifierLength);
        for (std::size_t place = 1; place <= text.size(); ++place) {
            const bool isDash = place == 9 || place == 14 || place == 19 || place == 24;
            const std::string allowed = isDash ? "-" : "0123456789ABCDEF";
            ASSERT_NE(allowed.find(text[place - 1]), std::string::npos) << text << " at " << place;
        }
    }
}

TEST(IdentifiersFromFacts, tellVersionAndVariant) {
    std::set<char> variants;
    for (int round = 0; round < 1000; ++round) {
        const std::string text = newIdentifier();
        ASSERT_EQ(text[14], '4') << text;
        variants.insert(text[19]);
    }
    EXPECT_EQ(variants, (std::set<char>{'8', '9', 'A', 'B'}));
}

TEST(IdentifiersFromFacts, areRandomInEveryOtherBit) {
    std::array<int, identifierLength * 4> ones{};
    constexpr int rounds = 4000;
    for (int round = 0; round < rounds; ++round) {
        const std::string text = newIdentifier();
        for (std::size_t place = 0; place < text.size(); ++place) {
            const std::size_t value = "0123456789ABCDEF"s.find(text[place]);
            for (std::size_t bit = 0; value != std::string::npos && bit < 4; ++bit) {
                ones[place * 4 + bit] += static_cast<int>(value >> bit & 1);
            }
        }
    }
    for (std::size_t place = 0; place < identifierLength; ++place) {
        for (std::size_t bit = 0; bit < 4; ++bit) {
            const bool isDash = place == 8 || place == 13 || place == 18 || place == 23;
            const bool isFixed = isDash || place == 14 || (place == 19 && bit >= 2);
            if (!isFixed) {
                // Eight standard deviations: less than once in 10^14 runs.
                EXPECT_NEAR(ones[place * 4 + bit], rounds / 2, 253) << place << " " << bit;
            }
        }
    }
}

TEST(IdentifiersFromFacts, areNeverTheSame) {
    std::set<std::string> seen;
    for (int round = 0; round < 100000; ++round) {
        ASSERT_TRUE(seen.insert(newIdentifier()).second);
    }
}

TEST(IdentifiersFromFacts, areNeverTheSameInSeveralThreads) {
    std::vector<std::vector<std::string>> texts(4);
    std::vector<std::thread> threads;
    for (std::vector<std::string>& own : texts) {
        threads.emplace_back([&own] {
            for (int round = 0; round < 5000; ++round) {
                own.push_back(newIdentifier());
            }
        });
    }
    std::set<std::string> seen;
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const std::vector<std::string>& own : texts) {
        seen.insert(own.begin(), own.end());
    }
    EXPECT_EQ(seen.size(), 20000u);
}

TEST(IdentifiersFromFacts, areNeverTheSameInForkedChildren) {
    std::set<std::string> seen;
    std::size_t count = 0;
    newIdentifier(); // what is kept from one call to the next is there before the forks
    for (int child = 0; child < 4; ++child) {
        int ends[2];
        ASSERT_EQ(::pipe(ends), 0);
        const pid_t process = ::fork();
        if (process == 0) {
            std::string texts;
            for (int round = 0; round < 20; ++round) {
                texts += newIdentifier();
            }
            scene::leave(::write(ends[1], texts.data(), texts.size()) < 0 ? 1 : 0);
        }
        ::close(ends[1]);
        char text[identifierLength];
        while (::read(ends[0], text, sizeof text) == static_cast<ssize_t>(sizeof text)) {
            seen.insert(std::string(text, sizeof text));
            ++count;
        }
        ::close(ends[0]);
        ::waitpid(process, nullptr, 0);
        seen.insert(newIdentifier());
        ++count;
    }
    EXPECT_EQ(count, 84u);
    EXPECT_EQ(seen.size(), count);
}

TEST(IdentifiersFromFacts, leaveErrnoAlone) {
    errno = 4711;
    const NSString text = NSString::stringWithNewUUID();
    EXPECT_EQ(errno, 4711);
    EXPECT_EQ(text.length(), identifierLength);
}

} // namespace
