// SPDX-License-Identifier: MIT
// The lines of texts of bytes and of units, against the model.
#include "extensions/LineWalk.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/kit/Texts.h"
#include "tests/models/Strings.h"

using namespace ZQFoundation;
using namespace ZQFoundation::detail;

namespace {

template <class Text>
models::Texts linesOf(const Text& text) {
    models::Texts lines;
    forEachLine(text.data(), text.size(), [&](std::size_t start, std::size_t end) {
        lines.emplace_back(text.begin() + static_cast<std::ptrdiff_t>(start),
                           text.begin() + static_cast<std::ptrdiff_t>(end));
    });
    return lines;
}

TEST(LineWalk, findsTheLinesOfTheModel) {
    EXPECT_EQ(linesOf(std::string("")), models::Texts());
    EXPECT_EQ(linesOf(std::string("a\n")), (models::Texts{u"a", u""}));
    for (const std::u16string& text : kit::allTexts(u"a\r\n\u2028", 6)) {
        ASSERT_EQ(linesOf(text), models::lines(text));
    }
    kit::Numbers numbers(7);
    for (int round = 0; round < 2000; ++round) {
        const std::size_t length = numbers.below(200);
        const std::u16string ascii = numbers.text(u"abcdefgh\r\n\v\f\t\x0E\x7F", length);
        ASSERT_EQ(linesOf(ascii), models::lines(ascii));
        ASSERT_EQ(linesOf(std::string(ascii.begin(), ascii.end())), models::lines(ascii));
        const std::u16string wide = numbers.text(u"abcdefgh\u20ac\r\n\u0085\u2027\u2028\u2029\u202A", length);
        ASSERT_EQ(linesOf(wide), models::lines(wide));
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
