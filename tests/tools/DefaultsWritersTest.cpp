// SPDX-License-Identifier: MIT
// The tool `defaults` when others write too, and when it is ended in the middle.
#include <cerrno>
#include <csignal>
#include <ctime>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSString.h"
#include "foundation/process/NSProcessInfo.h"
#include "tests/tools/ToolScene.h"

#if __has_include(<linux/seccomp.h>)
#include "tests/process/RefusedCalls.h"
#endif

using namespace ZQFoundation;
using scene::become;
using scene::Tool;
using scene::Words;

namespace {

bool succeeds(pid_t child) {
    int status = -1;
    return ::waitpid(child, &status, 0) == child && status == 0;
}

/// Several processes, each of which runs the tool for keys of its own, one after the other. `prepare` is
/// called in each before.
template <class Prepare>
void writeSideBySide(int writers, int keys, const Prepare& prepare) {
    std::vector<pid_t> children;
    for (int writer = 0; writer < writers; ++writer) {
        const pid_t child = ::fork();
        if (child == 0) {
            prepare();
            for (int key = 0; key < keys; ++key) {
                const pid_t one = ::fork();
                if (one == 0) {
                    std::string name = "Key";
                    name.append(std::to_string(writer * keys + key));
                    become({"write", "d", name, "-int", std::to_string(key)});
                }
                if (!succeeds(one)) {
                    ::_exit(1);
                }
            }
            ::_exit(0);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        EXPECT_TRUE(succeeds(child));
    }
}

void expectAllKeys(const Tool& tool, int writers, int keys) {
    const NSDictionary values = NSDictionary::dictionaryWithContentsOfFile(tool.file("d"));
    EXPECT_EQ(values.count(), static_cast<std::size_t>(writers * keys));
    for (int key = 0; key < writers * keys; ++key) {
        EXPECT_EQ(values.objectForKey(NSString::stringWithFormat("Key%d", key)), NSObject(key % keys));
    }
}

TEST(DefaultsToolWriters, loseNoKeyOfOneAnother) {
    const Tool tool;
    writeSideBySide(8, 50, [] {});
    expectAllKeys(tool, 8, 50);
    EXPECT_EQ(tool.entriesInFolder(), 1U) << "nothing but the domain";
}

TEST(DefaultsToolWriters, loseNoKeyOfProcessesThatSaveTheirOwn) {
    const Tool tool;
    constexpr int writers = 8;
    constexpr int keys = 40;
    std::vector<pid_t> children;
    for (int writer = 0; writer < writers; ++writer) {
        const pid_t child = ::fork();
        if (child == 0) {
            ::alarm(120);
            NSProcessInfo::processInfo().setProcessName("d");
            for (int key = 0; key < keys; ++key) {
                NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
                defaults.setObject_forKey(key, NSString::stringWithFormat("Saved%d", writer * keys + key));
                while (!defaults.synchronize()) { // a busy machine may keep others waiting for long
                }
            }
            scene::leave(0);
        }
        children.push_back(child);
    }
    writeSideBySide(2, 30, [] {});
    for (const pid_t child : children) {
        EXPECT_TRUE(succeeds(child));
    }
    const NSDictionary values = NSDictionary::dictionaryWithContentsOfFile(tool.file("d"));
    EXPECT_EQ(values.count(), static_cast<std::size_t>(writers * keys + 60));
    for (int key = 0; key < writers * keys; ++key) {
        EXPECT_EQ(values.objectForKey(NSString::stringWithFormat("Saved%d", key)), NSObject(key % keys));
    }
    EXPECT_EQ(tool.entriesInFolder(), 1U) << "nothing but the domain";
}

#if __has_include(<linux/seccomp.h>)
/// From here on this process and its children cannot lock whole files and folders, as on a network file
/// system.
void refuseFolderLocks() {
    if (!scene::refuseCall(SYS_flock, EBADF) || ::flock(0, LOCK_UN) == 0) {
        ::_exit(99);
    }
}

TEST(DefaultsToolWriters, lockAFileWhereTheFolderCannotBeLocked) {
    const Tool tool;
    writeSideBySide(4, 20, refuseFolderLocks);
    expectAllKeys(tool, 4, 20);
    EXPECT_EQ(tool.entriesInFolder(), 2U) << "the domain and the lock";
    EXPECT_EQ(tool.done({"domains"}), "d\n");
}
#endif

TEST(DefaultsToolWriters, saySoWhenTheyWait) {
    const Tool tool;
    tool.done({"write", "d", "k", "v"});
    const int folder = ::open((tool.folder() / "ZQFoundation").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::flock(folder, LOCK_EX), 0);
    pid_t child = -1;
    const int terminal = scene::startOnTerminal({"write", "d", "k", "w"}, STDERR_FILENO, child);
    std::string said(200, '\0');
    const ssize_t count = ::read(terminal, said.data(), said.size()); // until it says something
    said.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    EXPECT_EQ(said.find("defaults: waiting for another writer"), 0U) << said;
    EXPECT_EQ(tool.done({"read", "d", "k"}), "v\n");
    ::close(folder);
    EXPECT_TRUE(succeeds(child));
    ::close(terminal);
    EXPECT_EQ(tool.done({"read", "d", "k"}), "w\n");
}

#if __has_include(<linux/seccomp.h>)
/// Makes sleeping take no time.
bool skipSleep() { return scene::refuseCall(SYS_clock_nanosleep, 0) && scene::refuseCall(SYS_nanosleep, 0); }

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
        const scene::Outcome outcome = tool.runPrepared({"write", "d", "k", "w"}, [locksFile] {
            return skipSleep() && (!locksFile || scene::refuseCall(SYS_flock, EBADF));
        });
        EXPECT_EQ(outcome.status, 1) << locksFile;
        EXPECT_NE(outcome.errors.find(tool.file("d")), std::string::npos) << outcome.errors;
        EXPECT_NE(outcome.errors.find("10 seconds"), std::string::npos) << outcome.errors;
    }
    EXPECT_EQ(tool.done({"read", "d", "k"}), "v\n");
    ::close(file);
    ::close(folder);
}
#endif

