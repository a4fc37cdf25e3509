// SPDX-License-Identifier: MIT
// User defaults: the order of their domains, conversions, changes and files.
#include "foundation/process/NSUserDefaults.h"

#include <atomic>

#include <pwd.h>

#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSSet.h"
#include "foundation/process/DefaultsFiles.h"
#include "foundation/process/NSBundle.h"
#include "tests/kit/Items.h"
#include "tests/kit/Threads.h"
#include "tests/kit/Turns.h"
#include "tests/kit/Values.h"
#include "tests/process/DefaultsScene.h"

using namespace ZQFoundation;
using process::defaults;
using process::useThreads;
using process::Words;

namespace {

std::string dictionaryFile(const std::string& entries) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + entries +
           "</dict></plist>\n";
}

std::string entry(const std::string& key, const std::string& text) {
    return "<key>" + key + "</key><string>" + text + "</string>";
}

std::string textFor(StringView key) { return kit::shown(defaults().objectForKey(key)); }

std::string mergedText(const char* key) {
    return kit::shown(defaults().dictionaryRepresentation().objectForKey(key));
}

/// The text that both ways of reading give.
std::string textBothWays(const char* key) {
    EXPECT_EQ(mergedText(key), textFor(key));
    return textFor(key);
}

/// What a test sets, registers or removes stays so in this process: only the keys of `TearDown` are set by
/// several tests, and none of those is expected to come from a file.
class NSUserDefaultsTest : public process::DefaultsScene {
protected:
    void writeApplication(const std::string& bytes) const { folder.write("store/Viewer.plist", bytes); }
    void writeGlobal(const std::string& bytes) const { folder.write("store/NSGlobalDomain.plist", bytes); }
    std::string makeBundle(const std::string& identifier) const {
        folder.write("V.app/Contents/Info.plist", dictionaryFile(entry("CFBundleIdentifier", identifier)));
        return folder / "V.app/Contents/MacOS/Viewer";
    }
    /// A dictionary with the entry and an array "Settled", for `settle`.
    static std::string settling(const std::string& key, const std::string& text) {
        return dictionaryFile(entry(key, text) + "<key>Settled</key><array><string>x</string></array>");
    }
    /// Reads until the file is no longer read again, as it is for some time after its change.
    static void settle() {
        while (defaults().arrayForKey("Settled").begin() != defaults().arrayForKey("Settled").begin()) {
            ::usleep(1000);
        }
    }

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
    const kit::Variable environment("ZQ_DEFAULTS", nullptr);
    defaults().registerDefaults({{"Search", "registered"}});
    EXPECT_EQ(textBothWays("Search"), "registered");
    writeGlobal(dictionaryFile(entry("Search", "global")));
    EXPECT_EQ(textBothWays("Search"), "global");
    writeApplication(dictionaryFile(entry("Search", "application")));
    EXPECT_EQ(textBothWays("Search"), "application");
    environment.change("-Search environment -Names '(a, b)'");
    EXPECT_EQ(textBothWays("Search"), "environment");
    EXPECT_EQ(defaults().arrayForKey("Names"), (NSArray{"a", "b"}));
    environment.change("-Search other");
    EXPECT_EQ(textBothWays("Search"), "other") << "as it is now";
    const kit::Arguments more(detail::overrides::arguments, Words{"Viewer", "-Search", "command line"});
    EXPECT_EQ(textBothWays("Search"), "command line");
}

TEST_F(NSUserDefaultsTest, languageSettingsComeAfterTheGlobalDomainAndBeforeRegisteredValues) {
    defaults().registerDefaults({{"AppleLanguages", NSArray::arrayWithObject("xx")}});
    EXPECT_EQ(defaults().objectForKey("AppleLanguages"), NSArray::arrayWithObject("xx"));
    const kit::Variable language("LANGUAGE", "de_AT:en");
    EXPECT_EQ(defaults().objectForKey("AppleLanguages"), (NSArray{"de-AT", "en"}));
    EXPECT_EQ(defaults().dictionaryRepresentation().objectForKey("AppleLanguages"), (NSArray{"de-AT", "en"}));
    writeGlobal("{ AppleLanguages = (fr); }");
    EXPECT_EQ(defaults().objectForKey("AppleLanguages"), NSArray::arrayWithObject("fr"));
}

