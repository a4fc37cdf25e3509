// SPDX-License-Identifier: MIT
// User defaults: the order of their domains, conversions, changes and files.
#include "foundation/process/NSUserDefaults.h"

#include <pwd.h>

#include <atomic>
#include <cerrno>
#include <thread>

#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSException.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSSet.h"
#include "foundation/process/DefaultsFiles.h"
#include "foundation/process/NSBundle.h"
#include "tests/process/Scene.h"

using namespace ZQFoundation;

namespace {

using Words = std::vector<std::string>;

NSUserDefaults& defaults() { return NSUserDefaults::standardUserDefaults(); }

std::string dictionaryFile(const std::string& entries) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + entries +
           "</dict></plist>\n";
}

std::string entry(const std::string& key, const std::string& text) {
    return "<key>" + key + "</key><string>" + text + "</string>";
}

std::string textOf(const NSObject& value) { return value ? value.description().utf8() : "(nil)"; }

std::string textFor(StringView key) { return textOf(defaults().objectForKey(key)); }

/// A program "Viewer" without a bundle, whose defaults are in a scratch folder.
/// What a test sets, registers or removes stays so in this process: only the keys of `TearDown` are set by
/// several tests, and none of those is expected to come from a file.
class NSUserDefaultsTest : public testing::Test {
protected:
    const scene::Folder folder;
    const scene::NoLanguages languages{};
    const scene::Path store{detail::overrides::defaultsFolder, folder.makeFolder("store")};
    const scene::Path program{detail::overrides::executablePath, folder / "bin/Viewer"};
    const scene::Arguments arguments{detail::overrides::arguments, Words{"/x/Viewer"}};

    void writeApplication(const std::string& bytes) const { folder.write("store/Viewer.plist", bytes); }
    void writeGlobal(const std::string& bytes) const { folder.write("store/NSGlobalDomain.plist", bytes); }

    void TearDown() override {
        for (const char* key : {"Key", "Other", "Order1", "Order2"}) {
            defaults().removeObjectForKey(key);
        }
    }
};

} // namespace

TEST_F(NSUserDefaultsTest, unknownAndNilKeysGiveNil) {
    EXPECT_FALSE(defaults().objectForKey("No such key"));
    EXPECT_FALSE(defaults().objectForKey(nullptr));
    EXPECT_FALSE(defaults().objectForKey(""));
}

TEST_F(NSUserDefaultsTest, firstDomainOfTheSearchOrderAnswers) {
    defaults().registerDefaults(
        {{"Search", "registered"}, {"AppleLanguages", NSArray::arrayWithObject("xx")}});
    EXPECT_EQ(textFor("Search"), "registered");
    writeGlobal(dictionaryFile(entry("Search", "global")));
    EXPECT_EQ(textFor("Search"), "global");
    writeApplication(dictionaryFile(entry("Search", "application")));
    EXPECT_EQ(textFor("Search"), "application");
    const scene::Arguments more(detail::overrides::arguments, Words{"Viewer", "-Search", "command line"});
    EXPECT_EQ(textFor("Search"), "command line");
    EXPECT_EQ(textOf(defaults().dictionaryRepresentation().objectForKey("Search")), "command line");
}

TEST_F(NSUserDefaultsTest, environmentIsBelowTheCommandLineAndAboveTheFiles) {
    writeApplication(dictionaryFile(entry("Given", "application")));
    {
        const scene::Variable given("ZQ_DEFAULTS", "-Given environment -Names '(a, b)'");
        EXPECT_EQ(textFor("Given"), "environment");
        EXPECT_EQ(defaults().arrayForKey("Names"), (NSArray{"a", "b"}));
        EXPECT_EQ(textOf(defaults().dictionaryRepresentation().objectForKey("Given")), "environment");
        const scene::Arguments more(detail::overrides::arguments, Words{"Viewer", "-Given", "command line"});
        EXPECT_EQ(textFor("Given"), "command line");
        EXPECT_EQ(textOf(defaults().dictionaryRepresentation().objectForKey("Given")), "command line");
    }
    const scene::Variable other("ZQ_DEFAULTS", "-Given other");
    EXPECT_EQ(textFor("Given"), "other") << "as it is now";
    const scene::Variable none("ZQ_DEFAULTS", nullptr);
    EXPECT_EQ(textFor("Given"), "application");
}

