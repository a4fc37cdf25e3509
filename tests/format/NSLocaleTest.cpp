// SPDX-License-Identifier: MIT
// The parts of a locale, and numbers that are formatted with it.
#include "foundation/format/NSLocale.h"

#include <string>
#include <vector>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSException.h"
#include "foundation/objects/NSNumber.h"
#include "tests/format/FormatTesting.h"
#include "tests/kit/Environment.h"
#include "tests/kit/ScratchFolder.h"

using namespace ZQFoundation;
using namespace formattesting;

namespace {

/// No settings but those that a test makes.
struct NoSettings {
    const kit::ScratchFolder folder;
    const kit::Path store{detail::overrides::defaultsFolder, folder / "store"};
    const kit::Path program{detail::overrides::executablePath, folder / "program"};
    const kit::Variable all{"LC_ALL", nullptr};
    const kit::Variable numeric{"LC_NUMERIC", nullptr};
    const kit::Variable lang{"LANG", nullptr};
};

using Words = std::vector<std::string>;

} // namespace

TEST(NSLocale, conventionsOfProgramsGroupNothing) {
    const NSLocale posix = locale("en_US_POSIX");
    EXPECT_EQ(formatted(posix, "%d %.1f %@", 1234567, 1234.5, NSNumber(1234567)), "1234567 1234.5 1234567");
    EXPECT_EQ(posix.decimalSeparator(), ".");
    EXPECT_EQ(posix.groupingSeparator(), "");
    EXPECT_EQ(posix.localeIdentifier(), "en_US_POSIX");
    EXPECT_EQ(formatted(locale("en-us-posix"), "%d", 1234567), "1234567");
}

TEST(NSLocale, partsAreReportedOneByOne) {
    const NSLocale indian = locale("en_IN");
    EXPECT_EQ(indian.decimalSeparator(), ".");
    EXPECT_EQ(indian.groupingSeparator(), ",");
    EXPECT_EQ(indian.groupSize(), 3u);
    EXPECT_EQ(indian.secondaryGroupSize(), 2u);
    EXPECT_EQ(indian.minimumGroupingDigits(), 1u);
    EXPECT_EQ(locale("pl").minimumGroupingDigits(), 2u);
    EXPECT_EQ(locale("de").decimalSeparator(), ",");
    EXPECT_EQ(locale("de").secondaryGroupSize(), 3u);
}

TEST(NSLocale, widthsCountTheSeparators) {
    EXPECT_EQ(formatted(locale("de_DE"), "%-12d|%+d|% d|", 1234567, 1234, 1234),
              "1.234.567   |+1.234| 1.234|");
    EXPECT_EQ(formatted(locale("fr_FR"), "%7d|", 1234), "  1\u202F234|");
}

TEST(NSLocale, noLocaleMeansAPointAndNoGroups) {
    EXPECT_FALSE(NSLocale());
    EXPECT_FALSE(NSLocale(nullptr));
    EXPECT_FALSE(NSLocale::localeWithLocaleIdentifier(nullptr));
    EXPECT_FALSE(NSLocale(NSDictionary()));
    EXPECT_FALSE(NSLocale().localeIdentifier());
    EXPECT_FALSE(NSLocale().decimalSeparator());
    EXPECT_EQ(formatted(nullptr, "%d %.1f %@", 1234567, 1234.5, NSNumber(1234567)), "1234567 1234.5 1234567");
}

TEST(NSLocale, ofADictionaryOnlyTheDecimalSeparatorCounts) {
    const NSLocale comma(NSDictionary{{"NSDecimalSeparator", ","}, {"NSThousandsSeparator", "."}});
    EXPECT_TRUE(comma);
    EXPECT_EQ(comma.localeIdentifier(), "");
    EXPECT_EQ(formatted(comma, "%d %.2f %@", 1234567, 1234.5, NSNumber(0.5)), "1234567 1234,50 0,5");
    const NSDictionary without[] = {
        NSDictionary{{"a", "b"}},
        NSDictionary{{"NSDecimalSeparator", 7}},
        NSDictionary{{"NSDecimalSeparator", ""}},
    };
    for (const NSDictionary& dictionary : without) {
        EXPECT_TRUE(NSLocale(dictionary));
        EXPECT_EQ(formatted(dictionary, "%d %.2f", 1234567, 1234.5), "1234567 1234.50");
    }
    EXPECT_EQ(formatted(NSLocale(NSDictionary{{"NSDecimalSeparator", "::"}}), "%.1f|%8.1f|", 1.5, 1.5),
              "1::5|    1::5|");
}