TEST_F(NSUserDefaultsTest, applicationDomainIsNamedByTheBundleIdentifier) {
    const kit::Path bundled(detail::overrides::executablePath, makeBundle("com.example.viewer"));
    writeApplication(dictionaryFile(entry("Named", "by process")));
    EXPECT_EQ(textFor("Named"), "(nil)");
    folder.write("store/com.example.viewer.plist", dictionaryFile(entry("Named", "by identifier")));
    EXPECT_EQ(textFor("Named"), "by identifier");
}

TEST_F(NSUserDefaultsTest, applicationDomainIsNamedByTheProcessWithoutAnIdentifier) {
    const kit::Path bundled(detail::overrides::executablePath, makeBundle(""));
    writeApplication(dictionaryFile(entry("Named", "by process")));
    EXPECT_EQ(textFor("Named"), "by process");
    const kit::Arguments other(detail::overrides::arguments, Words{"/x/Other"});
    EXPECT_EQ(textFor("Named"), "(nil)");
}

TEST_F(NSUserDefaultsTest, domainNamesThatNoFileCanHaveHaveNoFile) {
    folder.write("x.plist", "{ Escaped = yes; }");
    const NSString loneSurrogate(std::u16string(1, char16_t{0xD800}));
    const NSString names[] = {"../x",       "a/b", "/", "", nullptr, NSString(StringView(u"a\0b", 3)),
                              loneSurrogate};
    for (const NSString& name : names) {
        EXPECT_EQ(detail::fileOfDomain(name), "") << name.utf8();
    }
    EXPECT_EQ(detail::fileOfDomain("com.example"), folder / "store/com.example.plist");
    const kit::Path bundled(detail::overrides::executablePath, makeBundle("../x"));
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
    EXPECT_EQ(kit::shown(merged.objectForKey("MergeG")), "global");
    EXPECT_EQ(kit::shown(merged.objectForKey("MergeR")), "registered");
    for (const NSDictionaryEntry& pair : merged) {
        EXPECT_EQ(defaults().objectForKey(pair.key.as<NSString>()), pair.value);
    }
}

TEST_F(NSUserDefaultsTest, mergedViewListsDomainsInSearchOrderAndKeysInFileOrder) {
    defaults().registerDefaults({{"Order9", 1}});
    writeGlobal(dictionaryFile(entry("Order8", "g") + entry("Order3", "g") + entry("Order5", "g")));
    writeApplication(dictionaryFile(entry("Order7", "a") + entry("Order2", "a") + entry("Order5", "a")));
    const kit::Arguments more(detail::overrides::arguments, Words{"Viewer", "-Order6", "c", "-Order2", "c"});
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
    EXPECT_EQ(textBothWays("Key"), "set");
    {
        const kit::Arguments more(detail::overrides::arguments, Words{"Viewer", "-Key", "command line"});
        EXPECT_EQ(textFor("Key"), "command line");
    }
    defaults().removeObjectForKey("Key");
    EXPECT_EQ(textBothWays("Key"), "global");
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
        EXPECT_EQ(kit::raised([&] { defaults().setObject_forKey(value, "Key"); }),
                  "NSInvalidArgumentException")
            << value.className().utf8();
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
    EXPECT_EQ(defaults().dataForKey("data").length(), 1u);
    EXPECT_FALSE(defaults().dataForKey("text"));
    const struct {
        const char* key;
        NSString string;
        std::int64_t integer;
        double real;
        bool boolean;
        bool isArray;
        bool isDictionary;
    } rows[] = {
        {"text", "12.5x", 12, 12.5, true, false, false},
        {"yes", "Yes", 0, 0, true, false, false},
        {"number", "5000000000", 5000000000, 5e9, true, false, false},
        {"real", "2.5", 2, 2.5, true, false, false},
        {"true", "1", 1, 1, true, false, false},
        {"list", nullptr, 0, 0, false, true, false},
        {"table", nullptr, 0, 0, false, false, true},
        {"none", nullptr, 0, 0, false, false, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.key);
        EXPECT_EQ(defaults().stringForKey(row.key), row.string);
        EXPECT_EQ(defaults().integerForKey(row.key), row.integer);
        EXPECT_EQ(defaults().doubleForKey(row.key), row.real);
        EXPECT_EQ(defaults().floatForKey(row.key), static_cast<float>(row.real));
        EXPECT_EQ(defaults().boolForKey(row.key), row.boolean);
        EXPECT_EQ(static_cast<bool>(defaults().arrayForKey(row.key)), row.isArray);
        EXPECT_EQ(static_cast<bool>(defaults().dictionaryForKey(row.key)), row.isDictionary);
    }
}

