// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "extensions/LocalizedStrings.h"
#include "foundation/format/NSLocale.h"
#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSNumber.h"
#include "tests/kit/Values.h"
#include "tests/process/Scene.h"

using namespace ZQFoundation;
using kit::utf8Of;

namespace {

using Words = std::vector<std::string>;
using Texts = std::map<std::string, std::string>;

constexpr const char* table = R"(
"Done" = "Finished";
"Share" = "50%% done";
"Whole" = "100%";
"Blank" = "";
"%d files" = "%d documents";
"%@ in %@" = "%2$@: %1$@";
"Price %.2f" = "Costs %.2f";
"Raw" = "%d %@ %% %";
)";

/// A main bundle whose tables are not localized, so that no language matters.
class LocalizedFormattingFromFacts : public testing::Test {
protected:
    LocalizedFormattingFromFacts() {
        folder.write("V.app/Contents/Resources/Localizable.strings", table);
        folder.write("V.app/Contents/Resources/Other.strings",
                     "\"Done\" = \"Elsewhere\"; \"P\" = \"100%%\";");
        folder.write("W.app/Contents/Resources/Localizable.strings",
                     "\"Done\" = \"By W\"; \"Blank\" = \"\";");
        folder.write("W.app/Contents/Resources/Other.strings", "\"Done\" = \"Elsewhere in W\";");
    }

    NSBundle other() const { return NSBundle::bundleWithPath(folder / "W.app"); }

    const scene::Folder folder;
    const scene::NoLanguages languages{};
    const scene::Path store{detail::overrides::defaultsFolder, folder / "store"};
    const scene::Path program{detail::overrides::executablePath, folder / "V.app/Contents/MacOS/V"};
    const scene::Arguments arguments{detail::overrides::arguments, Words{"/x/viewer"}};
};

NSLocale localeOf(const char* identifier) { return NSLocale::localeWithLocaleIdentifier(identifier); }

/// The text with the arguments as a started list.
template <class... Arguments>
NSString listed(NSString (*make)(const NSString&, ArgumentList), const NSString& key,
                const Arguments&... arguments) {
    const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
    return make(key, packed.list());
}

} // namespace

// Initialisers

TEST_F(LocalizedFormattingFromFacts, initialisesWithTheTextUnformatted) {
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedString("Done")), "Finished");
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedString("Share")), "50%% done");
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedString("Whole")), "100%");
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedString("%d files")), "%d documents");
}

TEST_F(LocalizedFormattingFromFacts, fallsBackToTheKey) {
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedString("No such key")), "No such key");
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedString("100% %d")), "100% %d");
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedFormat("%d keys of %@", 3, "none")), "3 keys of none");
    EXPECT_EQ(utf8Of(NSString::stringWithLocalizedFormat("100%")), "100%");
    EXPECT_EQ(utf8Of(NSString::localizedStringWithLocalizedFormat("100% %d")), "100% %d");
    EXPECT_EQ(utf8Of(ZQLocalizedStringWithFormat("No such key", nullptr)), "No such key");
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedString("done")), "done") << "keys are exact";
}

TEST_F(LocalizedFormattingFromFacts, keepsATextThatIsEmpty) {
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedString("Blank")), "");
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedFormat("Blank")), "");
    EXPECT_EQ(utf8Of(NSString::stringWithLocalizedFormat("Blank")), "");
    EXPECT_EQ(utf8Of(ZQLocalizedStringWithFormat("Blank", nullptr)), "");
    EXPECT_EQ(
        utf8Of(ZQLocalizedStringWithDefaultValueWithFormat("Blank", nullptr, other(), "Fallback", nullptr)),
        "");
}

TEST_F(LocalizedFormattingFromFacts, givesTheEmptyTextForANilKey) {
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedString(nullptr)), "");
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedFormat(nullptr)), "");
    EXPECT_EQ(utf8Of(NSString::stringWithLocalizedFormat(nullptr)), "");
    EXPECT_EQ(utf8Of(NSString::localizedStringWithLocalizedFormat(nullptr)), "");
    EXPECT_EQ(utf8Of(ZQLocalizedStringWithFormat(nullptr, nullptr)), "");
    EXPECT_EQ(
        utf8Of(ZQLocalizedStringWithDefaultValueWithFormat(nullptr, nullptr, other(), "Fallback", nullptr)),
        "Fallback");
}

