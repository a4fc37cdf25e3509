// SPDX-License-Identifier: MIT
// A search ignores case and accents.
#include "examples/Notes/model/Search.h"

#include <gtest/gtest.h>

#include "examples/Notes/model/NoteStore.h"
#include "tests/kit/ScratchFolder.h"

using namespace ZQFoundation;
using notes::folded;

TEST(Search, foldsCaseAndAccents) {
    const std::pair<const char*, const char*> rows[] = {
        {"Straße", "STRASSE"},
        {"Café", "CAFE"},
        {"Cafe\u0301", "CAFE"},
        {"ÄÖÜäöü", "AOUAOU"},
        {"Việt Nam, Phở", "VIET NAM, PHO"},
        {"Dvořák Łódź", "DVORAK ŁODZ"}, // a stroke is not an accent: it makes a different letter
        {"\uFB01n", "FIN"},
        {"日本 123", "日本 123"},
        {"Привет", "ПРИВЕТ"},
        {"\U0001F600", "\U0001F600"},
        {"", ""}};
    for (const auto& [text, wanted] : rows) {
        EXPECT_EQ(folded(text), wanted) << text;
    }
    EXPECT_FALSE(folded(nullptr));
    EXPECT_EQ(folded(NSString(u"a\xD800")), NSString(u"A\xD800"));
}

// The library takes a letter with a mark after it for the letter that has the mark.
TEST(Search, foldsWhatTheLibraryTakesForALetterWithAMark) {
    int count = 0;
    for (char16_t letter = 0x00C0; letter < 0x1F00;
         letter = letter == 0x024F ? u'\u1E00' : char16_t(letter + 1)) {
        const NSString text = NSString::stringWithCharacters_length(&letter, 1);
        const NSString base = folded(text);
        bool isSpelled = false;
        for (char16_t mark = 0x0300; mark <= 0x0331 && base.length() == 1 && !isSpelled; ++mark) {
            const char16_t spelled[] = {base.characterAtIndex(0), mark};
            isSpelled = text.uppercaseString().compare(StringView(spelled, 2)) == NSOrderedSame;
        }
        count += isSpelled ? 1 : 0;
    }
    EXPECT_GT(count, 300);
}

TEST(Search, findsEachWordAnywhere) {
    const NSString text = folded("Crème brûlée für Zoë");
    const std::pair<const char*, bool> rows[] = {{"creme", true},      {"ZOE cre", true},
                                                 {"brulee fur", true}, {"brulee tea", false},
                                                 {"", true},           {"   ", true}};
    for (const auto& [query, isFound] : rows) {
        EXPECT_EQ(notes::holdsAll(text, folded(query).componentsSeparatedByWhitespace()), isFound) << query;
    }
    EXPECT_FALSE(notes::holdsAll(nullptr, NSArray{"A"}));
}

TEST(Search, findsNotesInTheirOrder) {
    const kit::ScratchFolder folder;
    notes::NoteStore store(folder.path());
    for (const char* const text : {"Äpfel", "Birnen", "äpfel und Birnen"}) {
        ASSERT_TRUE(store.save(nullptr, text).path);
    }
    const auto found = store.matching("apfel");
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0]->title, "äpfel und Birnen");
    EXPECT_EQ(found[1]->title, "Äpfel");
    EXPECT_EQ(store.matching("").size(), 3U);
    EXPECT_EQ(store.matching("pflaume").size(), 0U);
}
