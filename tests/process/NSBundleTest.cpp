// SPDX-License-Identifier: MIT
// Bundles: the main bundle, resources and localized texts.
#include "foundation/process/NSBundle.h"

#include <atomic>

#include <sys/resource.h>

#include "foundation/process/BundleLayout.h"
#include "foundation/process/CarriedTexts.h"
#include "foundation/process/FileReading.h"
#include "tests/kit/Turns.h"
#include "tests/process/DefaultsScene.h"

using namespace ZQFoundation;
using process::useThreads;
using process::Words;

namespace {

NSArray names(std::initializer_list<const char*> texts) {
    NSMutableArray array;
    for (const char* text : texts) {
        array.addObject(text);
    }
    return array.array();
}

/// A scratch folder in which to lay out bundles; no language settings, no defaults.
class NSBundleTest : public process::DefaultsScene {
protected:
    const kit::Arguments viewer{detail::overrides::arguments, Words{"/x/viewer"}};

    /// The program is this file of the folder from now on.
    void run(const std::string& name) {
        file_ = folder / name;
        detail::overrides::executablePath = &file_; // restored with the fixture
    }

    /// A bundle laid out as an application, with an Info dictionary in the old form and localizations.
    NSBundle bundle(const std::string& name, const std::string& info,
                    std::initializer_list<const char*> localizations = {}) const {
        folder.write(name + "/Contents/Info.plist", info);
        for (const char* localization : localizations) {
            folder.makeFolder(name + "/Contents/Resources/" + localization + ".lproj");
        }
        return NSBundle::bundleWithPath(folder / name);
    }

    void writeTable(const std::string& path, const std::string& text) const {
        folder.write("B.app/Contents/Resources/" + path, text);
    }

private:
    std::string file_;
};

std::string utf16(const std::string& ascii, bool bigEndian, bool mark) {
    std::string bytes = !mark ? "" : bigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char character : ascii) {
        bytes += bigEndian ? std::string{'\0', character} : std::string{character, '\0'};
    }
    return bytes;
}

std::string text(const NSBundle& bundle, const char* key, StringView table = nullptr) {
    return bundle.localizedStringForKey_value_table(key, "?", table).utf8();
}

} // namespace

// Main bundle

TEST_F(NSBundleTest, mainBundleOfAnApplicationIsTheFolderAroundContents) {
    folder.write("V.app/Contents/Info.plist", "{ CFBundleIdentifier = com.example.v; CFBundleVersion = 7; }");
    run("V.app/Contents/MacOS/Viewer");
    const NSBundle bundle = NSBundle::mainBundle();
    EXPECT_EQ(bundle.bundlePath(), folder / "V.app");
    EXPECT_EQ(bundle.resourcePath(), folder / "V.app/Contents/Resources");
    EXPECT_EQ(bundle.executablePath(), folder / "V.app/Contents/MacOS/Viewer");
    EXPECT_EQ(bundle.bundleIdentifier(), "com.example.v");
    EXPECT_EQ(bundle.objectForInfoDictionaryKey("CFBundleVersion"), NSObject("7"));
    EXPECT_EQ(bundle.infoDictionary().count(), 2u);
}

TEST_F(NSBundleTest, mainBundleIsFoundInEachLayout) {
    for (const char* const place : {"a/V.app/Contents", "p/Resources", "p", "flat", "usr/share/viewer"}) {
        folder.write(std::string(place) + "/Info.plist",
                     std::string("{ CFBundleIdentifier = \"") + place + "\"; }");
    }
    folder.makeFolder("b");
    ASSERT_EQ(::rename((folder / "a/V.app").c_str(), (folder / "b/W.app").c_str()), 0);
    const struct {
        const char* program;
        const char* identifier;
        const char* resources;
        const char* bundle;
    } rows[] = {
        {"b/W.app/Contents/MacOS/Viewer", "a/V.app/Contents", "b/W.app/Contents/Resources",
         "b/W.app"}, // moved
        {"p/viewer", "p/Resources", "p/Resources", "p"},
        {"flat/viewer", "flat", "flat", "flat"},
        {"usr/bin/program", "usr/share/viewer", "usr/share/viewer", nullptr}, // by the name of the process
    };
    for (const auto& row : rows) {
        run(row.program);
        const NSBundle bundle = NSBundle::mainBundle();
        EXPECT_EQ(bundle.bundleIdentifier(), row.identifier);
        EXPECT_EQ(bundle.resourcePath(), folder / row.resources);
        EXPECT_TRUE(row.bundle == nullptr || bundle.bundlePath() == NSString(folder / row.bundle))
            << row.program;
        EXPECT_EQ(bundle.executablePath(), folder / row.program);
    }
    run("usr/sbin/program");
    EXPECT_FALSE(NSBundle::mainBundle().bundleIdentifier());
}