TEST_F(LocalizedFormattingFromFacts, formatsTheCallersValues) {
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedFormat("%d files", 3)), "3 documents");
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedFormat("%@ in %@", "a", NSString("b"))), "b: a");
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedFormat("Share")), "50% done");
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedFormat("Price %.2f", 1234.5)), "Costs 1234.50");
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedFormat("%d files", 1234567)), "1234567 documents");
}

TEST_F(LocalizedFormattingFromFacts, formatsAStartedListTheSame) {
    EXPECT_EQ(utf8Of(listed(&NSString::initWithLocalizedFormat_arguments, "%d files", 3)), "3 documents");
    EXPECT_EQ(utf8Of(listed(&NSString::initWithLocalizedFormat_arguments, "%@ in %@", "a", "b")), "b: a");
    const detail::PackedArguments<1> packed(1234.5);
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedFormat_locale_arguments("Price %.2f", localeOf("de_DE"),
                                                                        packed.list())),
              "Costs 1.234,50");
    EXPECT_EQ(
        utf8Of(NSString::initWithLocalizedFormat_locale_arguments("Price %.2f", nullptr, packed.list())),
        "Costs 1234.50");
}

// Locales

TEST_F(LocalizedFormattingFromFacts, writesNumbersAsTheLocaleDoes) {
    const struct {
        const char* locale;
        const char* integer;
        const char* real;
    } rows[] = {
        {"de_DE", "1.234.567 documents", "Costs 1.234,50"},
        {"en_US", "1,234,567 documents", "Costs 1,234.50"},
        {"en_GB", "1,234,567 documents", "Costs 1,234.50"},
        {"en_US_POSIX", "1234567 documents", "Costs 1234.50"},
        {nullptr, "1234567 documents", "Costs 1234.50"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.locale == nullptr ? "nil" : row.locale);
        const NSLocale locale = row.locale == nullptr ? NSLocale() : localeOf(row.locale);
        EXPECT_EQ(utf8Of(NSString::initWithLocalizedFormat_locale("%d files", locale, 1234567)), row.integer);
        EXPECT_EQ(utf8Of(NSString::initWithLocalizedFormat_locale("Price %.2f", locale, 1234.5)), row.real);
    }
}

TEST_F(LocalizedFormattingFromFacts, groupsDecimalIntegersAndFixedRealsAlone) {
    const NSLocale german = localeOf("de_DE");
    const auto with = [&](const char* format, const auto& value) {
        return utf8Of(NSString::initWithLocalizedFormat_locale(format, german, value));
    };
    EXPECT_EQ(with("%d", 1234567), "1.234.567");
    EXPECT_EQ(with("%i", -1234567), "-1.234.567");
    EXPECT_EQ(with("%u", 1234567u), "1.234.567");
    EXPECT_EQ(with("%lld", INT64_MAX), "9.223.372.036.854.775.807");
    EXPECT_EQ(with("%d", 999), "999");
    EXPECT_EQ(with("%d", 1000), "1.000");
    EXPECT_EQ(with("%f", 1234.5), "1.234,500000");
    EXPECT_EQ(with("%g", 1234.5), "1.234,5");
    EXPECT_EQ(with("%e", 1234.5), "1,234500e+03");
    EXPECT_EQ(with("%x", 1234567), "12d687");
    EXPECT_EQ(with("%X", 1234567), "12D687");
    EXPECT_EQ(with("%o", 1234567), "4553207");
    EXPECT_EQ(with("%c", 'x'), "x");
    EXPECT_EQ(with("%s", "1234567.5"), "1234567.5");
    EXPECT_EQ(with("%@", NSString("1234567.5")), "1234567.5");
    EXPECT_EQ(with("%@", NSNumber(1000)), "1.000");
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedFormat_locale("%@", localeOf("en_GB"), NSNumber(1000))),
              "1,000");
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedFormat("%@", NSNumber(1000))), "1000");
}

