// SPDX-License-Identifier: MIT
// The library's own texts: every language has every text, and no other.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSDictionary.h"
#include "foundation/process/NSBundle.h"
#include "migration/ZQFileMigrator.h"
#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"

using namespace ZQFoundation;

namespace {

constexpr const char* languages[] = {"en", "de", "fr", "es", "it", "ja", "zh-Hans"};

NSDictionary tableOf(const char* language) {
    std::string path = ZQ_TEST_SOURCE_DIR "/resources/";
    path.append(language).append(".lproj/Localizable.strings");
    return NSDictionary::dictionaryWithContentsOfFile(path);
}

TEST(StringTables, haveTheSameKeysInEveryLanguage) {
    const NSDictionary english = tableOf("en");
    ASSERT_EQ(english.count(), 26U);
    for (const char* const language : languages) {
        const NSDictionary table = tableOf(language);
        EXPECT_EQ(table.count(), english.count()) << language;
        for (const NSDictionaryEntry& entry : english) {
            const NSString text(table.objectForKey(entry.key));
            EXPECT_TRUE(text && text.length() > 0) << language << " " << NSString(entry.key).utf8();
        }
    }
    const NSBundle resources = NSBundle::bundleWithPath(ZQ_TEST_SOURCE_DIR "/resources");
    EXPECT_EQ(resources.localizations().count(), std::size(languages))
        << "a language that is not listed here";
}

TEST(StringTables, areTranslatedAndNotCopied) {
    const NSDictionary english = tableOf("en");
    for (const char* const language : languages) {
        if (std::string(language) == "en") {
            continue;
        }
        for (const NSDictionaryEntry& entry : tableOf(language)) {
            const bool isName = entry.key == NSObject("Intel") || entry.key == NSObject("ARM");
            EXPECT_EQ(entry.value == english.objectForKey(entry.key), isName)
                << language << " " << NSString(entry.key).utf8();
        }
    }
}

TEST(StringTables, includeTheTextsThatTheLibraryFallsBackTo) {
    const kit::NoLanguages english;
    for (const std::uint32_t code : {0U,  1U,  2U,  10U, 11U, 12U, 13U, 14U, 15U, 20U, 21U,
                                     22U, 30U, 31U, 32U, 33U, 34U, 35U, 36U, 37U, 99U}) {
        const NSString text = ZQFileMigrator::descriptionOfFileMigrationRetvalType(code);
        bool isInTable = false;
        for (const NSDictionaryEntry& entry : tableOf("en")) {
            isInTable = isInTable || entry.value == NSObject(text);
        }
        EXPECT_TRUE(isInTable) << code << " " << text.utf8();
    }
}

TEST(StringTables, areFoundForTheUsersLanguage) {
    // The choice of a language is made once in a process, so each takes another one.
    if (std::getenv("ZQ_TEST_TELLS") != nullptr) {
        std::printf("<%s>\n", ZQFileMigrator::descriptionOfFileMigrationRetvalType(10).utf8().c_str());
        return;
    }
    const std::pair<const char*, const char*> rows[] = {
        {"de", "<der Quellpfad existiert nicht>"},
        {"de_AT.UTF-8", "<der Quellpfad existiert nicht>"},
        {"zh_CN:ja", "<\u6E90\u8DEF\u5F84\u4E0D\u5B58\u5728>"},
        {"nl", "<the source path does not exist>"},
    };
    for (const auto& [language, text] : rows) {
        const std::string output =
            kit::runAgain({{"LANGUAGE", language}, {"LANG", "de_DE.UTF-8"}, {"ZQ_TEST_TELLS", "1"}},
                          {"test", "--gtest_filter=StringTables.areFoundForTheUsersLanguage"});
        EXPECT_NE(output.find(text), std::string::npos) << language << ": " << output;
    }
}

} // namespace