TEST_F(NSUserDefaultsTest, languageSettingsComeAfterTheGlobalDomainAndBeforeRegisteredValues) {
    defaults().registerDefaults({{"AppleLanguages", NSArray::arrayWithObject("xx")}});
    EXPECT_EQ(defaults().objectForKey("AppleLanguages"), NSArray::arrayWithObject("xx"));
    const scene::Variable language("LANGUAGE", "de_AT:en");
    EXPECT_EQ(defaults().objectForKey("AppleLanguages"), (NSArray{"de-AT", "en"}));
    EXPECT_EQ(defaults().dictionaryRepresentation().objectForKey("AppleLanguages"), (NSArray{"de-AT", "en"}));
    writeGlobal("{ AppleLanguages = (fr); }");
    EXPECT_EQ(defaults().objectForKey("AppleLanguages"), NSArray::arrayWithObject("fr"));
}

TEST_F(NSUserDefaultsTest, applicationDomainIsNamedByTheBundleIdentifier) {
    folder.write("V.app/Contents/Info.plist",
                 dictionaryFile(entry("CFBundleIdentifier", "com.example.viewer")));
    const scene::Path bundled(detail::overrides::executablePath, folder / "V.app/Contents/MacOS/Viewer");
    writeApplication(dictionaryFile(entry("Named", "by process")));
    EXPECT_EQ(textFor("Named"), "(nil)");
    folder.write("store/com.example.viewer.plist", dictionaryFile(entry("Named", "by identifier")));
    EXPECT_EQ(textFor("Named"), "by identifier");
}

TEST_F(NSUserDefaultsTest, applicationDomainIsNamedByTheProcessWithoutAnIdentifier) {
    folder.write("V.app/Contents/Info.plist", dictionaryFile(entry("CFBundleIdentifier", "")));
    const scene::Path bundled(detail::overrides::executablePath, folder / "V.app/Contents/MacOS/Viewer");
    writeApplication(dictionaryFile(entry("Named", "by process")));
    EXPECT_EQ(textFor("Named"), "by process");
    const scene::Arguments other(detail::overrides::arguments, Words{"/x/Other"});
    EXPECT_EQ(textFor("Named"), "(nil)");
}

TEST_F(NSUserDefaultsTest, domainNamesThatNoFileBearsHaveNoFile) {
    folder.write("x.plist", "{ Escaped = yes; }");
    const NSString names[] = {"../x",
                              "a/b",
                              "/",
                              "",
                              nullptr,
                              NSString(StringView(u"a\0b", 3)),
                              NSString(std::u16string(1, char16_t{0xD800}))};
    for (const NSString& name : names) {
        EXPECT_EQ(detail::fileOfDomain(name), "") << name.utf8();
    }
    EXPECT_EQ(detail::fileOfDomain("com.example"), folder / "store/com.example.plist");
    folder.write("V.app/Contents/Info.plist", dictionaryFile(entry("CFBundleIdentifier", "../x")));
    const scene::Path bundled(detail::overrides::executablePath, folder / "V.app/Contents/MacOS/Viewer");
    EXPECT_EQ(textFor("Escaped"), "(nil)");
}

TEST_F(NSUserDefaultsTest, valuesComeBackAsStored) {
    writeApplication(
        dictionaryFile("<key>s</key><string>x</string><key>i</key><integer>5</integer>"
                       "<key>r</key><real>1.5</real><key>b</key><true/>"
                       "<key>d</key><date>2001-01-01T00:00:01Z</date><key>x</key><data>AQI=</data>"
                       "<key>a</key><array><string>y</string></array>"
                       "<key>h</key><dict><key>k</key><string>v</string></dict>"));
    EXPECT_EQ(defaults().objectForKey("s"), NSObject("x"));
    EXPECT_EQ(defaults().objectForKey("i"), NSObject(5));
    EXPECT_FALSE(defaults().objectForKey("i").as<NSNumber>().isBoolean());
    EXPECT_TRUE(defaults().objectForKey("r").as<NSNumber>().isReal());
    EXPECT_TRUE(defaults().objectForKey("b").as<NSNumber>().isBoolean());
    EXPECT_EQ(defaults().objectForKey("d"), NSObject(NSDate::dateWithTimeIntervalSinceReferenceDate(1)));
    EXPECT_EQ(defaults().objectForKey("x"), NSObject(NSData::dataWithBytes_length("\1\2", 2)));
    EXPECT_EQ(defaults().objectForKey("a"), NSObject(NSArray::arrayWithObject("y")));
    EXPECT_EQ(defaults().objectForKey("h"), NSObject(NSDictionary{{"k", "v"}}));
}