TEST_F(NSBundleTest, mainBundleOfAnUnbundledProgramIsItsFolder) {
    folder.makeFolder("p");
    run("p/viewer");
    const NSBundle bundle = NSBundle::mainBundle();
    EXPECT_EQ(bundle.bundlePath(), folder / "p");
    EXPECT_EQ(bundle.infoDictionary().count(), 0u);
    EXPECT_FALSE(bundle.bundleIdentifier());
    EXPECT_FALSE(bundle.objectForInfoDictionaryKey("CFBundleVersion"));
    EXPECT_FALSE(bundle.developmentLocalization());
    EXPECT_EQ(bundle.localizations().count(), 0u);
    EXPECT_EQ(bundle.preferredLocalizations(), names({"en"}));
    EXPECT_EQ(text(bundle, "key"), "?");
}

TEST_F(NSBundleTest, mainBundleOfTheRunningProgramIsAroundItsFile) {
    detail::overrides::executablePath = nullptr; // put back with the fixture
    char link[4096] = {};
    ASSERT_GT(::readlink("/proc/self/exe", link, sizeof link - 1), 0);
    EXPECT_EQ(NSBundle::mainBundle().executablePath(), link);
    EXPECT_TRUE(NSBundle::mainBundle() == NSBundle::mainBundle());
}

// Other bundles

TEST_F(NSBundleTest, bundlesAreFoundByTheirFolder) {
    folder.write("F.framework/Resources/Info.plist",
                 "{ CFBundleIdentifier = framework; CFBundleExecutable = run; }");
    folder.write("F.framework/run", "");
    const NSBundle framework = NSBundle::bundleWithPath(folder / "F.framework");
    EXPECT_EQ(framework.bundleIdentifier(), "framework");
    EXPECT_EQ(framework.resourcePath(), folder / "F.framework/Resources");
    EXPECT_EQ(framework.executablePath(), folder / "F.framework/run");
    folder.write("flat/Info.plist", "{ CFBundleIdentifier = flat; }");
    const NSBundle flat = NSBundle::bundleWithPath(folder / "flat");
    EXPECT_EQ(flat.bundleIdentifier(), "flat");
    EXPECT_FALSE(flat.executablePath());
    folder.write("A.app/Contents/MacOS/A", "");
    const NSBundle application = NSBundle::bundleWithPath(folder / "A.app");
    EXPECT_EQ(application.executablePath(), folder / "A.app/Contents/MacOS/A");
    EXPECT_FALSE(application.bundleIdentifier());
}

TEST_F(NSBundleTest, onlyAnExistingFolderIsABundle) {
    folder.write("file", "x");
    for (const std::string& path :
         {folder / "absent", folder / "file", std::string(), std::string("/a\0b", 4)}) {
        EXPECT_FALSE(NSBundle::bundleWithPath(path)) << path;
    }
    EXPECT_FALSE(NSBundle::bundleWithPath(nullptr));
}

TEST_F(NSBundleTest, theSameFolderGivesTheSameBundle) {
    const NSBundle first = bundle("B.app", "{}");
    EXPECT_TRUE(first == NSBundle::bundleWithPath(folder.path() + "//B.app/"));
    EXPECT_EQ(NSBundle::bundleWithPath(folder.path() + "//B.app//").bundlePath(), folder / "B.app");
    run("B.app/Contents/MacOS/B");
    EXPECT_TRUE(NSBundle::mainBundle() == NSBundle::bundleWithPath(folder / "B.app"));
}

