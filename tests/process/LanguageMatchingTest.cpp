// SPDX-License-Identifier: MIT
// Choosing localizations by preferred languages.
#include "foundation/process/LanguageMatching.h"

#include <gtest/gtest.h>

using namespace ZQFoundation::detail;

namespace {

using Names = std::vector<std::string>;

struct MatchRow {
    const char* what;
    Names languages;
    Names available;
    Names chosen;
};

const MatchRow matchRows[] = {
    {"exact name", {"de"}, {"en", "de"}, {"de"}},
    {"exact name with region", {"de-AT"}, {"de-AT"}, {"de-AT"}},
    {"less exact relative follows", {"de-AT"}, {"de", "de-AT", "en"}, {"de-AT", "de"}},
    {"underscore in the folder's name", {"pt-BR"}, {"pt_BR"}, {"pt_BR"}},
    {"underscore in the setting", {"pt_BR"}, {"pt-BR"}, {"pt-BR"}},
    {"exact before exchanged", {"pt-BR"}, {"pt_BR", "pt-BR"}, {"pt-BR"}},
    {"old name en", {"en"}, {"English"}, {"English"}},
    {"old name de", {"de"}, {"German"}, {"German"}},
    {"old name fr", {"fr"}, {"French"}, {"French"}},
    {"old name ja", {"ja"}, {"Japanese"}, {"Japanese"}},
    {"old name it", {"it"}, {"Italian"}, {"Italian"}},
    {"old name es", {"es"}, {"Spanish"}, {"Spanish"}},
    {"old name nl", {"nl"}, {"Dutch"}, {"Dutch"}},
    {"code before old name", {"de"}, {"German", "de"}, {"de"}},
    {"old name of the shorter form", {"de-AT"}, {"German"}, {"German"}},
    {"old name in the setting", {"German"}, {"de"}, {"de"}},
    {"old name on both sides", {"German"}, {"German"}, {"German"}},
    {"canonical form of another case", {"DE-at"}, {"de-AT"}, {"de-AT"}},
    {"withdrawn code in the folder's name", {"he"}, {"iw"}, {"iw"}},
    {"withdrawn code in the setting", {"iw"}, {"he"}, {"he"}},
    {"Norwegian", {"no"}, {"nb"}, {"nb"}},
    {"shorter form", {"de-AT"}, {"en", "de"}, {"de"}},
    {"shorter form by underscore", {"de_AT"}, {"de"}, {"de"}},
    {"shorter form of Portuguese", {"pt-BR"}, {"pt"}, {"pt"}},
    {"no longer form", {"pt"}, {"pt-BR"}, {}},
    {"no sideways form", {"en-GB"}, {"en-US"}, {}},
    {"Traditional from a region", {"zh-Hant-HK"}, {"zh-Hans", "zh-Hant"}, {"zh-Hant"}},
    {"Traditional never Simplified", {"zh-Hant-HK"}, {"zh-Hans", "zh", "zh-CN"}, {}},
    {"Simplified never Traditional", {"zh-Hans-CN"}, {"zh-Hant", "zh_TW"}, {}},
    {"Taiwan", {"zh-TW"}, {"zh-Hans", "zh-Hant"}, {"zh-Hant"}},
    {"folder named by Taiwan", {"zh-Hant"}, {"zh_CN", "zh_TW"}, {"zh_TW"}},
    {"Hong Kong without a script", {"zh-HK"}, {"zh-Hans", "zh-Hant"}, {"zh-Hant"}},
    {"China", {"zh_CN"}, {"zh-Hant", "zh-Hans"}, {"zh-Hans"}},
    {"plain Chinese is Simplified", {"zh-Hans-SG"}, {"zh"}, {"zh"}},
    {"script, then language", {"sr-Latn-RS"}, {"sr", "sr-Latn"}, {"sr-Latn", "sr"}},
    {"first language that matches decides", {"fr", "de", "en"}, {"en", "de"}, {"de"}},
    {"an earlier language's shorter form before a later exact one", {"de-AT", "en"}, {"en", "de"}, {"de"}},
    {"nothing fits", {"fr"}, {"de", "en"}, {}},
    {"no languages", {}, {"de"}, {}},
    {"no localizations", {"de"}, {}, {}},
    {"Base is no language", {"Base", "base"}, {"Base"}, {}},
    {"empty and odd settings", {"", "-", "--", "_"}, {"de"}, {}},
};

} // namespace

TEST(LanguageMatching, choosesLocalizations) {
    for (const MatchRow& row : matchRows) {
        EXPECT_EQ(matchingLocalizations(row.languages, row.available), row.chosen) << row.what;
    }
}

TEST(LanguageMatching, spellsEachLanguageInOneWay) {
    const std::pair<const char*, const char*> spellings[] = {
        {"de", "de"},
        {"DE", "de"},
        {"de_at", "de-AT"},
        {"English", "en"},
        {"iw", "he"},
        {"zh", "zh-Hans"},
        {"zh_CN", "zh-Hans"},
        {"zh-TW", "zh-Hant"},
        {"zh-HK", "zh-Hant-HK"},
        {"ZH-hant-hk", "zh-Hant-HK"},
        {"es-419", "es-419"},
        {"sr-latn-rs", "sr-Latn-RS"},
        {"zh-SG", "zh-Hans-SG"},
        {"", ""},
    };
    for (const auto& [tag, canonical] : spellings) {
        EXPECT_EQ(canonicalLanguage(tag), canonical) << tag;
    }
}

TEST(LanguageMatching, takesAnyLengthOfTag) {
    std::string tag = "de";
    for (int count = 0; count < 500; ++count) {
        tag += "-x";
    }
    EXPECT_EQ(matchingLocalizations({tag}, {"de"}), Names{"de"});
}