TEST_F(LocalizedFormattingFromFacts, takesOnlyTheDecimalSeparatorOfADictionary) {
    const NSLocale locale = NSDictionary{{"NSDecimalSeparator", ","}, {"NSGroupingSeparator", "."}};
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedFormat_locale("Price %.2f", locale, 1234.5)),
              "Costs 1234,50");
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedFormat_locale("%d files", locale, 1234567)),
              "1234567 documents");
}

TEST_F(LocalizedFormattingFromFacts, takesTheUsersLocaleWhereThePlatformDoes) {
    const scene::Variable german("LC_ALL", "de_DE.UTF-8");
    EXPECT_EQ(utf8Of(NSString::localizedStringWithFormat("%d %.2f", 1234567, 1234.5)), "1.234.567 1.234,50");
    EXPECT_EQ(utf8Of(NSString::stringWithFormat("%d %.2f", 1234567, 1234.5)), "1234567 1234.50");
    EXPECT_EQ(utf8Of(NSString::initWithLocalizedFormat("%d files", 1234567)), "1234567 documents");
    const scene::Variable english("LC_ALL", "en_US.UTF-8");
    EXPECT_EQ(utf8Of(NSString::localizedStringWithFormat("%d %.2f", 1234567, 1234.5)), "1,234,567 1,234.50");
    const scene::Variable plain("LC_ALL", "C");
    EXPECT_EQ(utf8Of(NSString::localizedStringWithFormat("%d %.2f", 1234567, 1234.5)), "1234567 1234.50");
    const scene::Arguments chosen(detail::overrides::arguments, Words{"/x/viewer", "-AppleLocale", "de_DE"});
    EXPECT_EQ(utf8Of(NSString::localizedStringWithFormat("%d %.2f", 1234567, 1234.5)), "1.234.567 1.234,50");
}

// The text as it stands

TEST_F(LocalizedFormattingFromFacts, doesNotFormatTheTextOfTheStringOperations) {
    for (const char* language : {"C", "de_DE.UTF-8"}) {
        const scene::Variable all("LC_ALL", language);
        const Texts rows = {{"Whole", "100%"},         {"Share", "50%% done"}, {"%d files", "%d documents"},
                            {"Raw", "%d %@ %% %"},     {"1234.5", "1234.5"},   {"100%", "100%"},
                            {"%@ in %@", "%2$@: %1$@"}};
        for (const auto& [key, text] : rows) {
            EXPECT_EQ(utf8Of(NSString::stringWithLocalizedFormat(key)), text);
            EXPECT_EQ(utf8Of(NSString::localizedStringWithLocalizedFormat(key)), text);
        }
    }
}

TEST_F(LocalizedFormattingFromFacts, ignoresFurtherArgumentsOfTheStringOperations) {
    EXPECT_EQ(utf8Of(NSString::stringWithLocalizedFormat("%d files", 3)), "%d documents");
    EXPECT_EQ(utf8Of(NSString::stringWithLocalizedFormat("%@ in %@", "a", NSNumber(2))), "%2$@: %1$@");
    EXPECT_EQ(utf8Of(NSString::localizedStringWithLocalizedFormat("%d files", 3)), "%d documents");
}

// The exported functions

TEST_F(LocalizedFormattingFromFacts, functionsReturnTextsWithoutConversions) {
    EXPECT_EQ(utf8Of(ZQLocalizedStringWithFormat("Done", "a comment")), "Finished");
    EXPECT_EQ(utf8Of(ZQLocalizedStringWithFormat("Share", "a comment")), "50% done");
    EXPECT_EQ(utf8Of(ZQLocalizedStringWithFormat("50%% done", nullptr)), "50% done");
    EXPECT_EQ(utf8Of(ZQLocalizedStringWithFormat("Whole", nullptr)), "100") << "a conversion that is cut off";
    EXPECT_EQ(utf8Of(ZQLocalizedStringWithFormatv("Done", nullptr, {})), "Finished");
    EXPECT_EQ(utf8Of(ZQLocalizedStringWithFormatv("Share", nullptr, {})), "50% done");
}