TEST_F(NSUserDefaultsTest, filesMayBeInAnyForm) {
    writeApplication("{ Form = old; }");
    EXPECT_EQ(textFor("Form"), "old");
    const std::string binary(
        "bplist00\xD1\x01\x02TFormVbinary\x08\x0B\x10\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x03"
        "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x17",
        23 + 3 + 32);
    writeApplication(binary);
    EXPECT_EQ(textFor("Form"), "binary");
    writeApplication("Form = strings;");
    EXPECT_EQ(textFor("Form"), "strings");
}

TEST_F(NSUserDefaultsTest, mergedViewTakesEachKeyFromItsFirstDomainAndMergesNoValues) {
    defaults().registerDefaults({{"MergeD", "registered"}, {"MergeR", "registered"}});
    writeGlobal(dictionaryFile("<key>MergeD</key><dict><key>x</key><string>1</string></dict>" +
                               entry("MergeG", "global")));
    writeApplication(dictionaryFile("<key>MergeD</key><dict><key>y</key><string>2</string></dict>"));
    const NSDictionary merged = defaults().dictionaryRepresentation();
    EXPECT_EQ(merged.objectForKey("MergeD"), NSObject(NSDictionary{{"y", "2"}}));
    EXPECT_EQ(textOf(merged.objectForKey("MergeG")), "global");
    EXPECT_EQ(textOf(merged.objectForKey("MergeR")), "registered");
    for (const NSDictionaryEntry& pair : merged) {
        EXPECT_EQ(defaults().objectForKey(pair.key.as<NSString>()), pair.value);
    }
}

TEST_F(NSUserDefaultsTest, mergedViewListsDomainsInSearchOrderAndKeysInFileOrder) {
    defaults().registerDefaults({{"Order9", 1}});
    writeGlobal(dictionaryFile(entry("Order8", "g") + entry("Order3", "g") + entry("Order5", "g")));
    writeApplication(dictionaryFile(entry("Order7", "a") + entry("Order2", "a") + entry("Order5", "a")));
    const scene::Arguments more(detail::overrides::arguments,
                                Words{"Viewer", "-Order6", "c", "-Order2", "c"});
    defaults().setObject_forKey("set", "Order1");
    std::string order;
    for (const NSDictionaryEntry& pair : defaults().dictionaryRepresentation()) {
        const std::string key = pair.key.as<NSString>().utf8();
        order += key.compare(0, 5, "Order") == 0 ? key.substr(5) : "";
    }
    EXPECT_EQ(order, "627518"
                     "39");
}

TEST_F(NSUserDefaultsTest, settingReachesTheApplicationDomainOnly) {
    writeGlobal(dictionaryFile(entry("Key", "global")));
    writeApplication(dictionaryFile(entry("Key", "file")));
    defaults().setObject_forKey("set", "Key");
    EXPECT_EQ(textFor("Key"), "set");
    EXPECT_EQ(textOf(defaults().dictionaryRepresentation().objectForKey("Key")), "set");
    {
        const scene::Arguments more(detail::overrides::arguments, Words{"Viewer", "-Key", "command line"});
        EXPECT_EQ(textFor("Key"), "command line");
    }
    defaults().removeObjectForKey("Key");
    EXPECT_EQ(textFor("Key"), "global");
    EXPECT_EQ(textOf(defaults().dictionaryRepresentation().objectForKey("Key")), "global");
    defaults().setObject_forKey("again", "Key");
    EXPECT_EQ(textFor("Key"), "again");
}

TEST_F(NSUserDefaultsTest, aNilValueRemoves) {
    defaults().setObject_forKey("set", "Key");
    defaults().setObject_forKey(nullptr, "Key");
    EXPECT_EQ(textFor("Key"), "(nil)");
    defaults().removeObjectForKey(nullptr);
}

TEST_F(NSUserDefaultsTest, everyKindOfPropertyListValueCanBeSet) {
    const NSObject values[] = {
        "text", 5, true, 0.5, NSDate::date(), NSData::data(), NSArray{1, 2}, NSDictionary{{"k", "v"}}};
    for (const NSObject& value : values) {
        defaults().setObject_forKey(value, "Key");
        EXPECT_EQ(defaults().objectForKey("Key"), value);
    }
}

TEST_F(NSUserDefaultsTest, aValueOfAnotherKindRaisesAndChangesNothing) {
    defaults().setObject_forKey("before", "Key");
    const NSObject values[] = {NSNull::null(), NSSet::set(), NSArray::arrayWithObject(NSNull::null()),
                               NSDictionary{{1, "x"}}};
    for (const NSObject& value : values) {
        try {
            defaults().setObject_forKey(value, "Key");
            ADD_FAILURE() << "accepted a " << value.className().utf8();
        } catch (const NSException& exception) {
            EXPECT_EQ(exception.name(), NSInvalidArgumentException);
        }
        EXPECT_THROW(defaults().registerDefaults({{"Key", value}}), NSException);
    }
    EXPECT_THROW(defaults().setObject_forKey("x", nullptr), NSException);
    EXPECT_THROW(defaults().registerDefaults({{1, "x"}}), NSException);
    EXPECT_EQ(textFor("Key"), "before");
}