TEST(NSLocale, onlyDecimalNumbersFollowIt) {
    const NSLocale british = locale("en_GB");
    EXPECT_EQ(formatted(british, "%d %.1f %@ %x", 1000, 1234.5, NSNumber(1000U), 4096),
              "1,000 1,234.5 1,000 1000");
    EXPECT_EQ(formatted(british, "%@ %@ %@", NSString("1000"), "1000.5", nullptr), "1000 1000.5 (null)");
    EXPECT_EQ(formatted(british, "%@", NSArray{1000, 1234567}), "(\n    1000,\n    1234567\n)");
    EXPECT_EQ(formatted(british, "%@", NSDictionary{{"n", 1000}}), "{\n    n = 1000;\n}");
}

TEST(NSLocale, shortNumbersStayWholeWhereTheLanguageWantsIt) {
    const NSLocale spanish = locale("es_ES");
    EXPECT_EQ(formatted(spanish, "%d %d %d %.1f %.1f %@ %@", 999, 1234, 12345, 1234.5, 12345.5,
                        NSNumber(1234), NSNumber(12345)),
              "999 1234 12.345 1234,5 12.345,5 1234 12.345");
    EXPECT_EQ(formatted(spanish, "%6d|%7d|%.5d|", 1234, 12345, 1234), "  1234| 12.345|01.234|");
    EXPECT_EQ(formatted(locale("ee"), "%d %d", 12345, 123456), "12345 123,456");
}

TEST(NSLocale, currentIsTheUsers) {
    const NoSettings none;
    const kit::Arguments arguments(detail::overrides::arguments, Words{"/x/program"});
    EXPECT_EQ(NSLocale::currentLocale().localeIdentifier(), "en_US_POSIX");
    {
        const kit::Variable lang("LANG", "de_DE.UTF-8");
        EXPECT_EQ(NSLocale::currentLocale().localeIdentifier(), "de_DE");
        EXPECT_EQ(NSString::localizedStringWithFormat("%d %.1f %@", 1234567, 0.5, NSNumber(1000)),
                  "1.234.567 0,5 1.000");
        const kit::Variable messages("LC_MESSAGES", "fr_FR.UTF-8"); // for texts, not for numbers
        EXPECT_EQ(NSLocale::currentLocale().localeIdentifier(), "de_DE");
        const kit::Variable numeric("LC_NUMERIC", "es_MX");
        EXPECT_EQ(NSLocale::currentLocale().localeIdentifier(), "es_MX");
        const kit::Variable all("LC_ALL", "en_GB.utf8");
        EXPECT_EQ(NSLocale::currentLocale().localeIdentifier(), "en_GB");
        EXPECT_EQ(NSString::localizedStringWithFormat("%d", 1000), "1,000");
    }
    for (const char* programs : {"C", "POSIX", "C.UTF-8"}) {
        const kit::Variable lang("LANG", "de_DE");
        const kit::Variable all("LC_ALL", programs);
        EXPECT_EQ(NSLocale::currentLocale().localeIdentifier(), "en_US_POSIX") << programs;
        EXPECT_EQ(NSString::localizedStringWithFormat("%d", 1234567), "1234567") << programs;
    }
    const kit::Variable empty("LC_ALL", "");
    const kit::Variable lang("LANG", "pl_PL");
    EXPECT_EQ(NSLocale::currentLocale().localeIdentifier(), "pl_PL");
}

TEST(NSLocale, currentIsFirstOfAllWhatTheDefaultsSay) {
    const NoSettings none;
    const kit::Variable lang("LANG", "de_DE.UTF-8");
    {
        const kit::Arguments arguments(detail::overrides::arguments,
                                       Words{"/x/program", "-AppleLocale", "de_CH"});
        EXPECT_EQ(NSLocale::currentLocale().localeIdentifier(), "de_CH");
        EXPECT_EQ(NSString::localizedStringWithFormat("%.1f", 1234.5), "1'234.5");
    }
    const kit::Arguments arguments(detail::overrides::arguments, Words{"/x/program", "-AppleLocale", ""});
    EXPECT_EQ(NSLocale::currentLocale().localeIdentifier(), "de_DE");
}

TEST(NSLocale, nilFormatIsRaisedWithAndWithoutOne) {
    EXPECT_THROW(NSString::initWithFormat_locale_arguments(nullptr, locale("de_DE"), {}), NSException);
    EXPECT_THROW(NSString::initWithFormat_locale_arguments(nullptr, nullptr, {}), NSException);
    EXPECT_THROW(NSString::localizedStringWithFormat_arguments(nullptr, {}), NSException);
}