TEST_F(LocalizedFormattingFromFacts, functionsSearchTheTableThatTheyAreGiven) {
    EXPECT_EQ(utf8Of(ZQLocalizedStringFromTableWithFormat("Done", "Other", nullptr)), "Elsewhere");
    EXPECT_EQ(utf8Of(ZQLocalizedStringFromTableWithFormatv("P", "Other", nullptr, {})), "100%");
    EXPECT_EQ(utf8Of(ZQLocalizedStringFromTableWithFormat("Done", nullptr, nullptr)), "Finished");
    EXPECT_EQ(utf8Of(ZQLocalizedStringFromTableWithFormat("Done", "", nullptr)), "Finished");
    EXPECT_EQ(utf8Of(ZQLocalizedStringFromTableWithFormat("Done", "Missing", nullptr)), "Done");
    EXPECT_EQ(utf8Of(ZQLocalizedStringFromTableWithFormat("Share", "Other", nullptr)), "Share")
        << "other tables are not searched";
}

TEST_F(LocalizedFormattingFromFacts, functionsSearchTheBundleThatTheyAreGiven) {
    EXPECT_EQ(utf8Of(ZQLocalizedStringFromTableInBundleWithFormat("Done", nullptr, other(), nullptr)),
              "By W");
    EXPECT_EQ(utf8Of(ZQLocalizedStringFromTableInBundleWithFormat("Done", "Other", other(), nullptr)),
              "Elsewhere in W");
    EXPECT_EQ(utf8Of(ZQLocalizedStringFromTableInBundleWithFormatv("Done", "Other", other(), nullptr, {})),
              "Elsewhere in W");
    EXPECT_EQ(utf8Of(ZQLocalizedStringFromTableInBundleWithFormat("Share", nullptr, other(), nullptr)),
              "Share");
    EXPECT_EQ(utf8Of(ZQLocalizedStringFromTableInBundleWithFormat("Share", nullptr, NSBundle::mainBundle(),
                                                                  nullptr)),
              "50% done");
}

TEST_F(LocalizedFormattingFromFacts, functionsFallBackToTheDefaultValue) {
    const auto with = [this](const char* key, const NSString& value) {
        const NSString text =
            ZQLocalizedStringWithDefaultValueWithFormat(key, nullptr, other(), value, "a comment");
        EXPECT_EQ(
            utf8Of(ZQLocalizedStringWithDefaultValueWithFormatv(key, nullptr, other(), value, nullptr, {})),
            utf8Of(text));
        return utf8Of(text);
    };
    EXPECT_EQ(with("Missing", "Fallback"), "Fallback");
    EXPECT_EQ(with("Missing", "100%% of it"), "100% of it");
    EXPECT_EQ(with("Missing", ""), "Missing");
    EXPECT_EQ(with("Missing", nullptr), "Missing");
    EXPECT_EQ(with("Done", "Fallback"), "By W");
}

TEST_F(LocalizedFormattingFromFacts, functionsNeverPutInTheCallersValues) {
    const int number = 471147;
    const NSString value("secret");
    for (const char* conversion : {"%d",
                                   "%i",
                                   "%u",
                                   "%x",
                                   "%X",
                                   "%o",
                                   "%ld",
                                   "%lld",
                                   "%5d",
                                   "%-5d",
                                   "%05d",
                                   "%.3d",
                                   "%f",
                                   "%g",
                                   "%e",
                                   "%@",
                                   "%10@",
                                   "%s",
                                   "%c",
                                   "%C",
                                   "%p",
                                   "%1$d",
                                   "%1$@",
                                   "%2$@",
                                   "%2$@ %1$d",
                                   "%*d",
                                   "%.*d",
                                   "%d %@",
                                   "%@ %d %@ %d %@ %d"}) {
        SCOPED_TRACE(conversion);
        const NSString key = NSString("<").stringByAppendingString(conversion).stringByAppendingString(">");
        const detail::PackedArguments<3> packed(number, value, number);
        const NSString texts[] = {
            ZQLocalizedStringWithFormat(key, nullptr, number, value, number),
            ZQLocalizedStringWithFormat(key, nullptr, number),
            ZQLocalizedStringWithFormatv(key, nullptr, packed.list()),
            ZQLocalizedStringFromTableWithFormat(key, "Other", nullptr, value, number),
            ZQLocalizedStringFromTableWithFormatv(key, "Other", nullptr, packed.list()),
            ZQLocalizedStringFromTableInBundleWithFormat(key, nullptr, other(), nullptr, number, value),
            ZQLocalizedStringFromTableInBundleWithFormatv(key, nullptr, other(), nullptr, packed.list()),
            ZQLocalizedStringWithDefaultValueWithFormat("K", nullptr, other(), key, nullptr, value, number),
            ZQLocalizedStringWithDefaultValueWithFormatv("K", nullptr, other(), key, nullptr, packed.list()),
        };
        for (const NSString& text : texts) {
            EXPECT_TRUE(text.hasPrefix("<") && text.hasSuffix(">")) << utf8Of(text);
            for (const char* shown : {"471147", "7306b", "7306B", "1630153", "secret"}) {
                EXPECT_FALSE(text.containsString(shown)) << utf8Of(text);
            }
            EXPECT_EQ(utf8Of(text), utf8Of(texts[0])) << "the values make no difference";
        }
    }
}

