// SPDX-License-Identifier: MIT
// Upper case, lower case, folding and decomposition of single characters, compared with the database.
#include "foundation/text/CaseMapping.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace {

using namespace ZQFoundation::detail;

std::u32string upper(char32_t codePoint) {
    char32_t out[3];
    return {out, upperCase(codePoint, out)};
}

std::u32string lower(char32_t codePoint) {
    char32_t out[3];
    return {out, lowerCase(codePoint, out)};
}

std::u32string fold(char32_t codePoint) {
    char32_t out[3];
    return {out, foldCase(codePoint, out)};
}

std::u32string decomposed(char32_t codePoint) {
    char32_t out[4];
    return {out, canonicalDecomposition(codePoint, out)};
}

struct CaseRow {
    const char* name;
    char32_t codePoint;
    std::u32string_view upper;
    std::u32string_view lower;
    std::u32string_view fold;
};

constexpr CaseRow caseRows[] = {
    {"NUL", 0, {U"\0", 1}, {U"\0", 1}, {U"\0", 1}},
    {"A", U'A', U"A", U"a", U"a"},
    {"i", U'i', U"I", U"i", U"i"},
    {"z", U'z', U"Z", U"z", U"z"},
    {"at sign, before A", U'@', U"@", U"@", U"@"},
    {"underscore", U'_', U"_", U"_", U"_"},
    {"opening bracket, after Z", U'[', U"[", U"[", U"["},
    {"micro sign", 0xB5, U"\x39C", U"\xB5", U"\x3BC"},
    {"division sign", 0xF7, U"\xF7", U"\xF7", U"\xF7"},
    {"y with diaeresis", 0xFF, U"\x178", U"\xFF", U"\xFF"},
    {"sharp s", 0xDF, U"SS", U"\xDF", U"ss"},
    {"capital sharp s", 0x1E9E, U"\x1E9E", U"\xDF", U"ss"},
    {"I with dot", 0x130, U"\x130", U"i\x307", U"i\x307"},
    {"dotless i", 0x131, U"I", U"\x131", U"\x131"},
    {"apostrophe n", 0x149, U"\x2BCN", U"\x149", U"\x2BCn"},
    {"long s", 0x17F, U"S", U"\x17F", U"s"},
    {"DZ digraph, capital", 0x1C4, U"\x1C4", U"\x1C6", U"\x1C6"},
    {"Dz digraph, title", 0x1C5, U"\x1C4", U"\x1C6", U"\x1C6"},
    {"j with caron", 0x1F0, U"J\x30C", U"\x1F0", U"j\x30C"},
    {"ypogegrammeni", 0x345, U"\x399", U"\x345", U"\x3B9"},
    {"iota, dialytika, tonos", 0x390, U"\x399\x308\x301", U"\x390", U"\x3B9\x308\x301"},
    {"capital sigma", 0x3A3, U"\x3A3", U"\x3C3", U"\x3C3"},
    {"final sigma", 0x3C2, U"\x3A3", U"\x3C2", U"\x3C3"},
    {"sigma", 0x3C3, U"\x3A3", U"\x3C3", U"\x3C3"},
    {"Cyrillic A", 0x410, U"\x410", U"\x430", U"\x430"},
    {"Armenian ech yiwn", 0x587, U"\x535\x552", U"\x587", U"\x565\x582"},
    {"Georgian an", 0x10D0, U"\x1C90", U"\x10D0", U"\x10D0"},
    {"Cherokee A", 0x13A0, U"\x13A0", U"\xAB70", U"\x13A0"},
    {"Cherokee small A", 0xAB70, U"\x13A0", U"\xAB70", U"\x13A0"},
    {"alpha, psili, prosgegrammeni", 0x1F88, U"\x1F08\x399", U"\x1F80", U"\x1F00\x3B9"},
    {"alpha, perispomeni, ypogegrammeni", 0x1FB7, U"\x391\x342\x399", U"\x1FB7", U"\x3B1\x342\x3B9"},
    {"ohm sign", 0x2126, U"\x2126", U"\x3C9", U"\x3C9"},
    {"kelvin sign", 0x212A, U"\x212A", U"k", U"k"},
    {"ligature fi", 0xFB01, U"FI", U"\xFB01", U"fi"},
    {"ligature ffi", 0xFB03, U"FFI", U"\xFB03", U"ffi"},
    {"CJK ideograph", 0x4E2D, U"\x4E2D", U"\x4E2D", U"\x4E2D"},
    {"full-width A", 0xFF21, U"\xFF21", U"\xFF41", U"\xFF41"},
    {"Deseret long I", 0x10400, U"\x10400", U"\x10428", U"\x10428"},
    {"Deseret small long I", 0x10428, U"\x10400", U"\x10428", U"\x10428"},
    {"Adlam sha, the last letter with case", 0x1E943, U"\x1E921", U"\x1E943", U"\x1E943"},
    {"emoji", 0x1F600, U"\x1F600", U"\x1F600", U"\x1F600"},
};

