// SPDX-License-Identifier: MIT
// The name, the arguments and the environment of the process.
#include "foundation/process/NSProcessInfo.h"

#include <atomic>
#include <cerrno>
#include <thread>

#include <dlfcn.h>
#include <sched.h>
#include <sys/auxv.h>
#include <sys/mount.h>
#include <sys/resource.h>

#include "foundation/process/NSUserDefaults.h"
#include "foundation/process/ProcessIdentity.h"
#include "tests/process/Scene.h"

using namespace ZQFoundation;

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

/// A name that a host sets stays, so tests set one only in a child process. Returns 0 when the body was
/// content.
template <class Body>
int inChild(const Body& body, scene::Turns* turns = nullptr) {
    const pid_t child = turns != nullptr ? turns->fork() : ::fork();
    if (child == 0) {
        ::alarm(60);
        scene::leave(body() ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

} // namespace

TEST(NSProcessInfo, nameIsTheLastPathComponentOfArgument0) {
    struct Row {
        const char* argument;
        const char* name;
    };
    for (const Row& row :
         {Row{"/usr/bin/viewer", "viewer"}, Row{"viewer", "viewer"}, Row{"./a b", "a b"},
          Row{"/x/viewer/", "viewer"}, Row{"-bash", "-bash"}, Row{"/x/caf\xC3\xA9", "caf\xC3\xA9"}}) {
        const scene::Arguments arguments(detail::overrides::arguments, Words{row.argument, "later"});
        EXPECT_EQ(info().processName().utf8(), row.name);
        EXPECT_EQ(prefixName(), row.name);
    }
}

TEST(NSProcessInfo, nameComesFromTheProgramFileWithoutAnArgument0) {
    for (const Words& words : {Words{}, Words{""}, Words{"/"}, Words{"", "x"}}) {
        const scene::Arguments arguments(detail::overrides::arguments, words);
        EXPECT_EQ(info().processName().utf8(), fileOfThisProgram());
    }
}

TEST(NSProcessInfo, nameWithForeignBytesKeepsThemAndPrefixHasReplacementCharacters) {
    const scene::Arguments arguments(detail::overrides::arguments, Words{"/x/a\xFF"});
    EXPECT_EQ(info().processName().utf16(), std::u16string(u"a\xDCFF"));
    std::string bytes;
    ASSERT_TRUE(info().processName().getFileSystemBytes(bytes));
    EXPECT_EQ(bytes, "a\xFF");
    EXPECT_EQ(prefixName(), "a\xEF\xBF\xBD");
}

TEST(NSProcessInfo, nameIsChangeable) {
    EXPECT_EQ(inChild([] {
                  info().setProcessName("Vi\u00E9wer");
                  if (!(info().processName() == "Vi\u00E9wer") || prefixName() != "Vi\xC3\xA9wer") {
                      return false;
                  }
                  info().setProcessName("Other");
                  info().setProcessName("Vi\u00E9wer");
                  return prefixName() == "Vi\xC3\xA9wer";
              }),
              0);
}

TEST(NSProcessInfo, nilAndEmptyNamesChangeNothing) {
    const std::string before = info().processName().utf8();
    info().setProcessName(nullptr);
    info().setProcessName("");
    EXPECT_EQ(info().processName().utf8(), before);
    EXPECT_FALSE(before.empty());
}

TEST(NSProcessInfo, aNameThatReturnsNeedsNoNewRecord) {
    EXPECT_EQ(inChild([] {
                  info().setProcessName("First");
                  const char* const first = detail::processIdentity().name;
                  info().setProcessName("Second");
                  info().setProcessName("First");
                  return detail::processIdentity().name == first;
              }),
              0);
}

TEST(NSProcessInfo, identifierIsTheProcessNumberAlsoInForkedChildrenAndTheirs) {
    EXPECT_EQ(info().processIdentifier(), ::getpid());
    EXPECT_EQ(inChild([] {
                  const bool own = info().processIdentifier() == ::getpid();
                  return own && inChild([] { return info().processIdentifier() == ::getpid(); }) == 0;
              }),
              0);
    EXPECT_EQ(info().processIdentifier(), ::getpid());
}

TEST(NSProcessInfo, keepsTheNameInForkedChildren) {
    EXPECT_EQ(inChild([] {
                  info().setProcessName("Renamed");
                  return inChild([] {
                             return prefixName() == "Renamed" && info().processName() == "Renamed";
                         }) == 0;
              }),
              0);
}

TEST(NSProcessInfo, identityIsTheSameObjectUntilSomethingChanges) {
    const detail::ProcessIdentity* const first = &detail::processIdentity();
    EXPECT_EQ(first, &detail::processIdentity());
}

TEST(NSProcessInfo, argumentsAreThoseOfTheProcess) {
    const NSArray arguments = info().arguments();
    ASSERT_GT(arguments.count(), 0u);
    const std::string commandLine = scene::contentsOf("/proc/self/cmdline");
    std::string joined;
    for (const NSObject& argument : arguments) {
        joined += argument.as<NSString>().utf8() + '\0';
    }
    EXPECT_EQ(joined, commandLine);
}

TEST(NSProcessInfo, argumentsMayBeEmptyOrForeign) {
    const scene::Arguments arguments(detail::overrides::arguments, Words{"p", "", "\xFE"});
    ASSERT_EQ(info().arguments().count(), 3u);
    EXPECT_EQ(info().arguments()[1].as<NSString>().length(), 0u);
    EXPECT_EQ(info().arguments()[2].as<NSString>().utf16(), std::u16string(u"\xDCFE"));
}

TEST(NSProcessInfo, givesTheArgumentsWithoutUserDefaults) {
    const scene::Arguments arguments(detail::overrides::arguments,
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
    const scene::Variable set("ZQ_TEST_VARIABLE", "a=b");
    const scene::Variable empty("ZQ_TEST_EMPTY", "");
    const scene::Variable unset("ZQ_TEST_UNSET", nullptr);
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
    const scene::Arguments arguments(detail::overrides::arguments, Words{""});
    errno = 4321;
    info().processName();
    info().processIdentifier();
    info().arguments();
    info().environment();
    detail::processIdentity();
    EXPECT_EQ(errno, 4321);
}

TEST(NSProcessInfo, showsThreadsWholeNamesWhileOthersRename) {
    EXPECT_EQ(inChild([] {
                  info().setProcessName("AAAAAAAA");
                  std::atomic<bool> stop{false};
                  std::atomic<bool> torn{false};
                  std::thread writer([&] {
                      for (int round = 0; round < 20000; ++round) {
                          info().setProcessName(round % 2 == 0 ? "BBBB" : "AAAAAAAA");
                      }
                      stop = true;
                  });
                  std::thread reader([&] {
                      while (!stop) {
                          const std::string name = prefixName();
                          const NSString text = info().processName();
                          if ((name != "BBBB" && name != "AAAAAAAA") ||
                              (text != "BBBB" && text != "AAAAAAAA")) {
                              torn = true;
                          }
                      }
                  });
                  writer.join();
                  reader.join();
                  return !torn;
              }),
              0);
}

TEST(NSProcessInfo, answersInForkedChildrenWhileThreadsRename) {
    EXPECT_EQ(inChild([] {
                  info().setProcessName("AAAA");
                  scene::Turns turns;
                  std::atomic<bool> stop{false};
                  std::thread writer([&] {
                      for (int round = 0; !stop; ++round) {
                          turns.work([&] {
                              info().setProcessName(round % 2 == 0 ? "BBBB" : "AAAA");
                              return true;
                          });
                      }
                  });
                  int failures = 0;
                  for (int count = 0; count < 200; ++count) {
                      const auto answers = [] {
                          return info().processIdentifier() == ::getpid() &&
                                 info().processName().length() == 4;
                      };
                      failures += inChild(answers, &turns) == 0 ? 0 : 1;
                  }
                  stop = true;
                  writer.join();
                  return failures == 0;
              }),
              0);
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
        const std::string output = scene::runAgain(
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
    EXPECT_EQ(nameMeanwhile, fileOfThisProgram()) << "stands in";
    EXPECT_EQ(info().arguments().count(), 4u);
    EXPECT_EQ(NSUserDefaults::standardUserDefaults().stringForKey("k"), "v");
    EXPECT_EQ(prefixName(), "argument0");
}

TEST(NSProcessInfo, factsDoNotDependOnAFreeDescriptor) {
    const scene::Variable moment("ZQ_TEST_MOMENT", "full table");
    for (const char* const name : programs) {
        const std::string path = pathOfProgram(name);
        EXPECT_EQ(scene::outputOf(path, argumentsOf(path), [] {}), factsOf(path, name, 2));
    }
}

TEST(NSProcessInfo, aTitleWrittenOverTheArgumentsChangesNothing) {
    const scene::Variable moment("ZQ_TEST_MOMENT", "title");
    for (const char* const name : programs) {
        const std::string path = pathOfProgram(name);
        EXPECT_EQ(scene::outputOf(path, argumentsOf(path), [] {}), factsOf(path, name));
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
    EXPECT_TRUE(scene::outputOf(path, arguments, [] {}) == expected);
}

TEST(NSProcessInfo, isTheProgramsOwnWhenItIsStartedThroughTheLoader) {
    Dl_info loader{};
    ASSERT_NE(::dladdr(reinterpret_cast<void*>(::getauxval(AT_BASE)), &loader), 0);
    for (const char* const name : programs) {
        const std::string path = pathOfProgram(name);
        Words words = argumentsOf(path);
        words.insert(words.begin(), loader.dli_fname);
        EXPECT_EQ(scene::outputOf(loader.dli_fname, words, [] {}), factsOf(path, name));
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
            if (::unshare(CLONE_NEWNS) != 0 ||
                ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
                ::mount("none", "/proc", "tmpfs", 0, "") != 0) {
                ::setenv("ZQ_TEST_MOMENT", "/proc cannot be hidden", 1);
            }
        };
        const std::string facts = scene::outputOf(path, argumentsOf(path), hideProc);
        if (facts.starts_with("/proc cannot be hidden")) {
            GTEST_SKIP() << "the process file system cannot be hidden here";
        }
        EXPECT_EQ(facts, factsOf(path, name));
    }
}
#endif
