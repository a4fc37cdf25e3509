// SPDX-License-Identifier: MIT
// The program itself, in its bundle: started, killed, started again, moved, in another language.
#include <csignal>
#include <set>

#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

#include "examples/Notes/model/OldNotes.h"
#include "tests/kit/Child.h"
#include "tests/kit/ScratchFolder.h"

using namespace ZQFoundation;

namespace {

/// A home in which nothing but the program is at work.
struct ProgramHome : kit::ScratchFolder {
    ProgramHome() {
        for (const char* const folder : {"home", "work", "temporary", "runtime"}) {
            makeFolder(folder);
        }
        ::chmod((*this / "runtime").c_str(), 0700);
    }
    std::string oldPlace() const { return *this / "home/Library/Application Support/Example/Notes"; }
    std::string newPlace() const { return *this / "home/.local/share/Example/Notes"; }
};

/// What is below the folder, but for what belongs to the toolkit's fonts.
std::set<std::string> itemsIn(const std::string& folder) {
    std::set<std::string> items;
    NSDirectoryEnumerator walk = NSFileManager::defaultManager().enumeratorAtPath(folder);
    while (const NSString item = walk.nextObject()) {
        if (item == "home/.cache") {
            walk.skipDescendents();
        } else {
            items.insert(item.utf8());
        }
    }
    return items;
}

/// The running program, whose standard error is a pipe.
class Program {
public:
    Program(const ProgramHome& home, std::vector<std::string> arguments, const char* language = "en",
            const std::string& bundle = ZQ_NOTES_BUNDLE) {
        int ends[2];
        EXPECT_EQ(::pipe(ends), 0);
        child_ = ::fork();
        if (child_ == 0) {
            ::dup2(ends[1], 2);
            ::close(ends[0]);
            ::close(ends[1]);
            become(home, std::move(arguments), language, bundle + "/Contents/MacOS/Notes");
        }
        ::close(ends[1]);
        output_ = ends[0];
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program() {
        kill();
        ::close(output_);
    }

    /// The next line that holds the text; empty when the program ends before.
    std::string lineWith(const std::string& text) {
        for (;;) {
            const std::size_t end = read_.find('\n');
            if (end != std::string::npos) {
                const std::string line = read_.substr(0, end);
                read_.erase(0, end + 1);
                if (line.find(text) != std::string::npos) {
                    return line;
                }
                continue;
            }
            char buffer[4096];
            const ssize_t count = ::read(output_, buffer, sizeof buffer);
            if (count <= 0) {
                return {};
            }
            read_.append(buffer, static_cast<std::size_t>(count));
        }
    }

    void kill() {
        if (child_ > 0) {
            ::kill(child_, SIGKILL);
            EXPECT_EQ(kit::endOf(child_), -SIGKILL);
            child_ = 0;
        }
    }

    bool isRunning() const {
        siginfo_t facts = {};
        return ::waitid(P_PID, static_cast<id_t>(child_), &facts, WEXITED | WNOHANG | WNOWAIT) == 0 &&
               facts.si_pid == 0;
    }

    pid_t number() const { return child_; }

private:
    [[noreturn]] static void become(const ProgramHome& home, std::vector<std::string> words,
                                    const char* language, std::string program) {
        for (const char* const name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "ZQ_DEFAULTS"}) {
            ::unsetenv(name);
        }
        ::setenv("HOME", (home / "home").c_str(), 1);
        ::setenv("TMPDIR", (home / "temporary").c_str(), 1);
        ::setenv("XDG_RUNTIME_DIR", (home / "runtime").c_str(), 1);
        ::setenv("LANGUAGE", language, 1);
        words.insert(words.begin(), {program, "-platform", "offscreen"});
        std::vector<char*> pointers;
        for (std::string& word : words) {
            pointers.push_back(word.data());
        }
        pointers.push_back(nullptr);
        if (::chdir((home / "work").c_str()) == 0) {
            ::alarm(300);
            ::execv(program.c_str(), pointers.data());
        }
        ::_exit(127);
    }

    pid_t child_ = 0;
    int output_ = -1;
    std::string read_;
};

} // namespace

TEST(Program, readsTraceKeysBesideTheOptionsOfQt) {
    const ProgramHome home;
    home.write("home/.local/share/Example/Notes/a.note", "a");
    Program program(home, {"-TraceNotes", "YES", "-style", "fusion", "-LogFile", "NO"});
    EXPECT_NE(program.lineWith("Notes 2.0 v200").find("] Notes 2.0 v200 (en), running on "),
              std::string::npos);
    EXPECT_NE(program.lineWith("notes in").find("1 notes in " + home.newPlace()), std::string::npos);
}

