// SPDX-License-Identifier: MIT
// Hashes of bytes and texts: every byte counts, and equal texts hash alike in every form.
#include "foundation/objects/Hashing.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

#include "foundation/objects/NSString.h"

using namespace ZQFoundation;
using namespace detail;

namespace {

TEST(Hashing, dependsOnEveryByteTheCountAndTheSeed) {
    for (std::size_t count = 0; count < 40; ++count) {
        std::string bytes(count, 'x');
        std::set<std::uint64_t> hashes{hashBytes(bytes.data(), count, 1), hashBytes(bytes.data(), count, 2)};
        for (std::size_t i = 0; i < count; ++i) {
            for (const int bit : {0, 3, 7}) {
                bytes[i] = static_cast<char>(bytes[i] ^ 1 << bit);
                hashes.insert(hashBytes(bytes.data(), count, 1));
                bytes[i] = static_cast<char>(bytes[i] ^ 1 << bit);
            }
        }
        bytes += 'x';
        hashes.insert(hashBytes(bytes.data(), count + 1, 1));
        EXPECT_EQ(hashes.size(), 3 + 3 * count) << count;
    }
}

TEST(Hashing, seesWhetherAByteIsBeyondAscii) {
    for (std::size_t count = 1; count < 40; ++count) {
        for (std::size_t i = 0; i < count; ++i) {
            std::string bytes(count, 'x');
            std::uint64_t seen = 0;
            hashBytes(bytes.data(), count, 1, seen);
            EXPECT_EQ(seen & beyondAscii, 0U) << count;
            bytes[i] = '\x80';
            hashBytes(bytes.data(), count, 1, seen);
            EXPECT_NE(seen & beyondAscii, 0U) << i << " of " << count;
        }
    }
}

TEST(Hashing, takesEqualTextsForTheSameInEveryForm) {
    for (const std::u16string& units : {std::u16string(), std::u16string(u"abc"), std::u16string(100, u'a'),
                                        std::u16string(u"é"), std::u16string(u"日本語のテキスト😀")}) {
        const std::string bytes = NSString(units).utf8();
        const AsciiOrUtf16 text{StringView(units)};
        EXPECT_EQ(hashText(AsciiOrUtf16{StringView(bytes)}, 7), hashText(text, 7)) << bytes;
        EXPECT_NE(hashText(text, 8), hashText(text, 7)) << bytes;
    }
}

TEST(Hashing, drawsItsSeedOnce) {
    EXPECT_NE(tableSeed(), 0U);
    EXPECT_EQ(tableSeed(), tableSeed());
}

} // namespace
