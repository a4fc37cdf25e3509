// SPDX-License-Identifier: MIT
// The name, the arguments and the environment of the process.
#include "foundation/process/NSProcessInfo.h"

#include <atomic>

#include <dlfcn.h>
#include <sys/auxv.h>
#include <sys/mount.h>
#include <sys/resource.h>

#include "foundation/process/NSUserDefaults.h"
#include "foundation/process/ProcessIdentity.h"
#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Items.h"
#include "tests/kit/Mounts.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/Threads.h"
#include "tests/kit/Turns.h"

using namespace ZQFoundation;
using kit::expectInChild; // a name that a host sets stays, so tests set one only in a child

namespace {

using Words = std::vector<std::string>;

std::string prefixName() {
    const detail::ProcessIdentity& identity = detail::processIdentity();
    return std::string(identity.name, identity.nameLength);
}

NSProcessInfo& info() { return NSProcessInfo::processInfo(); }

std::string fileOfThisProgram() {
    char link[4096] = {};
    EXPECT_GT(::readlink("/proc/self/exe", link, sizeof link - 1), 0);
    return std::string(link).substr(std::string(link).find_last_of('/') + 1);
}

} // namespace

TEST(NSProcessInfo, nameIsTheLastPathComponentOfArgument0OrThatOfTheProgramFile) {
    const std::string file = fileOfThisProgram();
    const std::pair<Words, std::string> rows[] = {
        {{"/usr/bin/viewer", "later"}, "viewer"},
        {{"viewer"}, "viewer"},
        {{"./a b"}, "a b"},
        {{"/x/viewer/"}, "viewer"},
        {{"-bash"}, "-bash"},
        {{"/x/caf\xC3\xA9"}, "caf\xC3\xA9"},
        {{}, file},
        {{""}, file},
        {{"/"}, file},
        {{"", "x"}, file},
    };
    for (const auto& [words, name] : rows) {
        const kit::Arguments arguments(detail::overrides::arguments, words);
        EXPECT_EQ(info().processName().utf8(), name);
        EXPECT_EQ(prefixName(), name);
    }
}

TEST(NSProcessInfo, nameWithForeignBytesKeepsThemAndPrefixHasReplacementCharacters) {
    const kit::Arguments arguments(detail::overrides::arguments, Words{"/x/a\xFF"});
    EXPECT_EQ(info().processName().utf16(), std::u16string(u"a\xDCFF"));
    EXPECT_EQ(kit::bytesOf(info().processName()), "a\xFF");
    EXPECT_EQ(prefixName(), "a\xEF\xBF\xBD");
}

TEST(NSProcessInfo, nameIsChangeableAndNeedsNoNewRecordWhenItReturns) {
    expectInChild([] {
        info().setProcessName("Vi\u00E9wer");
        EXPECT_EQ(info().processName(), "Vi\u00E9wer");
        EXPECT_EQ(prefixName(), "Vi\xC3\xA9wer");
        const char* const first = detail::processIdentity().name;
        info().setProcessName("Other");
        EXPECT_EQ(prefixName(), "Other");
        info().setProcessName("Vi\u00E9wer");
        EXPECT_EQ(detail::processIdentity().name, first);
    });
}

TEST(NSProcessInfo, nilAndEmptyNamesChangeNothing) {
    const std::string before = info().processName().utf8();
    info().setProcessName(nullptr);
    info().setProcessName("");
    EXPECT_EQ(info().processName().utf8(), before);
    EXPECT_FALSE(before.empty());
}

TEST(NSProcessInfo, identifierIsTheProcessNumberAndTheNameTheParentsInForkedChildrenAndTheirs) {
    const auto expectOwn = [] {
        EXPECT_EQ(info().processIdentifier(), ::getpid());
        EXPECT_EQ(info().processName(), "Renamed");
        EXPECT_EQ(prefixName(), "Renamed");
    };
    EXPECT_EQ(info().processIdentifier(), ::getpid());
    expectInChild([&] {
        info().setProcessName("Renamed");
        expectOwn();
        expectInChild(expectOwn);
    });
    EXPECT_EQ(info().processIdentifier(), ::getpid());
}

TEST(NSProcessInfo, identityIsTheSameObjectUntilSomethingChanges) {
    const detail::ProcessIdentity* const first = &detail::processIdentity();
    EXPECT_EQ(first, &detail::processIdentity());
}

TEST(NSProcessInfo, argumentsAreThoseOfTheProcess) {
    const NSArray arguments = info().arguments();
    ASSERT_GT(arguments.count(), 0u);
    const std::string commandLine = kit::contentsOf("/proc/self/cmdline");
    std::string joined;
    for (const NSObject& argument : arguments) {
        joined += argument.as<NSString>().utf8() + '\0';
    }
    EXPECT_EQ(joined, commandLine);
}

