// SPDX-License-Identifier: MIT
#include "foundation/process/NSProcessInfo.h"

#include <atomic>
#include <cerrno>
#include <thread>

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
    char link[4096] = {};
    ASSERT_GT(::readlink("/proc/self/exe", link, sizeof link - 1), 0);
    const std::string file = std::string(link).substr(std::string(link).find_last_of('/') + 1);
    for (const Words& words : {Words{}, Words{""}, Words{"/"}, Words{"", "x"}}) {
        const scene::Arguments arguments(detail::overrides::arguments, words);
        EXPECT_EQ(info().processName().utf8(), file);
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
                  return own && inChild([] { return detail::processIdentity().pid == ::getpid(); }) == 0;
              }),
              0);
    EXPECT_EQ(detail::processIdentity().pid, ::getpid());
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