TEST(Program, searchesForWhatIsLeftOfItsCommandLine) {
    const ProgramHome home;
    Program program(
        home, {"-TraceSearch", "YES", "-reverse", "apple", "-style", "fusion", "pie", "-LogFile", "NO"});
    EXPECT_NE(program.lineWith("0 notes match \"apple pie\""), "");
}

TEST(Program, speaksGerman) {
    const ProgramHome home;
    Program program(home, {"-TraceNotes", "YES", "-LogFile", "NO"}, "de");
    EXPECT_NE(program.lineWith("Notes 2.0 v200").find("Notes 2.0 v200 (de), running on "), std::string::npos);
}

TEST(Program, killedInItsFirstStartItGoesOnInTheNext) {
    constexpr int count = 700;
    const ProgramHome home;
    const std::vector<std::string> arguments = {"-TraceMigration", "YES", "-LogFile", "NO"};
    for (int number = 0; number < count; ++number) {
        home.write("home/Library/Application Support/Example/Notes/" + std::to_string(number) + ".note",
                   std::to_string(number));
    }
    Program first(home, arguments);
    while (notes::countOldNotes(home.newPlace()) == 0 && first.isRunning()) {
        ::sched_yield();
    }
    first.kill();
    const std::size_t left = notes::countOldNotes(home.oldPlace());
    EXPECT_GT(left, 0U);
    Program second(home, arguments);
    EXPECT_NE(second.lineWith("notes moved from").find(", 0 left"), std::string::npos);
    second.kill();
    std::set<std::string> texts;
    for (const std::string& item : itemsIn(home.newPlace())) {
        texts.insert(kit::contentsOf(home.newPlace() + "/" + item));
    }
    for (int number = 0; number < count; ++number) {
        ASSERT_EQ(texts.count(std::to_string(number)), 1U) << number;
    }
}

TEST(Program, aMovedBundleIsWhole) {
    const ProgramHome home;
    const std::string moved = home / "elsewhere/Notes.app";
    home.makeFolder("elsewhere");
    NSString reason;
    ASSERT_TRUE(NSFileManager::defaultManager().copyItemAtPath_toPath_error(
        NSString(ZQ_NOTES_BUNDLE).stringByStandardizingPath(), moved, &reason))
        << reason;
    Program program(home, {"-TraceNotes", "YES", "-LogFile", "NO"}, "de", moved);
    EXPECT_NE(program.lineWith("Notes 2.0 v200").find("(de), running on "), std::string::npos);
    EXPECT_NE(program.lineWith("notes in"), "");
    const std::string maps = kit::contentsOf("/proc/" + std::to_string(program.number()) + "/maps");
    EXPECT_NE(maps.find(moved + "/Contents/Frameworks/libZQFoundation.so"), std::string::npos) << maps;
    EXPECT_EQ(maps.find(ZQ_TEST_BINARY_DIR "/libZQFoundation"), std::string::npos);
}

TEST(Program, leavesWhatItSaysInTheHomeAndNothingElsewhere) {
    const ProgramHome home;
    home.write("home/.config/ZQFoundation/com.example.Notes.plist", "{ TraceSettings = YES; }");
    Program program(home, {});
    const std::string logs = home / "home/.local/state/Example/Notes";
    const auto logText = [&] {
        std::string all;
        for (const std::string& name : itemsIn(logs)) {
            all += kit::contentsOf(logs + "/" + name);
        }
        return all;
    };
    while (logText().find(" LastMove = ") == std::string::npos && program.isRunning()) {
        ::sched_yield();
    }
    const std::string number = std::to_string(program.number());
    program.kill();
    EXPECT_EQ(program.lineWith(""), "");
    EXPECT_EQ(logText().find("] -----"), logText().find("] "));
    std::set<std::string> items = itemsIn(home.path());
    EXPECT_EQ(
        std::erase_if(items, [&](const std::string& item) { return item.ends_with("." + number + ".log"); }),
        1U);
    EXPECT_EQ(items, (std::set<std::string>{"home", "home/.config", "home/.config/ZQFoundation",
                                            "home/.config/ZQFoundation/com.example.Notes.plist",
                                            "home/.local", "home/.local/share", "home/.local/share/Example",
                                            "home/.local/share/Example/Notes", "home/.local/state",
                                            "home/.local/state/Example", "home/.local/state/Example/Notes",
                                            "runtime", "temporary", "work"}));
}
