// SPDX-License-Identifier: MIT
// The exported localized functions: which text they find, and that they fill in nothing.
#include "extensions/LocalizedStrings.h"

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSNumber.h"
#include "tests/extensions/LocalizedScene.h"

using namespace ZQFoundation;
using localizedscene::Application;
using localizedscene::Text;

namespace {

/// All eight functions, asked for a key of the default table of the main bundle. Nobody reads the comments.
std::vector<NSString> answersOfAll(const NSString& key, const char* defaultValue = "") {
    const Argument arguments[] = {Argument(7)};
    const ArgumentList list(arguments, 1);
    const NSBundle bundle = NSBundle::mainBundle();
    return {ZQLocalizedStringWithFormat(key, "%@ %n %s", 7),
            ZQLocalizedStringWithFormatv(key, NSString(), list),
            ZQLocalizedStringFromTableWithFormat(key, nullptr, "%@ %n %s", 7),
            ZQLocalizedStringFromTableWithFormatv(key, "", "comment", list),
            ZQLocalizedStringFromTableInBundleWithFormat(key, "Localizable", bundle, "comment", 7),
            ZQLocalizedStringFromTableInBundleWithFormatv(key, nullptr, bundle, "comment", list),
            ZQLocalizedStringWithDefaultValueWithFormat(key, nullptr, bundle, defaultValue, "comment", 7),
            ZQLocalizedStringWithDefaultValueWithFormatv(key, "", bundle, defaultValue, "comment", list)};
}

void expectAll(const char* key, const char* expected) {
    for (const NSString& answer : answersOfAll(key)) {
        EXPECT_EQ(answer, expected) << key;
    }
}

} // namespace

TEST(LocalizedStrings, textsWithoutConversionsComeBackWithTheirPercentSigns) {
    const Text rows[] = {
        {"greeting", "Hello", "Gr\u00FC\u00DFe"},
        {"half", "50% done", "50% fertig"},
        {"empty", "", ""},
        {"100%", "100", "100"}, // a conversion that the end cuts off
        {"Done", "Done", "Done"},
        {"25%% done", "25% done", "25% done"},
    };
    for (const bool german : {false, true}) {
        const Application application(german ? "de" : "en");
        for (const Text& row : rows) {
            expectAll(row.key, german ? row.german : row.english);
        }
    }
}

TEST(LocalizedStrings, noConversionIsFilledWithWhatTheCallerGives) {
    const Application application("de");
    expectAll("%d files", "0 Dateien");
    expectAll("%@", "<(null)|0|(null)|0x0|    0|0.000000>");
    expectAll("two", "(null) (null)");
    expectAll("%d of %d, %@", "(null): 0 von 0");
    expectAll("stored", "0");
}

TEST(LocalizedStrings, argumentsOfAnyKindMayFollowAndNoneIsRead) {
    const Application application("de");
    EXPECT_EQ(ZQLocalizedStringWithFormat("%d files", "", 3), "0 Dateien");
    EXPECT_EQ(ZQLocalizedStringWithFormat("%d files", ""), "0 Dateien");
    EXPECT_EQ(ZQLocalizedStringWithFormat("two", "", NSString("a"), "b"), "(null) (null)");
    EXPECT_EQ(ZQLocalizedStringWithFormat("two", "", NSArray{1}, 2.5, nullptr), "(null) (null)");
    EXPECT_EQ(ZQLocalizedStringFromTableWithFormat("Open %@", "Menu", "", NSString("a")),
              "(null) \u00F6ffnen");
    EXPECT_EQ(ZQLocalizedStringFromTableInBundleWithFormat("Open %@", "Menu", NSBundle::mainBundle(), "",
                                                           NSNumber(1)),
              "(null) \u00F6ffnen");
    EXPECT_EQ(ZQLocalizedStringWithDefaultValueWithFormat("missing", "Menu", NSBundle::mainBundle(), "%@!",
                                                          "", std::string("x")),
              "(null)!");
}

TEST(LocalizedStrings, aTableIsSearchedByItsName) {
    const Application application("de");
    const NSBundle bundle = NSBundle::mainBundle();
    EXPECT_EQ(ZQLocalizedStringFromTableWithFormat("Close", "Menu", ""), "Schlie\u00DFen");
    EXPECT_EQ(ZQLocalizedStringFromTableWithFormatv("Close", "Menu", "", {}), "Schlie\u00DFen");
    EXPECT_EQ(ZQLocalizedStringFromTableInBundleWithFormat("Close", "Menu", bundle, ""), "Schlie\u00DFen");
    EXPECT_EQ(ZQLocalizedStringFromTableInBundleWithFormatv("Close", "Menu", bundle, "", {}),
              "Schlie\u00DFen");
    EXPECT_EQ(ZQLocalizedStringWithDefaultValueWithFormat("Close", "Menu", bundle, "x", ""),
              "Schlie\u00DFen");
    EXPECT_EQ(ZQLocalizedStringWithFormat("Close", ""), "Close");
    EXPECT_EQ(ZQLocalizedStringFromTableWithFormat("Close", "None", ""), "Close");
    EXPECT_EQ(ZQLocalizedStringFromTableWithFormat("greeting", "Menu", ""), "greeting");
}