TEST(CaseMapping, mapsAndFolds) {
    for (const CaseRow& row : caseRows) {
        SCOPED_TRACE(row.name);
        EXPECT_TRUE(upper(row.codePoint) == row.upper);
        EXPECT_TRUE(lower(row.codePoint) == row.lower);
        EXPECT_TRUE(fold(row.codePoint) == row.fold);
    }
}

TEST(CaseMapping, leavesWhatIsNoCharacterAlone) {
    for (const char32_t codePoint : {0xD800u, 0xDFFFu, 0xFFFFu, 0x10FFFFu, 0x110000u, 0xFFFFFFFFu}) {
        const std::u32string same(1, codePoint);
        EXPECT_TRUE(upper(codePoint) == same && lower(codePoint) == same && fold(codePoint) == same);
        EXPECT_TRUE(decomposed(codePoint).empty());
        EXPECT_EQ(canonicalCombiningClass(codePoint), 0);
    }
}

TEST(CaseMapping, foldsAFoldingToItself) {
    for (char32_t codePoint = 0; codePoint < 0x110000; ++codePoint) {
        const std::u32string folded = fold(codePoint);
        std::u32string again;
        for (const char32_t part : folded) {
            again += fold(part);
        }
        ASSERT_TRUE(folded == again) << std::hex << static_cast<unsigned>(codePoint);
    }
}

TEST(CaseMapping, countsTheMappingsOfTheDatabase) {
    int uppers = 0;
    int lowers = 0;
    int folds = 0;
    int longFolds = 0;
    for (char32_t codePoint = 0; codePoint < 0x110000; ++codePoint) {
        const std::u32string same(1, codePoint);
        uppers += upper(codePoint) == same ? 0 : 1;
        lowers += lower(codePoint) == same ? 0 : 1;
        folds += fold(codePoint) == same ? 0 : 1;
        longFolds += fold(codePoint).size() > 1 ? 1 : 0;
    }
    EXPECT_EQ(uppers, 1525);
    EXPECT_EQ(lowers, 1433);
    EXPECT_EQ(folds, 1530);
    EXPECT_EQ(longFolds, 104);
}

struct DecompositionRow {
    const char* name;
    char32_t codePoint;
    std::u32string_view parts;
};