TEST_F(NSBundleTest, aNilBundleAnswersNilAndEmpty) {
    const NSBundle none;
    EXPECT_FALSE(none);
    EXPECT_FALSE(none.bundleIdentifier());
    EXPECT_FALSE(none.infoDictionary());
    EXPECT_FALSE(none.objectForInfoDictionaryKey("x"));
    EXPECT_FALSE(none.bundlePath());
    EXPECT_FALSE(none.resourcePath());
    EXPECT_FALSE(none.executablePath());
    EXPECT_EQ(none.localizations().count(), 0u);
    EXPECT_EQ(none.preferredLocalizations().count(), 0u);
    EXPECT_FALSE(none.developmentLocalization());
    EXPECT_FALSE(none.localizedStringForKey_value_table("k", "v", nullptr));
}

TEST_F(NSBundleTest, aProgramWithoutAKnownPlaceHasABundleWithoutFiles) {
    for (const char* place : {"", "Contents/", "Resources/", "Contents/Resources/"}) {
        folder.write(place + std::string("Info.plist"),
                     "{ CFBundleIdentifier = stranger; Name = stranger; }");
        folder.write(place + std::string("Localizable.strings"), "key = stranger;");
        folder.makeFolder(place + std::string("fr.lproj"));
    }
    folder.write("viewer", "");
    const kit::Path unknown(detail::overrides::executablePath, "");
    // Only a child changes the current folder, in which nothing may be looked up.
    kit::expectAsUser([&] {
        EXPECT_EQ(::chdir(folder.path().c_str()), 0);
        EXPECT_TRUE(detail::fileExists("Info.plist"));
        const NSBundle b = NSBundle::mainBundle();
        EXPECT_TRUE(b && b.infoDictionary());
        EXPECT_EQ(b.infoDictionary().count() + b.localizations().count(), 0U);
        EXPECT_FALSE(b.bundleIdentifier() || b.objectForInfoDictionaryKey("Name") || b.executablePath());
        EXPECT_EQ(b.bundlePath(), "");
        EXPECT_EQ(b.resourcePath(), "");
        EXPECT_EQ(text(b, "key"), "?");
    });
    EXPECT_EQ(detail::layoutOfProgram("", "viewer").infoFile, "");
    EXPECT_EQ(detail::layoutOfLibrary("").infoFile, "");
}

TEST(BundleLayout, libraryBundleIsBesideTheLibraryOrInShare) {
    const kit::ScratchFolder folder;
    folder.makeFolder("V.app/Contents/Frameworks/Resources");
    folder.makeFolder("usr/share/ZQFoundation-27");
    folder.makeFolder("usr/lib/x86");
    const std::pair<const char*, const char*> rows[] = {
        {"V.app/Contents/Frameworks/libZ.so", "V.app/Contents/Frameworks/Resources"},
        {"usr/lib/libZ.so", "usr/lib/../share/ZQFoundation-27"},
        {"usr/lib/x86/libZ.so", "usr/lib/x86/../../share/ZQFoundation-27"},
        {"opt/libZ.so", "opt/../share/ZQFoundation-27"},
    };
    for (const auto& [library, resources] : rows) {
        EXPECT_EQ(detail::layoutOfLibrary(folder / library).resources, folder / resources);
    }
}

TEST(CarriedTexts, areTheFilesOfTheLibraryInEachOfItsLanguages) {
    ASSERT_EQ(detail::carriedTables().size(), 7U);
    for (const detail::CarriedTable& table : detail::carriedTables()) {
        const std::string path =
            ZQ_TEST_SOURCE_DIR "/resources/" + std::string(table.language) + ".lproj/Localizable.strings";
        EXPECT_EQ(table.bytes, kit::contentsOf(path)) << path;
        EXPECT_TRUE(NSBundle::libraryBundle().localizations().containsObject(std::string(table.language)));
    }
}

TEST(BundleLayout, libraryBundleIsNeverNilAndItsTablesMayBeMissing) {
    ASSERT_TRUE(NSBundle::libraryBundle());
    EXPECT_TRUE(NSBundle::libraryBundle() == NSBundle::libraryBundle());
    EXPECT_EQ(NSBundle::libraryBundle().localizedStringForKey_value_table("unheard of", "", nullptr),
              "unheard of");
}