TEST(LocalizedStrings, aBundleOtherThanTheMainOneIsSearchedWhenItIsGiven) {
    const Application application("de");
    const kit::ScratchFolder folder;
    folder.write("F.framework/Resources/Info.plist", "{ CFBundleDevelopmentRegion = en; }");
    folder.write("F.framework/Resources/de.lproj/Localizable.strings", "\"greeting\" = \"Servus %%\";");
    const NSBundle bundle = NSBundle::bundleWithPath(folder / "F.framework");
    EXPECT_EQ(ZQLocalizedStringFromTableInBundleWithFormat("greeting", nullptr, bundle, ""), "Servus %");
    EXPECT_EQ(ZQLocalizedStringFromTableInBundleWithFormatv("greeting", nullptr, bundle, "", {}), "Servus %");
    EXPECT_EQ(ZQLocalizedStringWithDefaultValueWithFormat("greeting", "", bundle, "x", ""), "Servus %");
    EXPECT_EQ(ZQLocalizedStringWithDefaultValueWithFormatv("half", "", bundle, "x", "", {}), "x");
}

TEST(LocalizedStrings, aDefaultValueReplacesAMissingKey) {
    const Application application("en");
    const NSBundle bundle = NSBundle::mainBundle();
    struct Row {
        const char* key;
        NSString defaultValue;
        const char* expected;
    };
    const Row rows[] = {
        {"no such", "Fallback", "Fallback"}, {"no such", "%d%%", "0%"},         {"no such", "", "no such"},
        {"no such", nullptr, "no such"},     {"greeting", "Fallback", "Hello"}, {"empty", "Fallback", ""},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(ZQLocalizedStringWithDefaultValueWithFormat(row.key, nullptr, bundle, row.defaultValue, ""),
                  row.expected);
        EXPECT_EQ(
            ZQLocalizedStringWithDefaultValueWithFormatv(row.key, nullptr, bundle, row.defaultValue, "", {}),
            row.expected);
    }
    expectAll("no such", "no such");
}

TEST(LocalizedStrings, aNilKeyGivesTheDefaultValueElseAnEmptyText) {
    const Application application("en");
    EXPECT_EQ(ZQLocalizedStringWithFormat(nullptr, ""), "");
    EXPECT_EQ(ZQLocalizedStringWithDefaultValueWithFormat(nullptr, nullptr, NSBundle::mainBundle(), "x", ""),
              "x");
}

TEST(LocalizedStrings, aNilBundleHasNoTexts) {
    const Application application("en");
    struct Row {
        const char* key;
        NSString defaultValue;
        const char* expected;
    };
    const Row rows[] = {{"greeting", "Fallback", "Fallback"}, {"greeting", "50%%", "50%"},
                        {"greeting", "", "greeting"},         {"25%% done", nullptr, "25% done"},
                        {nullptr, "Fallback", "Fallback"},    {nullptr, nullptr, ""}};
    const NSBundle none;
    for (const Row& row : rows) {
        EXPECT_EQ(ZQLocalizedStringWithDefaultValueWithFormat(row.key, "Menu", none, row.defaultValue, ""),
                  row.expected);
        EXPECT_EQ(
            ZQLocalizedStringWithDefaultValueWithFormatv(row.key, nullptr, none, row.defaultValue, "", {}),
            row.expected);
    }
    EXPECT_EQ(ZQLocalizedStringFromTableInBundleWithFormat("greeting", nullptr, none, ""), "greeting");
    EXPECT_EQ(ZQLocalizedStringFromTableInBundleWithFormatv("%d files", "Menu", none, "", {}), "0 files");
    EXPECT_EQ(ZQLocalizedStringFromTableInBundleWithFormat(nullptr, nullptr, none, ""), "");
}

TEST(LocalizedStrings, noValueOfTheCallerIsPutIn) {
    const Application application("en");
    for (const char* conversion :
         {"%d",   "%i",   "%u",   "%x",        "%X",  "%o",   "%ld",   "%lld",       "%-5d", "%05d",
          "%.3d", "%f",   "%g",   "%e",        "%@",  "%10@", "%s",    "%c",         "%C",   "%p",
          "%1$d", "%1$@", "%2$@", "%2$@ %1$d", "%*d", "%.*d", "%d %@", "%@ %d %@ %d"}) {
        const NSString key = NSString("<").stringByAppendingString(conversion).stringByAppendingString(">");
        const NSString without = ZQLocalizedStringWithFormat(key, nullptr);
        EXPECT_FALSE(without.containsString("7")) << conversion;
        for (const NSString& answer : answersOfAll(key)) {
            EXPECT_EQ(answer, without) << conversion;
        }
    }
}