TEST_F(NSUserDefaultsTest, laterRegistrationsAddToEarlierOnes) {
    defaults().registerDefaults({{"Registered1", "a"}, {"Registered2", "a"}});
    defaults().registerDefaults({{"Registered2", "b"}, {"Registered3", "b"}});
    defaults().registerDefaults(nullptr);
    EXPECT_EQ(textFor("Registered1") + textFor("Registered2") + textFor("Registered3"), "abb");
}

TEST_F(NSUserDefaultsTest, typedReads) {
    writeApplication(
        dictionaryFile("<key>text</key><string>12.5x</string><key>yes</key><string>Yes</string>"
                       "<key>number</key><integer>5000000000</integer><key>real</key><real>2.5</real>"
                       "<key>true</key><true/><key>list</key><array/><key>table</key><dict/>"
                       "<key>data</key><data>AQ==</data>"));
    EXPECT_EQ(defaults().stringForKey("text"), "12.5x");
    EXPECT_EQ(defaults().stringForKey("number"), "5000000000");
    EXPECT_EQ(defaults().stringForKey("true"), "1");
    EXPECT_FALSE(defaults().stringForKey("list"));
    EXPECT_FALSE(defaults().stringForKey("none"));
    EXPECT_TRUE(defaults().arrayForKey("list"));
    EXPECT_FALSE(defaults().arrayForKey("table"));
    EXPECT_TRUE(defaults().dictionaryForKey("table"));
    EXPECT_FALSE(defaults().dictionaryForKey("list"));
    EXPECT_EQ(defaults().dataForKey("data").length(), 1u);
    EXPECT_FALSE(defaults().dataForKey("text"));
    EXPECT_EQ(defaults().integerForKey("text"), 12);
    EXPECT_EQ(defaults().integerForKey("number"), 5000000000);
    EXPECT_EQ(defaults().integerForKey("real"), 2);
    EXPECT_EQ(defaults().integerForKey("true"), 1);
    EXPECT_EQ(defaults().integerForKey("list"), 0);
    EXPECT_EQ(defaults().integerForKey("none"), 0);
    EXPECT_EQ(defaults().doubleForKey("text"), 12.5);
    EXPECT_EQ(defaults().doubleForKey("real"), 2.5);
    EXPECT_EQ(defaults().doubleForKey("table"), 0);
    EXPECT_EQ(defaults().floatForKey("real"), 2.5f);
    EXPECT_EQ(defaults().floatForKey("text"), 12.5f);
    EXPECT_EQ(defaults().floatForKey("none"), 0);
    EXPECT_TRUE(defaults().boolForKey("yes"));
    EXPECT_TRUE(defaults().boolForKey("true"));
    EXPECT_TRUE(defaults().boolForKey("text"));
    EXPECT_FALSE(defaults().boolForKey("list"));
    EXPECT_FALSE(defaults().boolForKey("none"));
}

TEST_F(NSUserDefaultsTest, aChangedFileIsSeenByTheNextLook) {
    for (const char* text : {"one", "two", "six", "ten"}) { // of one size, one right after the other
        writeApplication(dictionaryFile(entry("Changed", text)));
        EXPECT_EQ(textFor("Changed"), text);
        EXPECT_EQ(textOf(defaults().dictionaryRepresentation().objectForKey("Changed")), text);
    }
    folder.write("store/new", dictionaryFile(entry("Changed", "new")));
    ASSERT_EQ(::rename((folder / "store/new").c_str(), (folder / "store/Viewer.plist").c_str()), 0);
    EXPECT_EQ(textFor("Changed"), "new");
    ASSERT_EQ(::unlink((folder / "store/Viewer.plist").c_str()), 0);
    EXPECT_EQ(textFor("Changed"), "(nil)");
    writeApplication(dictionaryFile(entry("Changed", "back")));
    EXPECT_EQ(textFor("Changed"), "back");
}

TEST_F(NSUserDefaultsTest, aChangeUnderAnOldModificationTimeIsSeen) {
    writeApplication(dictionaryFile(entry("Changed", "one")));
    ::usleep(150000); // so that the file counts as settled
    EXPECT_EQ(textFor("Changed"), "one");
    struct stat before;
    ASSERT_EQ(::stat((folder / "store/Viewer.plist").c_str(), &before), 0);
    writeApplication(dictionaryFile(entry("Changed", "two")));
    const timespec times[] = {before.st_atim, before.st_mtim};
    ASSERT_EQ(::utimensat(AT_FDCWD, (folder / "store/Viewer.plist").c_str(), times, 0), 0);
    EXPECT_EQ(textFor("Changed"), "two");
}