TEST(NSProcessInfo, argumentsMayBeEmptyOrForeign) {
    const kit::Arguments arguments(detail::overrides::arguments, Words{"p", "", "\xFE"});
    ASSERT_EQ(info().arguments().count(), 3u);
    EXPECT_EQ(info().arguments()[1].as<NSString>().length(), 0u);
    EXPECT_EQ(info().arguments()[2].as<NSString>().utf16(), std::u16string(u"\xDCFE"));
}

TEST(NSProcessInfo, givesTheArgumentsWithoutUserDefaults) {
    const kit::Arguments arguments(detail::overrides::arguments,
                                   Words{"p", "-TraceLevel", "3", "-style", "flat", "a file", "\xFE"});
    EXPECT_EQ(info().argumentsWithoutDefaults({"-style"}),
              (NSArray{"p", "-style", "flat", "a file", info().arguments()[6]}));
    EXPECT_EQ(info().argumentsWithoutDefaults().count(), 3U);
    EXPECT_EQ(info().arguments().count(), 7U);
    EXPECT_EQ(NSUserDefaults::standardUserDefaults().integerForKey("TraceLevel"), 3);
}

TEST(NSProcessInfo, takesUserDefaultsOutOfArgcAndArgv) {
    char program[] = "p";
    char key[] = "-TraceLevel";
    char value[] = "3";
    char file[] = "file";
    char* words[] = {program, key, value, file, nullptr};
    const NSArray before = info().arguments();
    int count = 4;
    NSProcessInfo::removeDefaultsFromArguments(count, words);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(words[0], program);
    EXPECT_EQ(words[1], file);
    EXPECT_EQ(words[2], nullptr);
    NSProcessInfo::removeDefaultsFromArguments(count, words);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(info().arguments(), before);

    int none = 0;
    NSProcessInfo::removeDefaultsFromArguments(none, nullptr);
    char* empty[] = {nullptr};
    NSProcessInfo::removeDefaultsFromArguments(none, empty);
    EXPECT_EQ(none, 0);
}

TEST(NSProcessInfo, environmentShowsTheVariablesAsTheyAreNow) {
    const kit::Variable set("ZQ_TEST_VARIABLE", "a=b");
    const kit::Variable empty("ZQ_TEST_EMPTY", "");
    const kit::Variable unset("ZQ_TEST_UNSET", nullptr);
    const NSDictionary environment = info().environment();
    EXPECT_EQ(environment.objectForKey("ZQ_TEST_VARIABLE").as<NSString>(), "a=b");
    EXPECT_EQ(environment.objectForKey("ZQ_TEST_EMPTY").as<NSString>(), "");
    EXPECT_FALSE(environment.objectForKey("ZQ_TEST_UNSET"));
}

TEST(NSProcessInfo, environmentSkipsEntriesWithoutANameAndTakesTheFirstOfTwo) {
    char noName[] = "=x";
    char noValue[] = "LONELY";
    char first[] = "TWICE=1";
    char second[] = "TWICE=2";
    char* entries[] = {noName, noValue, first, second, nullptr};
    char** const before = environ;
    environ = entries;
    const NSDictionary environment = info().environment();
    environ = nullptr;
    const NSDictionary none = info().environment();
    environ = before;
    EXPECT_EQ(environment.count(), 1u);
    EXPECT_EQ(environment.objectForKey("TWICE").as<NSString>(), "1");
    EXPECT_TRUE(none);
    EXPECT_EQ(none.count(), 0u);
}

TEST(NSProcessInfo, operationsLeaveErrnoAlone) {
    const kit::Arguments arguments(detail::overrides::arguments, Words{""});
    errno = 4321;
    info().processName();
    info().processIdentifier();
    info().arguments();
    info().environment();
    detail::processIdentity();
    EXPECT_EQ(errno, 4321);
}

TEST(NSProcessInfo, showsThreadsWholeNamesWhileOthersRename) {
    expectInChild([] {
        info().setProcessName("AAAAAAAA");
        const auto isWhole = [](const std::string& name) {
            return name == "BBBB" || name == "AAAAAAAA";
        };
        std::atomic<bool> torn{false};
        const auto look = [&] {
            if (!isWhole(prefixName()) || !isWhole(info().processName().utf8())) {
                torn = true;
            }
        };
        kit::Meanwhile looking(look);
        for (int round = 0; round < 20000; ++round) {
            info().setProcessName(round % 2 == 0 ? "BBBB" : "AAAAAAAA");
        }
        looking.end();
        return !torn;
    });
}

TEST(NSProcessInfo, answersInForkedChildrenWhileThreadsRename) {
    expectInChild([] {
        info().setProcessName("AAAA");
        kit::Turns turns;
        const auto rename = [&turns] {
            for (const char* const name : {"BBBB", "AAAA"}) {
                turns.work([&] {
                    info().setProcessName(name);
                    return true;
                });
            }
        };
        const kit::Meanwhile renaming(rename);
        return turns.failures(200, [](int) {
            return info().processIdentifier() == ::getpid() && info().processName().length() == 4;
        }) == 0;
    });
}