std::int64_t now() {
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

constexpr int rounds = 120;

/// A domain of some size, which takes a while to write.
std::string largeDomain(int value) {
    std::string text = "{ k = ";
    text.append(std::to_string(value)).append("; filling = \"").append(300'000, 'x').append("\"; }");
    return text;
}

/// Has the tool write the domain again and again, and sends it a signal at moments that are spread over the
/// time that it takes. Calls `check` after each. Answers how many the signal ended.
template <class Check>
int interruptAtManyMoments(const Tool& tool, int signal, const Check& check) {
    tool.done({"import", "d", "-"}, largeDomain(0));
    const std::int64_t start = now();
    tool.done({"import", "d", "-"}, largeDomain(0));
    const std::int64_t duration = now() - start;
    int ended = 0;
    for (int round = 1; round <= rounds; ++round) {
        const std::string input = tool.folder().write("input", largeDomain(round));
        const pid_t child = ::fork();
        if (child == 0) {
            become({"import", "d", input});
        }
        const std::int64_t moment = duration * (round * 37 % rounds) / rounds;
        const timespec pause{moment / 1'000'000'000, moment % 1'000'000'000};
        ::nanosleep(&pause, nullptr);
        ::kill(child, signal);
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        ended += WIFSIGNALED(status) ? 1 : 0;
        check(round);
    }
    return ended;
}

/// Whether the file is whole and no older than `least`; `least` becomes the value in it.
bool isWhole(const Tool& tool, int& least, int most) {
    const NSDictionary values = NSDictionary::dictionaryWithContentsOfFile(tool.file("d"));
    const int value = NSString(values.objectForKey("k")).intValue();
    const bool whole =
        NSString(values.objectForKey("filling")).length() == 300'000 && value >= least && value <= most;
    least = value;
    return whole;
}

TEST(DefaultsToolWriters, leaveAWholeFileWheneverTheyAreKilled) {
    const Tool tool;
    int value = 0;
    const int ended = interruptAtManyMoments(
        tool, SIGKILL, [&](int round) { EXPECT_TRUE(isWhole(tool, value, round)) << "round " << round; });
    EXPECT_GT(ended, 0);
    tool.done({"write", "d", "k", "v"});
    EXPECT_EQ(tool.entriesInFolder(), 1U) << "what killed writers left is cleared away";
}

TEST(DefaultsToolWriters, leaveNoTemporaryFileWhenTheyAreInterrupted) {
    for (const int signal : {SIGINT, SIGTERM}) {
        const Tool tool;
        int value = 0;
        const int ended = interruptAtManyMoments(tool, signal, [&](int round) {
            EXPECT_TRUE(isWhole(tool, value, round)) << "round " << round;
            EXPECT_EQ(tool.entriesInFolder(), 1U) << "round " << round;
        });
        EXPECT_GT(ended, 0);
    }
}

} // namespace