// Info dictionary

TEST_F(NSBundleTest, localizedInfoComesBeforeTheInfoDictionary) {
    const NSBundle b = bundle("B.app", "{ Name = plain; Other = plain; CFBundleIdentifier = id; }", {"en"});
    writeTable("en.lproj/InfoPlist.strings", "Name = localized; CFBundleIdentifier = localized;");
    EXPECT_EQ(b.objectForInfoDictionaryKey("Name"), NSObject("localized"));
    EXPECT_EQ(b.objectForInfoDictionaryKey("Other"), NSObject("plain"));
    EXPECT_FALSE(b.objectForInfoDictionaryKey("Missing"));
    EXPECT_FALSE(b.objectForInfoDictionaryKey(nullptr));
    EXPECT_EQ(b.bundleIdentifier(), "id");
    EXPECT_EQ(b.infoDictionary().objectForKey("Name"), NSObject("plain"));
}

TEST_F(NSBundleTest, infoIsReadOnce) {
    const NSBundle b = bundle("B.app", "{ CFBundleIdentifier = before; }");
    EXPECT_EQ(b.bundleIdentifier(), "before");
    folder.write("B.app/Contents/Info.plist", "{ CFBundleIdentifier = after; }");
    EXPECT_EQ(b.bundleIdentifier(), "before");
}

TEST_F(NSBundleTest, infoFilesOfNoUseCountAsEmpty) {
    const std::pair<const char*, std::string> files[] = {
        {"empty", ""},
        {"cut off", "<plist><dict><key>CFBundleId"},
        {"array", "(CFBundleIdentifier)"},
        {"noise", std::string("\xFF\0\x80", 3)},
        {"too large", "{ CFBundleIdentifier = a; }" + std::string(std::size_t{16} << 20, ' ')},
        {"identifier of another kind", "{ CFBundleIdentifier = (a); }"},
        {"empty identifier", "{ CFBundleIdentifier = \"\"; }"}};
    for (const auto& [name, bytes] : files) {
        const NSBundle b = bundle(name, bytes);
        EXPECT_FALSE(b.bundleIdentifier()) << name;
        EXPECT_TRUE(b.infoDictionary()) << name;
    }
    folder.makeFolder("folder.app/Contents/Info.plist");
    EXPECT_EQ(NSBundle::bundleWithPath(folder / "folder.app").infoDictionary().count(), 0u);
    folder.makeFolder("pipe.app/Contents");
    ASSERT_EQ(::mkfifo((folder / "pipe.app/Contents/Info.plist").c_str(), 0644), 0);
    EXPECT_EQ(NSBundle::bundleWithPath(folder / "pipe.app").infoDictionary().count(), 0u);
}