TEST_F(LocalizedFormattingFromFacts, functionsRenderConversionsAsDocumented) {
    EXPECT_EQ(utf8Of(ZQLocalizedStringWithFormat("%d files", nullptr, 3)), "0 documents");
    EXPECT_EQ(utf8Of(ZQLocalizedStringWithFormat("a %@ b", nullptr, NSString("x"))), "a (null) b");
}

// Languages: chosen once in a process

namespace {

constexpr const char* bundleVariable = "ZQ_TEST_LOCALIZED_BUNDLE";

std::string line(const char* name, const NSString& text) {
    return "<" + std::string(name) + "=" + utf8Of(text) + ">\n";
}

/// Writes what the bundle in the variable gives, when this program is run again for that.
struct Witness {
    Witness() {
        const char* const folder = std::getenv(bundleVariable);
        if (folder == nullptr) {
            return;
        }
        const std::string place = folder;
        const scene::Path program(detail::overrides::executablePath, place + "/V.app/Contents/MacOS/V");
        const NSBundle other = NSBundle::bundleWithPath(place + "/W.app");
        const std::string lines =
            line("init", NSString::initWithLocalizedString("Done")) +
            line("files", NSString::initWithLocalizedFormat("%d files", 3)) +
            line("many", NSString::initWithLocalizedFormat("%d files", 1234567)) +
            line("price",
                 NSString::initWithLocalizedFormat_locale("Price %.2f", NSLocale::currentLocale(), 1234.5)) +
            line("order", NSString::initWithLocalizedFormat("%@ in %@", "a", "b")) +
            line("raw", NSString::stringWithLocalizedFormat("%d files")) +
            line("localizedRaw", NSString::localizedStringWithLocalizedFormat("%d files")) +
            line("function", ZQLocalizedStringWithFormat("Half", nullptr)) +
            line("table", ZQLocalizedStringFromTableWithFormat("Done", "Other", nullptr)) +
            line("bundle", ZQLocalizedStringFromTableInBundleWithFormat("Done", nullptr, other, nullptr)) +
            line("default", ZQLocalizedStringWithDefaultValueWithFormat("Missing", nullptr, other, "Fallback",
                                                                        nullptr)) +
            line("english only", NSString::initWithLocalizedString("Only English")) +
            line("number", NSString::localizedStringWithFormat("%d", 1234567));
        ::_exit(::write(1, lines.data(), lines.size()) < 0 ? 1 : 0);
    }
};

const Witness witness;

/// The lines that a fresh process writes.
Texts textsIn(const scene::Folder& folder, const char* languages, const char* locale) {
    const std::string output = scene::runAgain({{bundleVariable, folder.path()},
                                                {"XDG_CONFIG_HOME", folder / "config"},
                                                {"LANGUAGE", languages},
                                                {"LC_ALL", locale}},
                                               {"Viewer"});
    Texts texts;
    for (std::size_t start = output.find('<'); start != std::string::npos;
         start = output.find("\n<", start)) {
        start += output[start] == '\n' ? 1 : 0;
        const std::size_t sign = output.find('=', start);
        const std::size_t end = output.find(">\n", start);
        texts[output.substr(start + 1, sign - start - 1)] = output.substr(sign + 1, end - sign - 1);
    }
    return texts;
}

/// Two bundles with English and German tables; English is what they were developed in.
void layOut(const scene::Folder& folder) {
    const std::string resources = "V.app/Contents/Resources/";
    folder.write("V.app/Contents/Info.plist", "{ CFBundleDevelopmentRegion = en; }");
    folder.write(resources + "en.lproj/Localizable.strings",
                 "\"Done\" = \"Finished\"; \"Half\" = \"50%% done\"; \"Only English\" = \"Found\";");
    folder.write(resources + "de.lproj/Localizable.strings",
                 "\"Done\" = \"Fertig\"; \"Half\" = \"50%% fertig\"; \"%d files\" = \"%d Dateien\";"
                 "\"Price %.2f\" = \"Preis %.2f\"; \"%@ in %@\" = \"%2$@ mit %1$@\";");
    folder.write(resources + "en.lproj/Other.strings", "\"Done\" = \"Elsewhere\";");
    folder.write(resources + "de.lproj/Other.strings", "\"Done\" = \"Anderswo\";");
    folder.write("W.app/Contents/Resources/en.lproj/Localizable.strings", "\"Done\" = \"By W\";");
    folder.write("W.app/Contents/Resources/de.lproj/Localizable.strings", "\"Done\" = \"Von W\";");
}

const Texts germanTexts = {
    {"init", "Fertig"},
    {"files", "3 Dateien"},
    {"many", "1234567 Dateien"},
    {"price", "Preis 1.234,50"},
    {"order", "b mit a"},
    {"raw", "%d Dateien"},
    {"localizedRaw", "%d Dateien"},
    {"function", "50% fertig"},
    {"table", "Anderswo"},
    {"bundle", "Von W"},
    {"default", "Fallback"},
    {"english only", "Only English"},
    {"number", "1.234.567"},
};

const Texts englishTexts = {
    {"init", "Finished"},    {"files", "3 files"}, {"many", "1234567 files"},    {"price", "Price 1,234.50"},
    {"order", "a in b"},     {"raw", "%d files"},  {"localizedRaw", "%d files"}, {"function", "50% done"},
    {"table", "Elsewhere"},  {"bundle", "By W"},   {"default", "Fallback"},      {"english only", "Found"},
    {"number", "1,234,567"},
};

} // namespace

