// SPDX-License-Identifier: MIT
// Searching and comparing units block by block, at every alignment.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "foundation/text/UnitBlocks.h"
#include "tests/kit/Texts.h"

using namespace ZQFoundation::detail;

namespace {

constexpr auto isComma = [](auto unit) {
    return unit == ',';
};

template <class Text>
void expectPlaces(const Text& text) {
    using Unit = typename Text::value_type;
    // From every alignment, with the text's end right after what may be read.
    for (std::size_t start = 0; start <= std::min<std::size_t>(text.size(), 33); ++start) {
        const Text part(text, start);
        const std::size_t found = part.find(Unit{','});
        ASSERT_EQ(nextPlace(part.data(), 0, part.size(), isComma), std::min(found, part.size()));
        ASSERT_EQ(nextPlace(text.data(), start, text.size(), isComma), start + std::min(found, part.size()));
        ASSERT_EQ(countPlaces(text.data() + start, part.size(), isComma),
                  static_cast<std::size_t>(std::count(part.begin(), part.end(), Unit{','})));
    }
}

template <class Text>
void expectEachPlace(const Text& text) {
    const ZQFoundation::kit::Exact<typename Text::value_type> exact{
        std::basic_string_view<typename Text::value_type>(text)};
    std::vector<std::size_t> expected;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == ',') {
            expected.push_back(i);
        }
    }
    std::vector<std::size_t> places;
    forEachPlace(exact.data(), exact.size(), isComma, [&](std::size_t place) { places.push_back(place); });
    ASSERT_EQ(places, expected);
}

TEST(UnitBlocks, findEachPlaceInOrder) {
    ZQFoundation::kit::Numbers numbers(5);
    for (std::size_t length = 0; length <= 100; ++length) {
        for (const std::u16string_view alphabet : {u",", u"a,", u"abcdefghij,"}) {
            const std::u16string text = numbers.text(alphabet, length);
            expectEachPlace(text);
            expectEachPlace(std::string(text.begin(), text.end()));
        }
    }
}

TEST(UnitBlocks, findAndCountAtEveryPlaceOfEveryLength) {
    for (std::size_t length = 0; length <= 200; ++length) {
        expectPlaces(std::string(length, 'a'));
        expectPlaces(std::u16string(length, u'\u20ac'));
        for (std::size_t at = 0; at < length; at += length / 17 + 1) {
            std::string bytes(length, 'a');
            bytes[at] = ',';
            expectPlaces(bytes);
            expectPlaces(std::u16string(bytes.begin(), bytes.end()));
        }
    }
}

TEST(UnitBlocks, countMoreThanALaneCan) {
    for (const std::size_t length : {4079U, 4080U, 4081U, 4096U, 8161U, 200000U}) {
        EXPECT_EQ(countPlaces(std::string(length, ',').data(), length, isComma), length);
        EXPECT_EQ(countPlaces(std::u16string(length, u',').data(), length, isComma), length);
    }
    const std::u16string many(3000000, u',');
    EXPECT_EQ(countPlaces(many.data(), many.size(), isComma), many.size());
}

TEST(UnitBlocks, compareUnitsAsUnsignedNumbers) {
    const auto isHigh = [](auto unit) {
        return unit >= 0xD800;
    };
    std::u16string text(40, u'\u7FFF');
    EXPECT_EQ(nextPlace(text.data(), 0, text.size(), isHigh), 40U);
    text[21] = 0xFFFF;
    EXPECT_EQ(nextPlace(text.data(), 0, text.size(), isHigh), 21U);
    EXPECT_EQ(countPlaces(text.data(), text.size(), isHigh), 1U);
}

} // namespace