TEST_F(NSBundleTest, whatCouldNotBeReadWithoutADescriptorIsReadLater) {
    const NSBundle b = bundle("B.app", "{ CFBundleIdentifier = id; }", {"de", "fr"});
    writeTable("fr.lproj/Localizable.strings", "k = texte;");
    const kit::Variable language("LANGUAGE", "fr");
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{0, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    const NSString identifier = b.bundleIdentifier();
    const std::string meanwhile = text(b, "k");
    const NSArray preferred = b.preferredLocalizations();
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_FALSE(identifier);
    EXPECT_EQ(meanwhile, "?");
    EXPECT_EQ(preferred, names({"en"}));
    EXPECT_EQ(b.bundleIdentifier(), "id");
    EXPECT_EQ(text(b, "k"), "texte");
    EXPECT_EQ(b.preferredLocalizations(), names({"fr"}));
}

// Localizations

TEST_F(NSBundleTest, localizationsAreTheDeclaredOnesThenTheFolders) {
    const NSBundle b = bundle(
        "B.app", "{ CFBundleLocalizations = (fr, de, (no), \"a/b\"); CFBundleDevelopmentRegion = it; }",
        {"pt", "de", "en"});
    folder.write("B.app/Contents/Resources/file.lproj", "no folder");
    folder.makeFolder("B.app/Contents/Resources/.lproj");
    EXPECT_EQ(b.localizations(), names({"fr", "de", "en", "pt"}));
    EXPECT_EQ(b.developmentLocalization(), "it");
}

TEST_F(NSBundleTest, localizationsHaveTheDevelopmentRegionBesideBaseOrAlone) {
    const char* const italian = "{ CFBundleDevelopmentRegion = it; }";
    const char* const german = "{ CFBundleDevelopmentRegion = de; }";
    EXPECT_EQ(bundle("B.app", italian, {"Base", "de"}).localizations(), names({"Base", "de", "it"}));
    EXPECT_EQ(bundle("C.app", german, {"Base", "de"}).localizations(), names({"Base", "de"}));
    EXPECT_EQ(bundle("D.app", italian).localizations(), names({"it"}));
    EXPECT_EQ(bundle("E.app", "{}").localizations().count(), 0u);
}

TEST_F(NSBundleTest, preferredLocalizationsFollowTheUsersLanguages) {
    struct Row {
        const char* what;
        const char* language;
        const char* info;
        std::initializer_list<const char*> folders;
        NSArray preferred;
    };
    const Row rows[] = {
        {"match", "de", "{}", {"de", "en"}, names({"de"})},
        {"match with the shorter form", "de_AT", "{}", {"de", "de-AT", "en"}, names({"de-AT", "de"})},
        {"second language", "fr:de", "{}", {"de", "en"}, names({"de"})},
        {"no match: development region",
         "fr",
         "{ CFBundleDevelopmentRegion = it; }",
         {"de", "en", "it"},
         names({"it"})},
        {"development region by its old name",
         "fr",
         "{ CFBundleDevelopmentRegion = German; }",
         {"de", "en"},
         names({"de"})},
        {"no match: en", "fr", "{}", {"de", "en"}, names({"en"})},
        {"no match: English", "fr", "{}", {"German", "English"}, names({"English"})},
        {"no match: first", "fr", "{}", {"it", "de"}, names({"de"})},
        {"region not there", "fr", "{ CFBundleDevelopmentRegion = ja; }", {"de", "it"}, names({"de"})},
        {"no localization but the region", "fr", "{ CFBundleDevelopmentRegion = it; }", {}, names({"it"})},
        {"no localization", "fr", "{}", {}, names({"en"})},
        {"no language", "", "{}", {"de", "en"}, names({"en"})},
        {"no match: first that is a language", "de", "{}", {"Base", "fr"}, names({"fr"})},
        {"no match: Base alone", "de", "{}", {"Base"}, names({"en"})},
        {"no match: region beside Base",
         "de",
         "{ CFBundleDevelopmentRegion = it; }",
         {"Base", "fr"},
         names({"it"})},
    };
    for (const Row& row : rows) {
        const kit::Variable language("LANGUAGE", row.language);
        EXPECT_EQ(bundle(row.what, row.info, row.folders).preferredLocalizations(), row.preferred)
            << row.what;
    }
}

TEST_F(NSBundleTest, preferredLocalizationsFollowTheDefaultBeforeTheEnvironment) {
    const kit::Variable language("LANGUAGE", "de");
    const kit::Arguments more(detail::overrides::arguments,
                              Words{"viewer", "-AppleLanguages", "(fr, (x), it)"});
    EXPECT_EQ(bundle("B.app", "{}", {"de", "it"}).preferredLocalizations(), names({"it"}));
}

TEST_F(NSBundleTest, otherBundlesPreferTheMainBundlesLanguage) {
    bundle("M.app", "{}", {"it"});
    run("M.app/Contents/MacOS/M");
    const kit::Variable language("LANGUAGE", "de:it");
    EXPECT_EQ(bundle("B.app", "{}", {"de", "it"}).preferredLocalizations(), names({"it"}));
    EXPECT_EQ(bundle("C.app", "{}", {"de", "fr"}).preferredLocalizations(), names({"de"}));
}

TEST_F(NSBundleTest, preferredLocalizationsAreDecidedOnce) {
    const NSBundle b = bundle("B.app", "{}", {"de", "en"});
    const kit::Variable language("LANGUAGE", "de");
    EXPECT_EQ(b.preferredLocalizations(), names({"de"}));
    const kit::Variable later("LANGUAGE", "en");
    EXPECT_EQ(b.preferredLocalizations(), names({"de"}));
}

// String tables

TEST_F(NSBundleTest, tablesComeFromTheFirstPlaceThatHasThem) {
    const kit::Variable language("LANGUAGE", "de_AT");
    const NSBundle b =
        bundle("B.app", "{ CFBundleDevelopmentRegion = it; }", {"de", "de-AT", "it", "Base", "fr"});
    const char* const places[] = {"", "de-AT.lproj/", "de.lproj/", "Base.lproj/", "it.lproj/"};
    // The table named after its first place is in all places from there on.
    for (std::size_t first = 0; first < std::size(places); ++first) {
        for (std::size_t place = first; place < std::size(places); ++place) {
            writeTable(places[place] + std::string("T") + std::to_string(first) + ".strings",
                       "key = \"" + std::string(places[place]) + "\";");
        }
    }
    writeTable("fr.lproj/Only.strings", "key = french;");
    for (std::size_t first = 0; first < std::size(places); ++first) {
        EXPECT_EQ(text(b, "key", "T" + std::to_string(first)), places[first]);
    }
    EXPECT_EQ(text(b, "key", "Only"), "?");
}

TEST_F(NSBundleTest, aKeyMissingInTheTableIsNotLookedForInTheNextLanguage) {
    const kit::Variable language("LANGUAGE", "de_AT");
    const NSBundle b = bundle("B.app", "{}", {"de", "de-AT"});
    writeTable("de-AT.lproj/Localizable.strings", "here = da;");
    writeTable("de.lproj/Localizable.strings", "here = x; there = dort;");
    EXPECT_EQ(text(b, "here"), "da");
    EXPECT_EQ(text(b, "there"), "?");
}

TEST_F(NSBundleTest, lookUpFallsBackToTheValueAndThenToTheKey) {
    const NSBundle b = bundle("B.app", "{}", {"en"});
    writeTable("en.lproj/Localizable.strings", "key = text; blank = \"\";");
    writeTable("en.lproj/Other.strings", "key = other;");
    const auto look = [&](const NSString& key, const NSString& value, StringView table = nullptr) {
        return b.localizedStringForKey_value_table(key, value, table);
    };
    EXPECT_EQ(look("key", "value"), "text");
    EXPECT_EQ(look("key", "value", ""), "text");
    EXPECT_EQ(look("key", "value", "Localizable"), "text");
    EXPECT_EQ(look("key", "value", "Other"), "other");
    EXPECT_EQ(look("blank", "value"), "");
    EXPECT_EQ(look("missing", "value"), "value");
    EXPECT_EQ(look("missing", ""), "missing");
    EXPECT_EQ(look("missing", nullptr), "missing");
    EXPECT_EQ(look("key", "value", "No such table"), "value");
    EXPECT_EQ(look("key", "value", "../en.lproj/Other"), "value");
    EXPECT_EQ(look("key", nullptr, StringView("a\0b", 3)), "key");
    EXPECT_EQ(look(nullptr, "value"), "value");
    EXPECT_EQ(look(nullptr, nullptr), "");
    EXPECT_EQ(look("", nullptr), "");
}

TEST_F(NSBundleTest, tablesMayBeInAnyEncodingAndForm) {
    const NSBundle b = bundle("B.app", "{}", {"en"});
    const std::string table = "/* a comment */ \"key\" = \"text\";\n";
    const std::pair<std::string, std::string> forms[] = {
        {"Utf8", table},
        {"Utf8Mark", "\xEF\xBB\xBF" + table},
        {"Little", utf16(table, false, true)},
        {"Big", utf16(table, true, true)},
        {"LittleOld", utf16(table, false, false)},
        {"BigOld", utf16(table, true, false)},
        {"Braces", "{ key = text; }"},
        {"Xml", "<plist><dict><key>key</key><string>text</string></dict></plist>"},
    };
    for (const auto& [name, bytes] : forms) {
        writeTable("en.lproj/" + name + ".strings", bytes);
        EXPECT_EQ(text(b, "key", name), "text") << name;
    }
}

TEST_F(NSBundleTest, tablesOfNoUseCountAsEmpty) {
    const kit::Variable language("LANGUAGE", "de_AT");
    const NSBundle b = bundle("B.app", "{}", {"de", "de-AT"});
    const std::pair<const char*, std::string> files[] = {
        {"Empty", ""},
        {"CutOff", "key = \"te"},
        {"Broken", "key = text"},
        {"Array", "(key)"},
        {"OtherKind", "key = (text);"},
        {"Noise", "\xFF\xFF\x80"},
        {"TooLarge", "key = \"text\";" + std::string(std::size_t{16} << 20, ' ')}};
    for (const auto& [name, bytes] : files) {
        writeTable("de-AT.lproj/" + std::string(name) + ".strings", bytes);
        writeTable("de.lproj/" + std::string(name) + ".strings", "key = text;");
        EXPECT_EQ(text(b, "key", name), "?") << name;
    }
    folder.makeFolder("B.app/Contents/Resources/de-AT.lproj/Folder.strings");
    EXPECT_EQ(text(b, "key", "Folder"), "?");
    ASSERT_EQ(::mkfifo((folder / "B.app/Contents/Resources/de-AT.lproj/Pipe.strings").c_str(), 0644), 0);
    EXPECT_EQ(text(b, "key", "Pipe"), "?");
}

TEST_F(NSBundleTest, tablesAreReadOnce) {
    const NSBundle b = bundle("B.app", "{}", {"en"});
    writeTable("en.lproj/Localizable.strings", "key = before;");
    EXPECT_EQ(text(b, "key"), "before");
    EXPECT_EQ(text(b, "key", "Late"), "?");
    writeTable("en.lproj/Localizable.strings", "key = after;");
    writeTable("en.lproj/Late.strings", "key = late;");
    EXPECT_EQ(text(b, "key"), "before");
    EXPECT_EQ(text(b, "key", "Late"), "?");
}

TEST_F(NSBundleTest, operationsLeaveErrnoAlone) {
    const NSBundle b = bundle("B.app", "", {});
    errno = 4321;
    NSBundle::mainBundle().infoDictionary();
    NSBundle::libraryBundle().preferredLocalizations();
    NSBundle::bundleWithPath("/no/such/folder");
    b.objectForInfoDictionaryKey("x");
    b.executablePath();
    b.localizations();
    b.localizedStringForKey_value_table("x", nullptr, "No table");
    EXPECT_EQ(errno, 4321);
}

TEST_F(NSBundleTest, givesAllThreadsTheSameTexts) {
    const NSBundle b = bundle("B.app", "{ CFBundleIdentifier = id; }", {"en"});
    for (int number = 0; number < 20; ++number) {
        writeTable("en.lproj/T" + std::to_string(number) + ".strings",
                   "key = text" + std::to_string(number) + ";");
    }
    std::atomic<int> wrong{0};
    useThreads(4, [&](int) {
        for (int number = 0; number < 20; ++number) {
            const std::string name = std::to_string(number);
            wrong += text(b, "key", "T" + name) == "text" + name ? 0 : 1;
            wrong += b.bundleIdentifier() == "id" && b.preferredLocalizations().count() == 1 ? 0 : 1;
            wrong += NSBundle::bundleWithPath(folder / "B.app") == b ? 0 : 1;
        }
    });
    EXPECT_EQ(wrong, 0);
}

TEST_F(NSBundleTest, findsTextsInForkedChildrenWhileThreadsReadTables) {
    const NSBundle b = bundle("B.app", "{}", {"en"});
    for (int number = 0; number < 200; ++number) {
        writeTable("en.lproj/T" + std::to_string(number) + ".strings", "key = text;");
    }
    kit::Turns turns;
    int failures = 0;
    useThreads(
        1,
        [&](int) {
            for (int number = 0; number < 200; ++number) {
                turns.work([&] { return text(b, "key", "T" + std::to_string(number)); });
            }
        },
        [&] {
            failures = turns.failures(
                200, [&](int number) { return text(b, "key", "T" + std::to_string(number)) == "text"; });
        });
    EXPECT_EQ(failures, 0);
}