TEST_F(NSUserDefaultsTest, anUnchangedFileIsNotReadAgain) {
    writeApplication(dictionaryFile("<key>Kept</key><array><string>x</string></array>"));
    ::usleep(150000);
    const NSArray first = defaults().arrayForKey("Kept");
    const NSArray second = defaults().arrayForKey("Kept");
    ASSERT_EQ(first.count(), 1u);
    EXPECT_EQ(first.begin(), second.begin());
}

namespace {

struct HostileFile {
    const char* what;
    void (*make)(const scene::Folder& folder, const std::string& name);
};

void link(const char* target, const std::string& path) { ASSERT_EQ(::symlink(target, path.c_str()), 0); }

const HostileFile hostileFiles[] = {
    {"absent",
     [](const scene::Folder&, const std::string&) {
     }},
    {"empty",
     [](const scene::Folder& f, const std::string& n) {
         f.write(n, "");
     }},
    {"cut off",
     [](const scene::Folder& f, const std::string& n) {
         f.write(n, "<plist><dict><key>Hostile</key><str");
     }},
    {"cut off binary",
     [](const scene::Folder& f, const std::string& n) {
         f.write(n, "bplist00\xD1\x01");
     }},
    {"noise",
     [](const scene::Folder& f, const std::string& n) {
         f.write(n, std::string("\0\xFF\xFE\x80{", 5));
     }},
    {"NULs",
     [](const scene::Folder& f, const std::string& n) {
         f.write(n, std::string(100000, '\0'));
     }},
    {"brackets",
     [](const scene::Folder& f, const std::string& n) {
         f.write(n, std::string(1000000, '('));
     }},
    {"array",
     [](const scene::Folder& f, const std::string& n) {
         f.write(n, "(Hostile)");
     }},
    {"string",
     [](const scene::Folder& f, const std::string& n) {
         f.write(n, "Hostile");
     }},
    {"folder",
     [](const scene::Folder& f, const std::string& n) {
         f.makeFolder(n);
     }},
    {"pipe",
     [](const scene::Folder& f, const std::string& n) {
         ASSERT_EQ(::mkfifo((f / n).c_str(), 0644), 0);
     }},
    {"link loop",
     [](const scene::Folder& f, const std::string& n) {
         link((f / n).c_str(), f / n);
     }},
    {"dangling link",
     [](const scene::Folder& f, const std::string& n) {
         link("nowhere", f / n);
     }},
    {"endless device",
     [](const scene::Folder& f, const std::string& n) {
         link("/dev/zero", f / n);
     }},
    {"terminal",
     [](const scene::Folder& f, const std::string& n) {
         link("/dev/tty", f / n);
     }},
    {"over 16 MiB",
     [](const scene::Folder& f, const std::string& n) {
         f.write(n, "{ Hostile = yes; }" + std::string(std::size_t{16} << 20, ' '));
     }},
    {"over 1 GiB",
     [](const scene::Folder& f, const std::string& n) {
         f.write(n, "{ Hostile = yes; }");
         ASSERT_EQ(::truncate((f / n).c_str(), (off_t{1} << 30) + 1), 0);
     }},
};

} // namespace

TEST_F(NSUserDefaultsTest, filesThatHoldNoDictionaryArePassedOver) {
    defaults().registerDefaults({{"Hostile", "registered"}});
    ::alarm(300); // a look that blocks ends the test
    for (const HostileFile& file : hostileFiles) {
        SCOPED_TRACE(file.what);
        for (const char* name : {"store/Viewer.plist", "store/NSGlobalDomain.plist"}) {
            scene::removeTree(folder.path());
            folder.makeFolder("");
            folder.makeFolder("store");
            file.make(folder, name);
            EXPECT_EQ(textFor("Hostile"), "registered");
            EXPECT_EQ(textOf(defaults().dictionaryRepresentation().objectForKey("Hostile")), "registered");
        }
        if (std::string(file.what) != "absent") {
            folder.write("store/Viewer.plist.good", dictionaryFile(entry("Hostile", "application")));
            scene::removeTree(folder / "store/Viewer.plist");
            ASSERT_EQ(::rename((folder / "store/Viewer.plist.good").c_str(),
                               (folder / "store/Viewer.plist").c_str()),
                      0);
            EXPECT_EQ(textFor("Hostile"), "application");
        }
    }
    ::alarm(0);
}