// Facts that are first asked for in a bad moment, by a program of its own

namespace {

constexpr const char* programs[] = {"tells-who-it-is", "tells-who-it-is-shared"};

std::string pathOfProgram(const char* name) {
    return std::string(ZQ_TEST_BINARY_DIR "/tests/process/") + name;
}

/// What the program prints that has been asked once: its name, its arguments, one of them as a user default,
/// where it is, and the library's bundle.
std::string factsOf(const std::string& path, const std::string& name, int times = 1) {
    const std::string line = name + " <" + path + "> <-TraceArguments> <YES> <a b> <> YES\n";
    const std::string library = name == programs[0] ? ZQ_TEST_BINARY_DIR
                                    "/tests/process/../share/ZQFoundation-27"
                                                    : ZQ_TEST_BINARY_DIR;
    return (times == 2 ? line + line : line) + path + "\n" + library + "\n";
}

Words argumentsOf(const std::string& path) { return {path, "-TraceArguments", "YES", "a b", ""}; }

} // namespace

TEST(NSProcessInfo, argumentsThatCannotBeReadNowAreReadLater) {
    constexpr const char* mark = "ZQ_TEST_READS_ARGUMENTS";
    if (std::getenv(mark) == nullptr) {
        const std::string output = kit::runAgain(
            {{mark, "1"}},
            {"/x/argument0", "--gtest_filter=NSProcessInfo.argumentsThatCannotBeReadNowAreReadLater", "-k",
             "v"});
        EXPECT_NE(output.find("[  PASSED  ] 1 test"), std::string::npos) << output;
        return;
    }
    detail::overrides::readsArguments = true; // the C library has handed none over
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{0, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    const std::string nameMeanwhile = prefixName();
    const std::size_t countMeanwhile = info().arguments().count();
    const NSObject defaultMeanwhile = NSUserDefaults::standardUserDefaults().objectForKey("k");
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(countMeanwhile, 0u);
    EXPECT_FALSE(defaultMeanwhile);
    EXPECT_EQ(nameMeanwhile, fileOfThisProgram()) << "in the meantime";
    EXPECT_EQ(info().arguments().count(), 4u);
    EXPECT_EQ(NSUserDefaults::standardUserDefaults().stringForKey("k"), "v");
    EXPECT_EQ(prefixName(), "argument0");
}

TEST(NSProcessInfo, factsDependNeitherOnAFreeDescriptorNorOnATitleWrittenOverTheArguments) {
    for (const char* const moment : {"full table", "title"}) {
        const kit::Variable variable("ZQ_TEST_MOMENT", moment);
        for (const char* const name : programs) {
            const std::string path = pathOfProgram(name);
            const int times = moment[0] == 'f' ? 2 : 1;
            EXPECT_EQ(kit::outputOf(path, argumentsOf(path), [] {}), factsOf(path, name, times)) << moment;
        }
    }
}

TEST(NSProcessInfo, longCommandLinesAreKeptWhole) {
    const std::string path = pathOfProgram(programs[0]);
    Words arguments = argumentsOf(path);
    std::string expected = factsOf(path, programs[0]);
    for (const std::size_t length : {3000U, 3000U, 100000U, 1U}) {
        arguments.emplace_back(length, 'x');
        expected.insert(expected.find(" YES\n"), " <" + arguments.back() + ">");
    }
    EXPECT_TRUE(kit::outputOf(path, arguments, [] {}) == expected);
}

TEST(NSProcessInfo, isTheProgramsOwnWhenItIsStartedThroughTheLoader) {
    Dl_info loader{};
    ASSERT_NE(::dladdr(reinterpret_cast<void*>(::getauxval(AT_BASE)), &loader), 0);
    for (const char* const name : programs) {
        const std::string path = pathOfProgram(name);
        Words words = argumentsOf(path);
        words.insert(words.begin(), loader.dli_fname);
        EXPECT_EQ(kit::outputOf(loader.dli_fname, words, [] {}), factsOf(path, name));
    }
}

#ifndef ZQ_TEST_NEEDS_PROC
TEST(NSProcessInfo, needsNoProcessFileSystem) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can hide the process file system";
    }
    for (const char* const name : programs) {
        const std::string path = pathOfProgram(name);
        const auto hideProc = [] {
            if (!kit::hasOwnMounts() || ::mount("none", "/proc", "tmpfs", 0, "") != 0) {
                ::setenv("ZQ_TEST_MOMENT", "/proc cannot be hidden", 1);
            }
        };
        const std::string facts = kit::outputOf(path, argumentsOf(path), hideProc);
        if (facts.starts_with("/proc cannot be hidden")) {
            GTEST_SKIP() << "the process file system cannot be hidden here";
        }
        EXPECT_EQ(facts, factsOf(path, name));
    }
}
#endif
