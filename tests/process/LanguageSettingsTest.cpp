// SPDX-License-Identifier: MIT
// The languages that the environment sets.
#include "foundation/process/LanguageSettings.h"

#include <gtest/gtest.h>

#include "tests/kit/Environment.h"

using namespace ZQFoundation;
using detail::languagesFromEnvironment;

namespace {

using Names = std::vector<std::string>;

struct SettingRow {
    const char* what;
    const char* language;
    const char* all;
    const char* messages;
    const char* lang;
    Names languages;
};

const SettingRow settingRows[] = {
    {"nothing set", nullptr, nullptr, nullptr, nullptr, {}},
    {"LANG", nullptr, nullptr, nullptr, "de_AT.UTF-8", {"de-AT"}},
    {"LC_MESSAGES before LANG", nullptr, nullptr, "fr_FR", "de_DE", {"fr-FR"}},
    {"LC_ALL before LC_MESSAGES", nullptr, "it_IT", "fr_FR", "de_DE", {"it-IT"}},
    {"LANGUAGE before all", "es:pt_BR:en", "it_IT", "fr_FR", "de_DE", {"es", "pt-BR", "en"}},
    {"empty ones do not count", "", "", "", "de_DE", {"de-DE"}},
    {"C decides, and names none", nullptr, "C", "fr_FR", "de_DE", {}},
    {"C with an encoding", nullptr, nullptr, nullptr, "C.UTF-8", {}},
    {"POSIX", nullptr, nullptr, nullptr, "POSIX", {}},
    {"C ends a list", "de:C:fr", nullptr, nullptr, nullptr, {"de"}},
    {"empty pieces and repetitions are left out",
     ":de::de:de_DE:",
     nullptr,
     nullptr,
     nullptr,
     {"de", "de-DE"}},
    {"script from the modifier", nullptr, nullptr, nullptr, "sr_RS.UTF-8@latin", {"sr-Latn-RS"}},
    {"script without a region", "uz@cyrillic", nullptr, nullptr, nullptr, {"uz-Cyrl"}},
    {"other modifiers are dropped", nullptr, nullptr, nullptr, "de_DE@euro", {"de-DE"}},
    {"what is no name is left out", "../x:d:1a:de;rm:en", nullptr, nullptr, nullptr, {"en"}},
};

} // namespace

TEST(LanguageSettings, followTheEnvironment) {
    const kit::NoLanguages none;
    for (const SettingRow& row : settingRows) {
        const kit::Variable language("LANGUAGE", row.language);
        const kit::Variable all("LC_ALL", row.all);
        const kit::Variable messages("LC_MESSAGES", row.messages);
        const kit::Variable lang("LANG", row.lang);
        EXPECT_EQ(languagesFromEnvironment(), row.languages) << row.what;
    }
}

TEST(LanguageSettings, takeALongListInBoundedTime) {
    const kit::NoLanguages none;
    std::string list;
    for (int count = 0; count < 20000; ++count) {
        list += "x" + std::to_string(count) + ":";
    }
    const kit::Variable language("LANGUAGE", list.c_str());
    EXPECT_EQ(languagesFromEnvironment().size(), 64u);
}
