// SPDX-License-Identifier: MIT
// The tables of encodings with one byte for each character.
#include "foundation/text/ByteTable.h"

#include <gtest/gtest.h>

#include <string>

using namespace ZQFoundation;
using detail::ByteTable;
using namespace std::string_literals;

namespace {

ByteTable::Units ascii() {
    ByteTable::Units units;
    units.fill(ByteTable::none);
    for (std::size_t code = 0; code < 128; ++code) {
        units[code] = static_cast<char16_t>(code);
    }
    return units;
}

TEST(ByteTable, findsTheByteOfEachUnitAndOfNoOther) {
    ByteTable::Units units = ascii();
    units[0x80] = 0x20AC;
    units[0xFF] = 0xFFFE;
    const ByteTable table(units);
    for (int unit = 0; unit < 0x10000; ++unit) {
        const int expected = unit < 0x80 ? unit : unit == 0x20AC ? 0x80 : unit == 0xFFFE ? 0xFF : -1;
        ASSERT_EQ(table.byteOf(static_cast<char16_t>(unit)), expected) << unit;
    }
    EXPECT_TRUE(table.isAsciiCompatible());
    EXPECT_EQ(table.unitOf(0x80), 0x20AC);
    EXPECT_EQ(table.unitOf(0x81), ByteTable::none);
}

TEST(ByteTable, writesTheFirstOfSeveralBytesForAUnit) {
    ByteTable::Units units = ascii();
    units[0xA0] = u'a';
    EXPECT_EQ(ByteTable(units).byteOf(u'a'), 'a');
}

TEST(ByteTable, needsNoAsciiBelow) {
    ByteTable::Units units = ascii();
    units['a'] = 0x03B1;
    const ByteTable table(units);
    EXPECT_FALSE(table.isAsciiCompatible());
    EXPECT_FALSE(table.holds("ba", 2));
    EXPECT_TRUE(table.holds("bc", 2));
    EXPECT_TRUE(table.holds(u"\u03B1", 1));
    char out[2] = {};
    EXPECT_TRUE(table.write(u"b\u03B1", 2, out));
    EXPECT_EQ(std::string(out, 2), "ba");
    EXPECT_FALSE(table.write("ab", 2, out));
    units = ascii();
    units[0] = ByteTable::none;
    EXPECT_FALSE(ByteTable(units).isAsciiCompatible());
    EXPECT_EQ(ByteTable(units).byteOf(0), -1);
}

TEST(ByteTable, storesUnitsOfAnyNumberOfPages) {
    ByteTable::Units units;
    for (std::size_t code = 0; code < 256; ++code) {
        units[code] = static_cast<char16_t>(code << 8 | (255 - code));
    }
    const ByteTable table(units);
    for (std::size_t code = 0; code < 256; ++code) {
        EXPECT_EQ(table.byteOf(units[code]), static_cast<int>(code));
    }
    EXPECT_EQ(table.byteOf(0), -1);
}

TEST(ByteTable, readsOnlyBytesThatStandForSomething) {
    const ByteTable table(ascii());
    char16_t out[3];
    EXPECT_TRUE(table.read(reinterpret_cast<const unsigned char*>("abc"), 3, out));
    EXPECT_EQ(std::u16string(out, 3), u"abc");
    EXPECT_FALSE(table.read(reinterpret_cast<const unsigned char*>("a\x80z"), 3, out));
    EXPECT_TRUE(table.read(nullptr, 0, out));
}

} // namespace