TEST_F(NSUserDefaultsTest, anUnreadableFileIsPassedOverUntilItIsReadable) {
    const std::string file = folder.write("store/Viewer.plist", dictionaryFile(entry("Sealed", "x")));
    ASSERT_EQ(::chmod(file.c_str(), 0), 0);
    EXPECT_EQ(scene::inUnprivilegedChild([&] { return textFor("Sealed") == "(nil)" ? 0 : 1; }), 0);
    ASSERT_EQ(::chmod(file.c_str(), 0644), 0);
    EXPECT_EQ(scene::inUnprivilegedChild([&] { return textFor("Sealed") == "x" ? 0 : 1; }), 0);
    ASSERT_EQ(::chmod((folder / "store").c_str(), 0), 0);
    EXPECT_EQ(scene::inUnprivilegedChild([&] { return textFor("Sealed") == "(nil)" ? 0 : 1; }), 0);
    ASSERT_EQ(::chmod((folder / "store").c_str(), 0755), 0);
    EXPECT_EQ(textFor("Sealed"), "x");
}

TEST_F(NSUserDefaultsTest, aProcessOutOfDescriptorsKeepsWhatItHasReadAndReadsLaterWhatItCouldNot) {
    writeGlobal(dictionaryFile(entry("Scarce", "global")));
    ::usleep(150000);
    EXPECT_EQ(textFor("Scarce"), "global");
    std::vector<int> taken;
    for (int descriptor = ::dup(0); descriptor >= 0; descriptor = ::dup(0)) {
        taken.push_back(descriptor);
    }
    ASSERT_FALSE(taken.empty());
    ::close(taken.back()); // one, to make the other file with
    taken.pop_back();
    writeApplication(dictionaryFile(entry("Scarce", "application")));
    taken.push_back(::dup(0));
    EXPECT_EQ(textFor("Scarce"), "global");
    for (const int descriptor : taken) {
        ::close(descriptor);
    }
    EXPECT_EQ(textFor("Scarce"), "application");
}

namespace {

std::vector<std::string> listing(const std::string& path) {
    std::vector<std::string> names;
    DIR* const opened = ::opendir(path.c_str());
    while (const dirent* found = opened != nullptr ? ::readdir(opened) : nullptr) {
        names.push_back(found->d_name);
    }
    ::closedir(opened);
    return names;
}

void useEverything() {
    defaults().objectForKey("Key");
    defaults().dictionaryRepresentation();
    defaults().setObject_forKey("set", "Key");
    defaults().setObject_forKey(5, "Other");
    defaults().registerDefaults({{"Everything", "x"}});
    defaults().removeObjectForKey("Key");
    defaults().stringForKey("Other");
    defaults().dictionaryRepresentation();
}

} // namespace

TEST_F(NSUserDefaultsTest, filesAreWrittenByNothingButSynchronize) {
    const std::string bytes = dictionaryFile(entry("Key", "x")) + "trailing rest\n";
    writeApplication(bytes);
    writeGlobal("{ broken");
    struct stat before;
    ASSERT_EQ(::stat((folder / "store/Viewer.plist").c_str(), &before), 0);
    const std::vector<std::string> names = listing(folder / "store");
    useEverything();
    struct stat after;
    ASSERT_EQ(::stat((folder / "store/Viewer.plist").c_str(), &after), 0);
    EXPECT_EQ(scene::contentsOf(folder / "store/Viewer.plist"), bytes);
    EXPECT_EQ(scene::contentsOf(folder / "store/NSGlobalDomain.plist"), "{ broken");
    EXPECT_EQ(before.st_ino, after.st_ino);
    EXPECT_EQ(before.st_ctim.tv_sec, after.st_ctim.tv_sec);
    EXPECT_EQ(before.st_ctim.tv_nsec, after.st_ctim.tv_nsec);
    EXPECT_EQ(listing(folder / "store"), names);
}

TEST_F(NSUserDefaultsTest, readOnlyMediaAreEnough) {
    const std::string file = folder.write("store/Viewer.plist", dictionaryFile(entry("Media", "x")));
    ASSERT_EQ(::chmod(file.c_str(), 0444), 0);
    ASSERT_EQ(::chmod((folder / "store").c_str(), 0555), 0);
    EXPECT_EQ(scene::inUnprivilegedChild([&] {
                  if (textFor("Media") != "x") {
                      return 1;
                  }
                  useEverything();
                  return textFor("Other") == "5" ? 0 : 2;
              }),
              0);
    ASSERT_EQ(::chmod((folder / "store").c_str(), 0755), 0);
}

