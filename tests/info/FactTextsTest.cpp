// SPDX-License-Identifier: MIT
// The texts about the application, the system and the hardware.
#include "info/FactTexts.h"

#include <gtest/gtest.h>

#include "tests/kit/Values.h"

using namespace ZQFoundation;
using kit::utf8Of;

namespace {

using Text = NSString (*)(const NSDictionary&);

struct FactRow {
    std::initializer_list<NSDictionaryEntry> facts;
    const char* text;
};

void expectTexts(Text text, std::initializer_list<FactRow> rows) {
    for (const FactRow& row : rows) {
        EXPECT_EQ(utf8Of(text(NSDictionary(row.facts))), row.text);
    }
}

const NSDictionaryEntry name{"shortApplicationName", "Viewer"};
const NSDictionaryEntry shortVersion{"shortVersionString", "2.1"};
const NSDictionaryEntry longVersion{"versionString", "417"};
const NSDictionaryEntry osName{"osName", "Linux"};
const NSDictionaryEntry osVersion{"osVersion", "12"};
const NSDictionaryEntry osBuild{"osBuild", "6.1"};
const NSDictionaryEntry model{"model", "Box 3"};
const NSDictionaryEntry processors{"nCores", "8"};
const NSDictionaryEntry memory{"ramMB", "16384"};

} // namespace

TEST(FactTexts, nameTheApplicationWithTheVersionsThatItHas) {
    expectTexts(detail::applicationText, {{{name, shortVersion, longVersion}, "Viewer 2.1 v417"},
                                          {{name, shortVersion}, "Viewer 2.1"},
                                          {{name, longVersion}, "Viewer v417"},
                                          {{name}, "Viewer"},
                                          {{shortVersion, longVersion}, "(unknown app name) 2.1 v417"},
                                          {{shortVersion}, "(unknown app name) 2.1"},
                                          {{longVersion}, "(unknown app name) v417"},
                                          {{}, "(unknown app name)"}});
}

TEST(FactTexts, nameTheSystemWithVersionAndBuild) {
    expectTexts(detail::systemText, {{{osName, osVersion, osBuild}, "Linux 12 (6.1)"},
                                     {{osName, osVersion}, "Linux 12"},
                                     {{osName, osBuild}, "Linux (6.1)"},
                                     {{osName}, "Linux (unknown OS version)"},
                                     {{osVersion, osBuild}, "(unknown OS) 12 (6.1)"},
                                     {{osVersion}, "(unknown OS) 12"},
                                     {{osBuild}, "(unknown OS) (6.1)"},
                                     {{}, "(unknown OS) (unknown OS version)"}});
}

TEST(FactTexts, nameTheSystemWithItsVersion) {
    expectTexts(detail::systemNameAndVersionText, {{{osName, osVersion, osBuild}, "Linux 12"},
                                                   {{osName}, "Linux (unknown version)"},
                                                   {{osVersion}, "(unknown OS name) 12"},
                                                   {{osBuild}, "(nil)"}});
}

TEST(FactTexts, bracketWhatIsKnownOfTheHardware) {
    expectTexts(detail::hardwareText,
                {{{model, processors, memory}, "[Box 3; 8 processor cores; 16384 MB RAM]"},
                 {{model, processors}, "[Box 3; 8 processor cores]"},
                 {{model, memory}, "[Box 3; 16384 MB RAM]"},
                 {{processors, memory}, "[8 processor cores; 16384 MB RAM]"},
                 {{model}, "[Box 3]"},
                 {{processors}, "[8 processor cores]"},
                 {{memory}, "[16384 MB RAM]"},
                 {{}, "(nil)"}});
}

TEST(FactTexts, speakOfOneCoreInTheSingular) {
    expectTexts(detail::hardwareText, {{{{"nCores", "1"}}, "[1 processor core]"},
                                       {{{"nCores", "01"}}, "[01 processor cores]"},
                                       {{{"nCores", "11"}}, "[11 processor cores]"}});
}