TEST_F(NSUserDefaultsTest, aChangedFileIsSeenByTheNextLook) {
    for (const char* text : {"one", "two", "six", "ten"}) { // of one size, one right after the other
        writeApplication(dictionaryFile(entry("Changed", text)));
        EXPECT_EQ(textBothWays("Changed"), text);
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
    const std::string file = folder / "store/Viewer.plist";
    writeApplication(settling("Changed", "one"));
    settle();
    EXPECT_EQ(textFor("Changed"), "one");
    struct stat before {};
    ASSERT_EQ(::stat(file.c_str(), &before), 0);
    writeApplication(settling("Changed", "two"));
    const timespec times[] = {before.st_atim, before.st_mtim};
    ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    EXPECT_EQ(textFor("Changed"), "two");
}

TEST_F(NSUserDefaultsTest, anUnchangedFileIsNotReadAgain) {
    writeApplication(settling("Kept", "x"));
    settle();
    EXPECT_EQ(defaults().arrayForKey("Settled").begin(), defaults().arrayForKey("Settled").begin());
}

namespace {

using Make = void (*)(const std::string& path);

struct HostileFile {
    const char* what;
    std::string bytes;
    Make make = nullptr; ///< in place of a file with the bytes
};

void makeLink(const char* target, const std::string& path) { ASSERT_EQ(::symlink(target, path.c_str()), 0); }

void makeHole(const std::string& path) {
    const kit::Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    ASSERT_EQ(::write(file.number(), "{ Hostile = yes; }", 18), 18);
    ASSERT_EQ(::ftruncate(file.number(), (off_t{1} << 30) + 1), 0);
}

const HostileFile hostileFiles[] = {
    {"empty", ""},
    {"cut off", "<plist><dict><key>Hostile</key><str"},
    {"cut off binary", "bplist00\xD1\x01"},
    {"noise", std::string("\0\xFF\xFE\x80{", 5)},
    {"NULs", std::string(100000, '\0')},
    {"brackets", std::string(1000000, '(')},
    {"array", "(Hostile)"},
    {"string", "Hostile"},
    {"over 16 MiB", "{ Hostile = yes; }" + std::string(std::size_t{16} << 20, ' ')},
    {"over 1 GiB", "", makeHole},
    {"absent", "", Make([](const std::string&) {})},
    {"folder", "", Make([](const std::string& path) { ::mkdir(path.c_str(), 0755); })},
    {"pipe", "", Make([](const std::string& path) { ::mkfifo(path.c_str(), 0644); })},
    {"link loop", "", Make([](const std::string& path) { makeLink(path.c_str(), path); })},
    {"dangling link", "", Make([](const std::string& path) { makeLink("nowhere", path); })},
    {"endless device", "", Make([](const std::string& path) { makeLink("/dev/zero", path); })},
    {"terminal", "", Make([](const std::string& path) { makeLink("/dev/tty", path); })},
};

} // namespace

TEST_F(NSUserDefaultsTest, filesThatHoldNoDictionaryAreIgnored) {
    defaults().registerDefaults({{"Hostile", "registered"}});
    ::alarm(300); // a look that blocks ends the test
    for (const HostileFile& file : hostileFiles) {
        SCOPED_TRACE(file.what);
        for (const char* name : {"store/Viewer.plist", "store/NSGlobalDomain.plist"}) {
            kit::removeTree(folder / "store");
            folder.makeFolder("store");
            file.make != nullptr ? file.make(folder / name) : void(folder.write(name, file.bytes));
            EXPECT_EQ(textBothWays("Hostile"), "registered");
        }
        folder.write("store/good", dictionaryFile(entry("Hostile", "application")));
        kit::removeTree(folder / "store/Viewer.plist");
        ASSERT_EQ(::rename((folder / "store/good").c_str(), (folder / "store/Viewer.plist").c_str()), 0);
        EXPECT_EQ(textFor("Hostile"), "application");
    }
    ::alarm(0);
}

TEST_F(NSUserDefaultsTest, anUnreadableFileIsIgnoredUntilItIsReadable) {
    const std::string file = folder.write("store/Viewer.plist", dictionaryFile(entry("Sealed", "x")));
    ASSERT_EQ(::chmod(file.c_str(), 0), 0);
    kit::expectAsUser([] { return textFor("Sealed") == "(nil)"; });
    ASSERT_EQ(::chmod(file.c_str(), 0644), 0);
    kit::expectAsUser([] { return textFor("Sealed") == "x"; });
    ASSERT_EQ(::chmod((folder / "store").c_str(), 0), 0);
    kit::expectAsUser([] { return textFor("Sealed") == "(nil)"; });
    ASSERT_EQ(::chmod((folder / "store").c_str(), 0755), 0);
    EXPECT_EQ(textFor("Sealed"), "x");
}

TEST_F(NSUserDefaultsTest, aProcessOutOfDescriptorsKeepsWhatItHasReadAndReadsLaterWhatItCouldNot) {
    writeGlobal(settling("Scarce", "global"));
    settle();
    EXPECT_EQ(textFor("Scarce"), "global");
    writeGlobal(dictionaryFile(entry("Scarce", "fresh")));
    EXPECT_EQ(textFor("Scarce"), "fresh");
    std::vector<int> taken;
    for (int descriptor = ::dup(0); descriptor >= 0; descriptor = ::dup(0)) {
        taken.push_back(descriptor);
    }
    ASSERT_FALSE(taken.empty());
    ::close(taken.back()); // one, to make the other file with
    taken.pop_back();
    writeApplication(dictionaryFile(entry("Scarce", "application")));
    taken.push_back(::dup(0));
    EXPECT_EQ(textFor("Scarce"), "fresh");
    for (const int descriptor : taken) {
        ::close(descriptor);
    }
    EXPECT_EQ(textFor("Scarce"), "application");
}

namespace {

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
    const auto statusOf = [](const std::string& path) {
        struct stat status {};
        EXPECT_EQ(::stat(path.c_str(), &status), 0);
        return std::tuple(status.st_ino, status.st_ctim.tv_sec, status.st_ctim.tv_nsec);
    };
    const auto before = statusOf(folder / "store/Viewer.plist");
    const auto folderBefore = statusOf(folder / "store");
    useEverything();
    EXPECT_EQ(kit::contentsOf(folder / "store/Viewer.plist"), bytes);
    EXPECT_EQ(kit::contentsOf(folder / "store/NSGlobalDomain.plist"), "{ broken");
    EXPECT_EQ(statusOf(folder / "store/Viewer.plist"), before);
    EXPECT_EQ(statusOf(folder / "store"), folderBefore) << "no file came or went";
}

TEST_F(NSUserDefaultsTest, readOnlyMediaAreEnough) {
    const std::string file = folder.write("store/Viewer.plist", dictionaryFile(entry("Media", "x")));
    ASSERT_EQ(::chmod(file.c_str(), 0444), 0);
    ASSERT_EQ(::chmod((folder / "store").c_str(), 0555), 0);
    kit::expectAsUser([] {
        EXPECT_EQ(textFor("Media"), "x");
        useEverything();
        EXPECT_EQ(textFor("Other"), "5");
    });
    ASSERT_EQ(::chmod((folder / "store").c_str(), 0755), 0);
}

TEST_F(NSUserDefaultsTest, operationsLeaveErrnoAlone) {
    writeApplication(dictionaryFile(entry("Key", "x")));
    errno = 4321;
    useEverything();
    EXPECT_EQ(errno, 4321);
    kit::removeTree(folder / "store");
    errno = 4321;
    useEverything();
    EXPECT_EQ(errno, 4321);
}

// Where the files are

TEST_F(NSUserDefaultsTest, folderFollowsTheEnvironment) {
    detail::overrides::defaultsFolder = nullptr; // restored with the fixture
    const passwd* const account = ::getpwuid(::geteuid());
    const std::string database =
        (account != nullptr ? account->pw_dir : std::string()) + "/.config/ZQFoundation";
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
        const kit::Variable configuration("XDG_CONFIG_HOME", row.configuration);
        const kit::Variable home("HOME", row.home);
        EXPECT_EQ(detail::defaultsFolder(), row.folder);
    }
}