TEST_F(NSUserDefaultsTest, operationsLeaveErrnoAlone) {
    writeApplication(dictionaryFile(entry("Key", "x")));
    errno = 4321;
    useEverything();
    EXPECT_EQ(errno, 4321);
    scene::removeTree(folder / "store");
    errno = 4321;
    useEverything();
    EXPECT_EQ(errno, 4321);
}

// Where the files are

namespace {

std::string homeOfAccount() {
    const passwd* const account = ::getpwuid(::geteuid());
    return account != nullptr ? account->pw_dir : "";
}

} // namespace

TEST(NSUserDefaultsFolder, followsTheEnvironment) {
    const scene::Path none(detail::overrides::defaultsFolder, "");
    detail::overrides::defaultsFolder = nullptr;
    const std::string database = homeOfAccount() + "/.config/ZQFoundation";
    struct Row {
        const char* configuration;
        const char* home;
        std::string folder;
    };
    const Row rows[] = {
        {"/conf", "/home/x", "/conf/ZQFoundation"},
        {nullptr, "/home/x", "/home/x/.config/ZQFoundation"},
        {"", "/home/x", "/home/x/.config/ZQFoundation"},
        {"conf", "/home/x", "/home/x/.config/ZQFoundation"},
        {"~/conf", "/home/x", "/home/x/.config/ZQFoundation"},
        {nullptr, nullptr, database},
        {nullptr, "", database},
        {nullptr, "home", database},
        {nullptr, "../x", database},
    };
    for (const Row& row : rows) {
        const scene::Variable configuration("XDG_CONFIG_HOME", row.configuration);
        const scene::Variable home("HOME", row.home);
        EXPECT_EQ(detail::defaultsFolder(), row.folder);
    }
}

TEST(NSUserDefaultsFolder, filesAreFoundInTheConfigurationAndTheHomeFolder) {
    const scene::Folder folder;
    const scene::NoLanguages languages{};
    const scene::Path program(detail::overrides::executablePath, folder / "bin/Viewer");
    const scene::Arguments arguments(detail::overrides::arguments, Words{"Viewer"});
    folder.write("home/.config/ZQFoundation/Viewer.plist", "{ Place = home; }");
    folder.write("conf/ZQFoundation/Viewer.plist", "{ Place = configuration; }");
    const scene::Variable home("HOME", (folder / "home").c_str());
    const scene::Variable noConfiguration("XDG_CONFIG_HOME", nullptr);
    EXPECT_EQ(textFor("Place"), "home");
    const scene::Variable configuration("XDG_CONFIG_HOME", (folder / "conf").c_str());
    EXPECT_EQ(textFor("Place"), "configuration");
}

TEST(NSUserDefaultsFolder, aHomeThatIsNoFolderHoldsNothing) {
    const scene::Folder folder;
    const scene::Arguments arguments(detail::overrides::arguments, Words{"Viewer"});
    const scene::Variable configuration("XDG_CONFIG_HOME", nullptr);
    folder.write("file", "x");
    for (const std::string& path : {folder / "file", folder / "absent", std::string("/dev/null")}) {
        const scene::Variable home("HOME", path.c_str());
        EXPECT_EQ(textFor("Place"), "(nil)");
    }
}

// The whole life of a process

namespace {

/// Says what it finds before `main` or after it, when this program is run again for that.
struct Witness {
    Witness() {
        if (std::getenv("ZQ_TEST_BEFORE_MAIN") != nullptr) {
            report();
            ::_exit(0);
        }
    }
    ~Witness() {
        if (std::getenv("ZQ_TEST_AFTER_MAIN") != nullptr) {
            report();
        }
    }
    static void report() {
        std::string text = "<";
        for (const NSDictionaryEntry& pair : defaults().dictionaryRepresentation()) {
            text += textOf(pair.key) + "=" + textFor(pair.key.as<NSString>()) + ";";
        }
        text += ">";
        if (::write(1, text.data(), text.size()) < 0) {
            ::_exit(1);
        }
    }
};

const Witness witness;

std::string reportOfAnotherRun(const scene::Folder& folder, const char* moment) {
    const std::string output =
        scene::runAgain({{"XDG_CONFIG_HOME", folder.path()}, {"LANGUAGE", "de:en"}, {moment, "1"}},
                        {"Viewer", "--gtest_filter=none", "-Level", "3", "-Names", "(a)"});
    const std::size_t start = output.find('<');
    return start == std::string::npos ? output : output.substr(start, output.find('>') + 1 - start);
}

} // namespace

