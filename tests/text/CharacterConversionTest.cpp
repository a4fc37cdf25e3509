// SPDX-License-Identifier: MIT
// Conversions between encodings by the C library.
#include "foundation/text/CharacterConversion.h"

#include <gtest/gtest.h>

#include <cerrno>

using namespace ZQFoundation::detail;
using namespace std::string_literals;

namespace {

TEST(CharacterConversion, convertsWholeTexts) {
    std::u16string units;
    std::string bytes;
    EXPECT_TRUE(bytesToUnits("EUC-JP", "a\xC6\xFC", units));
    EXPECT_EQ(units, u"a\u65E5");
    EXPECT_TRUE(unitsToBytes("EUC-JP", u"a\u65E5", bytes));
    EXPECT_EQ(bytes, "a\xC6\xFC");
    EXPECT_TRUE(bytesToUnits("EUC-JP", {}, units));
    EXPECT_EQ(units, u"");
    EXPECT_TRUE(unitsToBytes("EUC-JP", {}, bytes));
    EXPECT_EQ(bytes, "");
}

TEST(CharacterConversion, endsInTheInitialState) {
    std::string bytes;
    EXPECT_TRUE(unitsToBytes("ISO-2022-JP", u"\u65E5", bytes));
    EXPECT_EQ(bytes, "\x1B$BF|\x1B(B");
}

TEST(CharacterConversion, growsItsRoom) {
    std::string bytes;
    std::u16string units(100000, u'\u0416');
    EXPECT_TRUE(unitsToBytes("GB18030", units, bytes));
    EXPECT_EQ(bytes.size(), 200000U);
    units.assign(50000, u'\u0100'); // four bytes each
    EXPECT_TRUE(unitsToBytes("GB18030", units, bytes));
    std::u16string back;
    EXPECT_TRUE(bytesToUnits("GB18030", bytes, back));
    EXPECT_TRUE(back == units);
}

TEST(CharacterConversion, losesNothing) {
    std::string bytes;
    EXPECT_FALSE(unitsToBytes("EUC-JP", u"a\u0E01", bytes)) << "no place in the encoding";
    EXPECT_FALSE(unitsToBytes("SHIFT_JIS", u"\\", bytes)) << "would come back as a fullwidth one";
    EXPECT_FALSE(unitsToBytes("CP932", u"\u00A5", bytes)) << "would come back as a backslash";
    EXPECT_FALSE(unitsToBytes("EUC-JP", u"a\U000E0041z", bytes)) << "skipped as a tag";
    EXPECT_FALSE(unitsToBytes("ISO-2022-JP", u"\x1B$B", bytes)) << "would be read as an escape";
    EXPECT_FALSE(unitsToBytes("GB18030", u"\xD800", bytes));
    EXPECT_FALSE(unitsToBytes("GB18030", u"\xDC00\xD800", bytes));
}

TEST(CharacterConversion, readsNoBrokenBytes) {
    std::u16string units;
    EXPECT_FALSE(bytesToUnits("EUC-JP", "\xC6", units));
    EXPECT_FALSE(bytesToUnits("EUC-JP", "a\xC6 ", units));
    EXPECT_FALSE(bytesToUnits("CP1252", "\x81", units));
    EXPECT_FALSE(bytesToUnits("ISO-2022-JP", "\x1B$", units));
}

TEST(CharacterConversion, knowsWhatIsThere) {
    std::u16string units;
    std::string bytes;
    char16_t table[256];
    EXPECT_TRUE(unitsOfAllBytes("CP1252", u'?', table));
    EXPECT_EQ(table[0x80], u'\u20AC');
    EXPECT_EQ(table[0x61], u'a');
    EXPECT_TRUE(unitsOfAllBytes("SHIFT-JIS", u'?', table));
    EXPECT_EQ(table[0x81], u'?') << "begins a pair";
    EXPECT_FALSE(unitsOfAllBytes("NO-SUCH-ENCODING", u'?', table));
    EXPECT_FALSE(bytesToUnits("NO-SUCH-ENCODING", "a", units));
    EXPECT_FALSE(unitsToBytes("NO-SUCH-ENCODING", u"a", bytes));
}

TEST(CharacterConversion, leavesErrnoAlone) {
    std::u16string units;
    std::string bytes;
    errno = 4711;
    char16_t table[256];
    unitsOfAllBytes("NO-SUCH-ENCODING", u'?', table);
    bytesToUnits("EUC-JP", "\xC6", units);
    unitsToBytes("EUC-JP", u"\u0E01", bytes);
    EXPECT_EQ(errno, 4711);
}

} // namespace
