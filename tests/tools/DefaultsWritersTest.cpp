// SPDX-License-Identifier: MIT
// The tool `defaults` when others write too, and when it is ended in the middle.
#include <csignal>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSString.h"
#include "foundation/process/NSProcessInfo.h"
#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/RefusedCalls.h"
#include "tests/tools/ToolScene.h"

#if __has_include(<linux/seccomp.h>)
#include "tests/migration/faults/Tracing.h"
#endif

using namespace ZQFoundation;
using kit::endOf;
using scene::contains;
using scene::Tool;
using scene::Words;

namespace {

/// Starts this many processes that run the body with their numbers.
template <class Body>
std::vector<pid_t> started(int count, const Body& body) {
    std::vector<pid_t> children;
    for (int number = 0; number < count; ++number) {
        const pid_t child = ::fork();
        if (child == 0) {
            body(number);
            kit::leave(0);
        }
        children.push_back(child);
    }
    return children;
}

void expectSuccess(const std::vector<pid_t>& children) {
    for (const pid_t child : children) {
        EXPECT_EQ(endOf(child), 0);
    }
}

/// Several processes, each of which runs the tool for keys of its own, one after another. `prepare` is
/// called in each before.
template <class Prepare>
void writeSideBySide(int writers, int keys, const Prepare& prepare) {
    expectSuccess(started(writers, [&](int writer) {
        prepare();
        for (int key = 0; key < keys; ++key) {
            const std::string name = "Key" + std::to_string(writer * keys + key);
            expectSuccess(started(1, [&](int) {
                scene::become(scene::defaultsProgram(), {"write", "d", name, "-int", std::to_string(key)});
            }));
        }
        if (::testing::Test::HasFailure()) {
            kit::leave(1);
        }
    }));
}

/// Expects these keys beside a number of others, and nothing but the domain and what locks need in the
/// folder.
void expectAllKeys(const Tool& tool, const char* format, int writers, int keys, std::size_t others = 0,
                   std::size_t entries = 1) {
    const NSDictionary values = NSDictionary::dictionaryWithContentsOfFile(tool.file("d"));
    EXPECT_EQ(values.count(), static_cast<std::size_t>(writers * keys) + others);
    for (int key = 0; key < writers * keys; ++key) {
        EXPECT_EQ(values.objectForKey(NSString::stringWithFormat(NSString(format), key)),
                  NSObject(key % keys));
    }
    EXPECT_EQ(tool.entriesInFolder(), entries);
}

TEST(DefaultsToolWriters, loseNoKeyOfOneAnother) {
    const Tool tool;
    writeSideBySide(8, 50, [] {});
    expectAllKeys(tool, "Key%d", 8, 50);
}

TEST(DefaultsToolWriters, loseNoKeyOfProcessesThatSaveTheirOwn) {
    const Tool tool;
    const std::vector<pid_t> children = started(8, [](int writer) {
        ::alarm(120);
        NSProcessInfo::processInfo().setProcessName("d");
        for (int key = 0; key < 40; ++key) {
            NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
            defaults.setObject_forKey(key, NSString::stringWithFormat("Saved%d", writer * 40 + key));
            while (!defaults.synchronize()) { // a busy machine may keep others waiting for long
            }
        }
    });
    writeSideBySide(2, 30, [] {});
    expectSuccess(children);
    expectAllKeys(tool, "Saved%d", 8, 40, 60);
}

#if __has_include(<linux/seccomp.h>)
/// From here on this process and its children cannot lock whole files and folders, as on a network file
/// system.
void refuseFolderLocks() {
    if (!kit::refuseCall(SYS_flock, EBADF) || ::flock(0, LOCK_UN) == 0) {
        ::_exit(99);
    }
}

TEST(DefaultsToolWriters, lockAFileWhereTheFolderCannotBeLocked) {
    const Tool tool;
    writeSideBySide(4, 20, refuseFolderLocks);
    expectAllKeys(tool, "Key%d", 4, 20, 0, 2);
    EXPECT_EQ(tool.done({"domains"}), "d\n");
}
#endif

TEST(DefaultsToolWriters, saySoWhenTheyWait) {
    const Tool tool;
    tool.done({"write", "d", "k", "v"});
    const int folder = ::open((tool.folder() / "ZQFoundation").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::flock(folder, LOCK_EX), 0);
    scene::Terminal terminal;
    const pid_t child = tool.runs().start({"write", "d", "k", "w"}, STDOUT_FILENO, terminal.end());
    terminal.waitFor("defaults: waiting for another writer");
    EXPECT_EQ(tool.done({"read", "d", "k"}), "v\n");
    ::close(folder);
    EXPECT_EQ(endOf(child), 0);
    EXPECT_EQ(tool.done({"read", "d", "k"}), "w\n");
}

#if __has_include(<linux/seccomp.h>)
/// Makes sleeping take no time.
bool skipSleep() { return kit::refuseCall(SYS_clock_nanosleep, 0) && kit::refuseCall(SYS_nanosleep, 0); }

TEST(DefaultsToolWriters, giveUpOnALockThatIsNotGivenBack) {
    const Tool tool;
    tool.done({"write", "d", "k", "v"});
    const std::string place = tool.folder() / "ZQFoundation";
    const int folder = ::open(place.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::flock(folder, LOCK_EX), 0);
    const int file = ::open((place + "/.defaults.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    struct flock whole {};
    whole.l_type = F_WRLCK;
    ASSERT_EQ(::fcntl(file, F_SETLK, &whole), 0);
    for (const bool locksFile : {false, true}) {
        const scene::Outcome outcome = tool.runs().runPrepared({"write", "d", "k", "w"}, [locksFile] {
            return skipSleep() && (!locksFile || kit::refuseCall(SYS_flock, EBADF));
        });
        EXPECT_EQ(outcome.status, 1) << locksFile;
        EXPECT_TRUE(contains(outcome.errors, tool.file("d"))) << outcome.errors;
        EXPECT_TRUE(contains(outcome.errors, "10 seconds")) << outcome.errors;
    }
    EXPECT_EQ(tool.done({"read", "d", "k"}), "v\n");
    ::close(file);
    ::close(folder);
}

/// A domain of some size, which takes several calls to write.
std::string largeDomain(long value) {
    return "{ k = " + std::to_string(value) + "; filling = \"" + std::string(300'000, 'x') + "\"; }";
}

/// Whether the file is whole and no older than `least`; `least` becomes the value in it.
bool isWhole(const Tool& tool, int& least, long most) {
    const NSDictionary values = NSDictionary::dictionaryWithContentsOfFile(tool.file("d"));
    const int value = NSString(values.objectForKey("k")).intValue();
    const bool whole =
        NSString(values.objectForKey("filling")).length() == 300'000 && value >= least && value <= most;
    least = value;
    return whole;
}

/// Has the tool write the domain again and again, and sends it the signal at each of the calls by which it
/// uses its folder. The file must be whole after each, and with other entries only where that is allowed.
void endAtEveryCall(const Tool& tool, int signal, bool mayLeaveFiles) {
    const kit::Variable options("ASAN_OPTIONS",
                                "detect_leaks=0"); // cannot be done while traced
    tool.done({"import", "d", "-"}, largeDomain(0));
    const std::string folder = tool.folder() / "ZQFoundation";
    int value = 0;
    bool isReached = true;
    long call = 1;
    for (; isReached; ++call) {
        const std::string input = tool.folder().write("input", largeDomain(call));
        const faults::Fault fault{faults::Fault::killing, 0, call, false, signal};
        const faults::Outcome outcome = faults::runTraced({folder, fault}, [&]() -> std::string {
            scene::become(scene::defaultsProgram(), {"import", "d", input});
        });
        if (!outcome.traced) {
            GTEST_SKIP() << faults::notTraced;
        }
        isReached = outcome.met(fault);
        EXPECT_NE(outcome.ended, isReached) << "call " << call;
        EXPECT_TRUE(isWhole(tool, value, call)) << "call " << call;
        EXPECT_TRUE(mayLeaveFiles || tool.entriesInFolder() == 1U) << "call " << call;
    }
    EXPECT_GT(call, 10) << "hardly a call was seen";
    EXPECT_EQ(value, call - 1);
    EXPECT_EQ(tool.entriesInFolder(), 1U) << "what ended writers left is cleared away by the next";
}

TEST(DefaultsToolWriters, leaveAWholeFileWheneverTheyAreKilled) { endAtEveryCall(Tool(), SIGKILL, true); }

TEST(DefaultsToolWriters, leaveNoTemporaryFileWhenTheyAreInterrupted) {
    endAtEveryCall(Tool(), SIGINT, false);
    endAtEveryCall(Tool(), SIGTERM, false);
}
#endif

} // namespace
