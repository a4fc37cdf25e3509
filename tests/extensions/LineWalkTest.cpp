// SPDX-License-Identifier: MIT
#include "extensions/LineWalk.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/kit/Texts.h"

using namespace ZQFoundation;
using namespace ZQFoundation::detail;

namespace {

using Places = std::vector<std::pair<std::size_t, std::size_t>>;

template <class Text>
Places linesOf(const Text& text) {
    Places lines;
    forEachLine(text.data(), text.size(),
                [&](std::size_t start, std::size_t end) { lines.emplace_back(start, end); });
    return lines;
}

bool isPair(char16_t first, char16_t second) {
    return (first == '\n' && second == '\r') || (first == '\r' && second == '\n');
}

Places modelOf(const std::u16string& text) {
    Places lines;
    std::size_t start = 0;
    bool endsWithBreak = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        endsWithBreak = isNewline(text[at]);
        if (endsWithBreak) {
            lines.emplace_back(start, at);
            at += at + 1 < text.size() && isPair(text[at], text[at + 1]) ? 1 : 0;
            start = at + 1;
        }
    }
    if (!text.empty()) {
        lines.emplace_back(start, text.size());
    }
    return lines;
}

TEST(LineWalk, tellsEachLine) {
    EXPECT_EQ(linesOf(std::string("")), Places());
    EXPECT_EQ(linesOf(std::string("a")), (Places{{0, 1}}));
    EXPECT_EQ(linesOf(std::string("a\n")), (Places{{0, 1}, {2, 2}}));
    EXPECT_EQ(linesOf(std::string("a\r\n\nb")), (Places{{0, 1}, {3, 3}, {4, 5}}));
    EXPECT_EQ(linesOf(std::u16string(u"\u20ac\u2028b")), (Places{{0, 1}, {2, 3}}));
}

TEST(LineWalk, tellsTheLinesOfASlowWalk) {
    kit::Numbers numbers(7);
    for (int round = 0; round < 20000; ++round) {
        const std::size_t length = numbers.below(200);
        const std::u16string ascii = numbers.text(u"abcdefgh\r\n\v\f\t\x0E\x7F", length);
        ASSERT_EQ(linesOf(ascii), modelOf(ascii));
        ASSERT_EQ(linesOf(std::string(ascii.begin(), ascii.end())), modelOf(ascii));
        const std::u16string wide = numbers.text(u"abcdefgh\u20ac\r\n\u0085\u2027\u2028\u2029\u202A", length);
        ASSERT_EQ(linesOf(wide), modelOf(wide));
    }
}

TEST(LineWalk, knowsTheSameNewlinesOneByOneAndInBlocks) {
    for (unsigned value = 0; value <= 0xFFFF; ++value) {
        const std::u16string text(20, static_cast<char16_t>(value));
        const std::size_t expected = isNewline(text[0]) ? 0 : 20;
        ASSERT_EQ(nextPlace(text.data(), 0, 20, newlineTest<char16_t>), expected) << std::hex << value;
        ASSERT_EQ(nextPlace(text.data(), 17, 20, newlineTest<char16_t>), expected == 0 ? 17 : 20);
        if (value < 0x80) {
            const std::string bytes(20, static_cast<char>(value));
            ASSERT_EQ(nextPlace(bytes.data(), 0, 20, newlineTest<char>), expected) << value;
            ASSERT_EQ(nextPlace(bytes.data(), 17, 20, newlineTest<char>), expected == 0 ? 17 : 20) << value;
        }
    }
}

} // namespace