TEST(NSUserDefaultsProcess, twoRunsListTheSameOrderBeforeAndAfterMain) {
    const scene::Folder folder;
    std::string entries;
    std::string expected;
    for (int number = 0; number < 40; ++number) {
        const std::string key = "K" + std::to_string(number * 7919 % 101);
        entries += entry(key, "v");
        expected += key + "=v;";
    }
    folder.write("ZQFoundation/Viewer.plist", dictionaryFile(entries));
    folder.write("ZQFoundation/NSGlobalDomain.plist", "{ z = 1; K0 = other; b = 2; }");
    expected = "<Level=3;Names=(\n    a\n);" + expected + "z=1;b=2;AppleLanguages=(\n    de,\n    en\n);>";
    EXPECT_EQ(reportOfAnotherRun(folder, "ZQ_TEST_BEFORE_MAIN"), expected);
    EXPECT_EQ(reportOfAnotherRun(folder, "ZQ_TEST_BEFORE_MAIN"), expected);
    EXPECT_EQ(reportOfAnotherRun(folder, "ZQ_TEST_AFTER_MAIN"), expected);
}

namespace {

/// Reads, sets, lists and removes; false when an answer was wrong.
bool useAllAtOnce(const std::string& own, int round) {
    defaults().setObject_forKey(round, own);
    bool right = defaults().integerForKey(own) == round;
    right = right && textFor("Steady") == "x";
    right = right && textOf(defaults().dictionaryRepresentation().objectForKey("Steady")) == "x";
    if (round % 50 == 0) {
        defaults().removeObjectForKey(own);
        right = right && !defaults().objectForKey(own);
    }
    return right;
}

/// What a forked child does at once; 0 when all is well.
int answerInChild() {
    ::alarm(60); // ends a child that hangs
    if (textFor("Steady") != "x") {
        return 1;
    }
    if (textOf(defaults().dictionaryRepresentation().objectForKey("Steady")) != "x") {
        return 2;
    }
    defaults().setObject_forKey(::getpid(), "Child");
    return defaults().integerForKey("Child") == ::getpid() ? 0 : 3;
}

} // namespace

TEST_F(NSUserDefaultsTest, answersInForkedChildrenWhileThreadsReadAndSet) {
    writeApplication(dictionaryFile(entry("Steady", "x")));
    scene::Turns turns;
    std::atomic<bool> stop{false};
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&, number] {
            const std::string own = "Busy" + std::to_string(number);
            for (int round = 0; !stop; ++round) {
                wrong += turns.work([&] { return useAllAtOnce(own, round); }) ? 0 : 1;
            }
        });
    }
    // Where forks take turns they are slow and never interrupt an operation: fewer show as much.
    const int children = scene::forksTakeTurns ? 40 : 2000;
    if (scene::forksTakeTurns) {
        std::printf("[  SCALE   ] %d forked children in place of 2000 (sanitizer)\n", children);
    }
    int failures = 0;
    for (int count = 0; count < children; ++count) {
        const pid_t child = turns.fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            scene::leave(answerInChild());
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        failures += status == 0 ? 0 : 1;
    }
    stop = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(wrong, 0);
}

TEST_F(NSUserDefaultsTest, givesThreadsWholeFilesWhileTheFileIsReplaced) {
    const auto file = [](int number) {
        const std::string text = std::to_string(number);
        return dictionaryFile(entry("First", text) + entry("Second", text));
    };
    writeApplication(file(0));
    std::atomic<bool> stop{false};
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int number = 0; number < 2; ++number) {
        threads.emplace_back([&] {
            while (!stop) {
                const NSDictionary all = defaults().dictionaryRepresentation();
                wrong += all.objectForKey("First") && all.objectForKey("First") == all.objectForKey("Second")
                             ? 0
                             : 1;
            }
        });
    }
    for (int number = 1; number < 500; ++number) {
        folder.write("store/next", file(number));
        ::rename((folder / "store/next").c_str(), (folder / "store/Viewer.plist").c_str());
        EXPECT_EQ(textFor("First"), std::to_string(number));
    }
    stop = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

TEST_F(NSUserDefaultsTest, losesNoChangeOfConcurrentSetters) {
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([number] {
            for (int key = 0; key < 100; ++key) {
                defaults().setObject_forKey(key, "Set" + std::to_string(number) + "." + std::to_string(key));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (int number = 0; number < 4; ++number) {
        for (int key = 0; key < 100; ++key) {
            const std::string name = "Set" + std::to_string(number) + "." + std::to_string(key);
            EXPECT_EQ(defaults().objectForKey(name), NSObject(key));
            defaults().removeObjectForKey(name);
        }
    }
}