TEST_F(NSUserDefaultsTest, filesAreFoundInTheConfigurationAndTheHomeFolder) {
    detail::overrides::defaultsFolder = nullptr; // restored with the fixture
    folder.write("home/.config/ZQFoundation/Viewer.plist", "{ Place = home; }");
    folder.write("conf/ZQFoundation/Viewer.plist", "{ Place = configuration; }");
    const kit::Variable home("HOME", (folder / "home").c_str());
    const kit::Variable noConfiguration("XDG_CONFIG_HOME", nullptr);
    EXPECT_EQ(textFor("Place"), "home");
    const kit::Variable configuration("XDG_CONFIG_HOME", (folder / "conf").c_str());
    EXPECT_EQ(textFor("Place"), "configuration");
}

TEST_F(NSUserDefaultsTest, aHomeThatIsNoFolderHoldsNothing) {
    detail::overrides::defaultsFolder = nullptr; // restored with the fixture
    const kit::Variable configuration("XDG_CONFIG_HOME", nullptr);
    folder.write("file", "x");
    for (const std::string& path : {folder / "file", folder / "absent", std::string("/dev/null")}) {
        const kit::Variable home("HOME", path.c_str());
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
            text += kit::shown(pair.key) + "=" + textFor(pair.key.as<NSString>()) + ";";
        }
        text += ">";
        if (::write(1, text.data(), text.size()) < 0) {
            ::_exit(1);
        }
    }
};