constexpr DecompositionRow decompositionRows[] = {
    {"A with grave", 0xC0, U"A\x300"},
    {"e with acute", 0xE9, U"e\x301"},
    {"U with diaeresis and macron, in two steps", 0x1D5, U"U\x308\x304"},
    {"tonos, one part", 0x340, U"\x300"},
    {"combining dialytika tonos", 0x344, U"\x308\x301"},
    {"alpha with three marks", 0x1F82, U"\x3B1\x313\x300\x345"},
    {"S, dot below, dot above", 0x1E68, U"S\x323\x307"},
    {"o, horn, acute", 0x1EDB, U"o\x31B\x301"},
    {"angstrom sign", 0x212B, U"A\x30A"},
    {"ohm sign", 0x2126, U"\x3A9"},
    {"not equal", 0x2260, U"=\x338"},
    {"Hebrew shin, dagesh, shin dot", 0xFB2C, U"\x5E9\x5BC\x5C1"},
    {"CJK compatibility ideograph", 0xF900, U"\x8C48"},
    {"half note, three parts above U+FFFF", 0x1D15E, U"\x1D157\x1D165"},
    {"sixty-fourth note", 0x1D163, U"\x1D158\x1D165\x1D171"},
    {"CJK compatibility ideograph above U+FFFF", 0x2F800, U"\x4E3D"},
    {"the last one", 0x2FA1D, U"\x2A600"},
    {"first Hangul syllable", 0xAC00, U"\x1100\x1161"},
    {"Hangul with a trailing consonant", 0xAC01, U"\x1100\x1161\x11A8"},
    {"last Hangul syllable", 0xD7A3, U"\x1112\x1175\x11C2"},
    {"before the Hangul syllables", 0xABFF, U""},
    {"after the Hangul syllables", 0xD7A4, U""},
    {"letter", U'e', U""},
    {"combining acute", 0x301, U""},
    {"ligature fi, compatibility only", 0xFB01, U""},
    {"no-break space, compatibility only", 0xA0, U""},
};

TEST(CaseMapping, decomposesCompletely) {
    for (const DecompositionRow& row : decompositionRows) {
        SCOPED_TRACE(row.name);
        EXPECT_TRUE(decomposed(row.codePoint) == row.parts);
    }
}

TEST(CaseMapping, leavesNoPartThatDecomposesOrIsOutOfOrder) {
    int count = 0;
    for (char32_t codePoint = 0; codePoint < 0x110000; ++codePoint) {
        const std::u32string parts = decomposed(codePoint);
        count += parts.empty() ? 0 : 1;
        unsigned char before = 0;
        for (const char32_t part : parts) {
            ASSERT_TRUE(decomposed(part).empty()) << std::hex << static_cast<unsigned>(codePoint);
            const unsigned char here = canonicalCombiningClass(part);
            ASSERT_TRUE(here == 0 || here >= before) << std::hex << static_cast<unsigned>(codePoint);
            before = here;
        }
    }
    EXPECT_EQ(count, 11172 + 2061);
}

struct ClassRow {
    const char* name;
    char32_t codePoint;
    unsigned char combiningClass;
};

constexpr ClassRow classRows[] = {
    {"letter", U'a', 0},
    {"combining grave", 0x300, 230},
    {"combining acute", 0x301, 230},
    {"dot below", 0x323, 220},
    {"horn", 0x31B, 216},
    {"overlay", 0x338, 1},
    {"ypogegrammeni", 0x345, 240},
    {"grapheme joiner", 0x34F, 0},
    {"double breve below", 0x35C, 233},
    {"Hebrew sheva", 0x5B0, 10},
    {"Hebrew dagesh", 0x5BC, 21},
    {"Arabic shadda", 0x651, 33},
    {"Devanagari nukta", 0x93C, 7},
    {"Devanagari virama", 0x94D, 9},
    {"kana voicing", 0x3099, 8},
    {"musical stem", 0x1D165, 216},
    {"Adlam nukta, the last mark", 0x1E94A, 7},
    {"CJK ideograph", 0x4E2D, 0},
    {"Hangul syllable", 0xAC00, 0},
};

TEST(CaseMapping, knowsTheCombiningClasses) {
    for (const ClassRow& row : classRows) {
        EXPECT_EQ(canonicalCombiningClass(row.codePoint), row.combiningClass) << row.name;
    }
}

} // namespace