TEST(LocalizedFormattingInAProcessFromFacts, followsTheUsersLanguages) {
    const scene::Folder folder;
    layOut(folder);
    EXPECT_EQ(textsIn(folder, "de", "de_DE.UTF-8"), germanTexts);
    EXPECT_EQ(textsIn(folder, "de_AT:en", "de_DE.UTF-8"), germanTexts);
    EXPECT_EQ(textsIn(folder, "fr:de", "de_DE.UTF-8"), germanTexts);
    EXPECT_EQ(textsIn(folder, "", "de_DE.UTF-8"), germanTexts);
    EXPECT_EQ(textsIn(folder, "en", "en_US.UTF-8"), englishTexts);
    EXPECT_EQ(textsIn(folder, "en_GB:de", "en_US.UTF-8"), englishTexts);
    EXPECT_EQ(textsIn(folder, "ja", "en_US.UTF-8"), englishTexts) << "what it was developed in";
}

TEST(LocalizedFormattingInAProcessFromFacts, keepsLanguageAndNumbersApart) {
    const scene::Folder folder;
    layOut(folder);
    Texts expected = germanTexts;
    expected["price"] = "Preis 1,234.50";
    expected["number"] = "1,234,567";
    EXPECT_EQ(textsIn(folder, "de", "en_US.UTF-8"), expected);
    expected["price"] = "Preis 1234.50";
    expected["number"] = "1234567";
    EXPECT_EQ(textsIn(folder, "de", "en_US_POSIX"), expected);
}

TEST(LocalizedFormattingInAProcessFromFacts, givesTheKeysWithoutAnyTable) {
    const scene::Folder folder;
    folder.makeFolder("V.app/Contents/Resources");
    folder.makeFolder("W.app/Contents/Resources");
    Texts expected = englishTexts;
    expected["init"] = expected["table"] = expected["bundle"] = "Done";
    expected["function"] = "Half";
    expected["english only"] = "Only English";
    EXPECT_EQ(textsIn(folder, "de", "en_US.UTF-8"), expected);
}
