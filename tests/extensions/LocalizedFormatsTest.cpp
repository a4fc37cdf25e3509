// SPDX-License-Identifier: MIT
// Localized texts as formats, and the forms that format nothing.
#include "foundation/format/NSLocale.h"
#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSString.h"
#include "tests/extensions/LocalizedScene.h"
#include "tests/kit/Child.h"

using namespace ZQFoundation;
using localizedscene::Application;
using localizedscene::Text;

namespace {

NSString filled(const char* key, const NSLocale& locale) {
    return NSString::initWithLocalizedFormat_locale(key, locale, 1234567, 2, "x");
}

} // namespace

TEST(LocalizedFormats, aTextIsLookedUpInTheUsersLanguage) {
    const Text rows[] = {
        {"greeting", "Hello", "Gr\u00FC\u00DFe"},
        {"%d files", "%d files", "%d Dateien"}, // no format here
        {"share", "100%", "100% (alle)"},
        {"half", "50%% done", "50%% fertig"},
        {"empty", "", ""},
        {"missing %@", "missing %@", "missing %@"},
        {"Close", "Close", "Close"}, // in another table
        {"", "", ""},
    };
    for (const bool german : {false, true}) {
        const Application application(german ? "de" : "en");
        for (const Text& row : rows) {
            EXPECT_EQ(NSString::initWithLocalizedString(row.key), german ? row.german : row.english)
                << row.key;
        }
        EXPECT_EQ(NSString::initWithLocalizedString(nullptr), "");
    }
}

TEST(LocalizedFormats, theLocalizedTextIsTheFormat) {
    const Application application("de");
    EXPECT_EQ(NSString::initWithLocalizedFormat("%d files", 3), "3 Dateien");
    EXPECT_EQ(NSString::initWithLocalizedFormat("half"), "50% fertig");
    EXPECT_EQ(NSString::initWithLocalizedFormat("greeting"), "Gr\u00FC\u00DFe");
    EXPECT_EQ(NSString::initWithLocalizedFormat("empty", 3), "");
    EXPECT_EQ(NSString::initWithLocalizedFormat("missing %@ %03d", "key", 7), "missing key 007");
    EXPECT_EQ(NSString::initWithLocalizedFormat("%@", NSArray{1}).hasPrefix("<(\n    1\n)|"), true);
}

TEST(LocalizedFormats, translationsMayPutTheArgumentsInAnotherOrder) {
    {
        const Application english("en");
        EXPECT_EQ(NSString::initWithLocalizedFormat("%d of %d, %@", 2, 7, "a.txt"), "2 of 7, a.txt");
    }
    const Application german("de");
    EXPECT_EQ(NSString::initWithLocalizedFormat("%d of %d, %@", 2, 7, "a.txt"), "a.txt: 2 von 7");
}

TEST(LocalizedFormats, whatATranslationAsksForAndTheCallerDoesNotGiveIsZero) {
    const Application application("de");
    EXPECT_EQ(NSString::initWithLocalizedFormat("%.2f m", 1.5), "1.50 Meter, 0");
    EXPECT_EQ(NSString::initWithLocalizedFormat("%d of %d, %@"), "(null): 0 von 0");
    EXPECT_EQ(NSString::initWithLocalizedFormat("stored", 1, 2), "2"); // %n takes one and stores nothing
}

TEST(LocalizedFormats, aLocaleDecidesTheSeparators) {
    const Application application("de");
    const NSLocale german = NSLocale::localeWithLocaleIdentifier("de_DE");
    EXPECT_EQ(filled("%d of %d, %@", german), "x: 1.234.567 von 2");
    EXPECT_EQ(filled("%d of %d, %@", NSLocale::localeWithLocaleIdentifier("en_US")), "x: 1,234,567 von 2");
    EXPECT_EQ(filled("%d of %d, %@", nullptr), "x: 1234567 von 2");
    EXPECT_EQ(NSString::initWithLocalizedFormat("%d of %d, %@", 1234567, 2, "x"), "x: 1234567 von 2");
    EXPECT_EQ(NSString::initWithLocalizedFormat_locale("%.2f m", german, 1234.5), "1.234,50 Meter, 0");
    EXPECT_EQ(NSString::initWithLocalizedFormat_locale(
                  "%.2f m", NSLocale(NSDictionary{{"NSDecimalSeparator", ","}, {"NSGroupingSeparator", "."}}),
                  1234.5),
              "1234,50 Meter, 0");
}

TEST(LocalizedFormats, listFormsTakeAStartedList) {
    const Application application("de");
    const int count = 1234;
    const Argument arguments[] = {Argument(count)};
    EXPECT_EQ(NSString::initWithLocalizedFormat_arguments("%d files", {arguments, 1}), "1234 Dateien");
    EXPECT_EQ(NSString::initWithLocalizedFormat_locale_arguments(
                  "%d files", NSLocale::localeWithLocaleIdentifier("de_DE"), {arguments, 1}),
              "1.234 Dateien");
    EXPECT_EQ(NSString::initWithLocalizedFormat_locale_arguments("%d files", nullptr, {arguments, 1}),
              "1234 Dateien");
}

TEST(LocalizedFormats, theNewStringFormsFormatNothing) {
    const Application application("de");
    EXPECT_EQ(NSString::stringWithLocalizedFormat("100%"), "100%");
    EXPECT_EQ(NSString::localizedStringWithLocalizedFormat("100%"), "100%");
    EXPECT_EQ(NSString::stringWithLocalizedFormat("%d files"), "%d Dateien");
    EXPECT_EQ(NSString::stringWithLocalizedFormat("%d files", 3), "%d Dateien");
    EXPECT_EQ(NSString::stringWithLocalizedFormat("half", 3, "x"), "50%% fertig");
    EXPECT_EQ(NSString::localizedStringWithLocalizedFormat("%d files", 3), "%d Dateien");
    EXPECT_EQ(NSString::localizedStringWithLocalizedFormat("half"), "50%% fertig");
    EXPECT_EQ(NSString::localizedStringWithLocalizedFormat("1234567 %@"), "1234567 %@");
    EXPECT_EQ(NSString::stringWithLocalizedFormat(nullptr), "");
}

TEST(LocalizedFormats, aKeyWithoutAnyTableIsItsOwnText) {
    const kit::ScratchFolder folder;
    const kit::Path program(detail::overrides::executablePath, folder / "program");
    EXPECT_EQ(NSString::initWithLocalizedString("a %d"), "a %d");
    EXPECT_EQ(NSString::initWithLocalizedFormat("a %d", 1), "a 1");
    EXPECT_EQ(NSString::stringWithLocalizedFormat("a %d"), "a %d");
}

TEST(LocalizedFormats, theLanguageIsThatOfTheProcess) {
    const char* const rows[][2] = {{"de_AT:en", "a: 2 von 7 3 Dateien"},
                                   {"en_GB", "2 of 7, a 3 files"},
                                   {"fr", "2 of 7, a 3 files"}}; // what was developed in
    for (const auto& [languages, expected] : rows) {
        const std::string text = kit::inProcessOfItsOwn({{"LANGUAGE", languages}}, [] {
            const Application application(std::string(std::getenv("LANGUAGE")).c_str());
            return NSString::initWithLocalizedFormat("%d of %d, %@", 2, 7, "a").utf8() + " " +
                   NSString::initWithLocalizedFormat("%d files", 3).utf8();
        });
        EXPECT_EQ(text, expected) << languages;
    }
}