const Witness witness;

std::string reportOfAnotherRun(const kit::ScratchFolder& folder, const char* moment) {
    const std::string output =
        kit::runAgain({{"XDG_CONFIG_HOME", folder.path()}, {"LANGUAGE", "de:en"}, {moment, "1"}},
                      {"Viewer", "--gtest_filter=none", "-Level", "3", "-Names", "(a)"});
    const std::size_t start = output.find('<');
    return start == std::string::npos ? output : output.substr(start, output.find('>') + 1 - start);
}

} // namespace

TEST(NSUserDefaultsProcess, twoRunsListTheSameOrderBeforeAndAfterMain) {
    const kit::ScratchFolder folder;
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
    right = right && mergedText("Steady") == "x";
    if (round % 50 == 0) {
        defaults().removeObjectForKey(own);
        right = right && !defaults().objectForKey(own);
    }
    return right;
}

/// What a forked child does at once.
bool isAnsweredInChild() {
    ::alarm(60); // ends a child that hangs
    const bool isSteady = textFor("Steady") == "x" && mergedText("Steady") == "x";
    defaults().setObject_forKey(::getpid(), "Child");
    return isSteady && defaults().integerForKey("Child") == ::getpid();
}

} // namespace

TEST_F(NSUserDefaultsTest, answersInForkedChildrenWhileThreadsReadAndSet) {
    writeApplication(dictionaryFile(entry("Steady", "x")));
    kit::Turns turns;
    std::atomic<int> rounds[4] = {};
    std::atomic<int> wrong{0};
    // Where forks take turns they are slow and never interrupt an operation: fewer show as much.
    const int children = kit::isSanitized ? 40 : 200;
    {
        const auto work = [&](std::size_t number) {
            const std::string own = "Busy" + std::to_string(number);
            wrong += turns.work([&] { return useAllAtOnce(own, rounds[number]++); }) ? 0 : 1;
        };
        const kit::Meanwhile working(work, 4);
        EXPECT_EQ(turns.failures(children, [](int) { return isAnsweredInChild(); }), 0);
    }
    EXPECT_EQ(wrong, 0);
}

TEST_F(NSUserDefaultsTest, givesThreadsWholeFilesWhileTheFileIsReplaced) {
    const auto file = [](int number) {
        const std::string text = std::to_string(number);
        return dictionaryFile(entry("First", text) + entry("Second", text));
    };
    writeApplication(file(0));
    std::atomic<int> wrong{0};
    const auto look = [&] {
        const NSDictionary all = defaults().dictionaryRepresentation();
        const NSObject first = all.objectForKey("First");
        wrong += first && first == all.objectForKey("Second") ? 0 : 1;
    };
    kit::Meanwhile looking(look, 2);
    for (int number = 1; number < 500; ++number) {
        folder.write("store/next", file(number));
        ::rename((folder / "store/next").c_str(), (folder / "store/Viewer.plist").c_str());
        EXPECT_EQ(textFor("First"), std::to_string(number));
    }
    looking.end();
    EXPECT_EQ(wrong, 0);
}

TEST_F(NSUserDefaultsTest, losesNoChangeOfConcurrentSetters) {
    const auto nameOf = [](int number, int key) {
        return "Set" + std::to_string(number) + "." + std::to_string(key);
    };
    useThreads(4, [&](int number) {
        for (int key = 0; key < 100; ++key) {
            defaults().setObject_forKey(key, nameOf(number, key));
        }
    });
    for (int i = 0; i < 400; ++i) {
        EXPECT_EQ(defaults().objectForKey(nameOf(i / 100, i % 100)), NSObject(i % 100));
        defaults().removeObjectForKey(nameOf(i / 100, i % 100));
    }
}
