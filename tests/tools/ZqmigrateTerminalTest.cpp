// SPDX-License-Identifier: MIT
// What a person at a terminal sees of `zqmigrate`: the bar, and what Ctrl-C does.
#include <algorithm>
#include <csignal>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Mounts.h"
#include "tests/tools/ToolScene.h"

using namespace ZQFoundation;
using kit::endOf;
using scene::contains;
using scene::MigrateTool;
using scene::notPrepared;
using scene::Outcome;
using scene::Terminal;
using scene::Words;

namespace {

/// What a person at the terminal sees of the tool that runs there, with its exit status.
std::pair<int, std::string> seenOf(const MigrateTool& tool, const Words& words, unsigned short columns = 80,
                                   const char* type = "xterm") {
    const kit::Variable term("TERM", type);
    Terminal terminal(columns);
    const pid_t child = tool.start(words, terminal.end(), terminal.end());
    const std::string seen = terminal.readToEnd();
    return {endOf(child), seen};
}

/// The pieces between carriage returns that are bars or their removal, without the ends of lines.
Words drawingsIn(const std::string& seen) {
    Words drawings;
    for (std::size_t start = seen.find('\r'); start != std::string::npos;) {
        const std::size_t next = seen.find('\r', start + 1);
        std::string piece = seen.substr(start + 1, next - start - 1);
        const std::size_t erasure = piece.find("\x1B[K");
        if (erasure != std::string::npos) {
            drawings.push_back(piece.substr(0, erasure));
        }
        start = next;
    }
    return drawings;
}

/// What stays on the screen.
std::string screenAfter(const std::string& seen) {
    std::string screen;
    std::string line;
    std::size_t column = 0;
    for (std::size_t position = 0; position < seen.size(); ++position) {
        if (seen[position] == '\n') {
            screen.append(line).append("\n");
            line.clear();
            column = 0;
        } else if (seen[position] == '\r') {
            column = 0;
        } else if (seen.compare(position, 3, "\x1B[K") == 0) {
            line.resize(column);
            position += 2;
        } else {
            line.resize(std::max(line.size(), column + 1));
            line[column++] = seen[position];
        }
    }
    return screen.append(line);
}

/// A tool with a batch that stops halfway, after the files whose results come together: each file has a line
/// of its own for a pipe that holds one such line and no second one.
class LongBatch {
public:
    static constexpr int count = 600;

    LongBatch() : term_("TERM", "xterm") {
        std::string deep;
        for (int level = 0; level < 12; ++level) {
            deep.append(200, static_cast<char>('a' + level)).append("/");
        }
        for (int number = 0; number < count; ++number) {
            tool.file("a/" + deep + std::to_string(number));
        }
        EXPECT_EQ(::pipe2(pipe_, O_CLOEXEC), 0);
        EXPECT_EQ(::fcntl(pipe_[1], F_SETPIPE_SZ, 4096), 4096);
    }
    LongBatch(const LongBatch&) = delete;
    LongBatch& operator=(const LongBatch&) = delete;
    ~LongBatch() { ::close(pipe_[0]); }

    /// Starts the tool, until the first results are known; no more than two of them find room.
    pid_t startUntilStuck(int errors, Words words = {"--create-parents", "batch", "a", "b"}) {
        const pid_t child = tool.start(words, pipe_[1], errors);
        ::close(pipe_[1]);
        while (left("a") > count - 1) {
            ::sched_yield();
        }
        return child;
    }

    std::string readToEnd() const { return kit::readToEnd(pipe_[0]); }

    int left(const char* folder) const {
        const scene::Digest digest = tool.folder().digest(folder);
        return static_cast<int>(std::count_if(digest.begin(), digest.end(), [](const auto& entry) {
            return entry.second.rfind("file", 0) == 0;
        }));
    }

    MigrateTool tool;

private:
    kit::Variable term_;
    int pipe_[2] = {-1, -1};
};

int linesIn(const std::string& text) { return static_cast<int>(std::count(text.begin(), text.end(), '\n')); }

// The bar

TEST(ZqmigrateTerminal, showsABarAndRemovesIt) {
    LongBatch batch;
    Terminal terminal;
    const pid_t child = batch.startUntilStuck(terminal.end());
    terminal.waitFor(" of 600, ");
    EXPECT_EQ(linesIn(batch.readToEnd()), LongBatch::count);
    const std::string seen = terminal.readToEnd();
    EXPECT_EQ(endOf(child), 0);
    EXPECT_EQ(screenAfter(seen), "zqmigrate: 600 files moved\n");
    for (const std::string& drawing : drawingsIn(seen)) {
        const bool isCounting = drawing.find("counting: ") == 0;
        EXPECT_TRUE(drawing.empty() || isCounting || (drawing[0] == '[' && contains(drawing, "%  ")))
            << drawing;
        EXPECT_LT(drawing.size(), 80U);
    }
}

TEST(ZqmigrateTerminal, fitsTheBarToTheWidth) {
    LongBatch batch;
    Terminal terminal;
    const pid_t child = batch.startUntilStuck(terminal.end());
    terminal.waitFor("] ");
    std::size_t widest = 0;
    for (const int columns : {30, 12, 3, 1, 200, 0}) {
        terminal.resize(static_cast<unsigned short>(columns));
        // The drawing that was under way may still have the width from before.
        std::size_t mark = terminal.seen().size();
        for (int drawing = 0; drawing < 2; ++drawing) {
            terminal.waitFor("\x1B[K", mark);
            mark = terminal.seen().find("\x1B[K", mark) + 3;
        }
        terminal.waitFor("\x1B[K", mark);
        const std::string bar = drawingsIn(terminal.seen().substr(mark)).front();
        EXPECT_LT(bar.size(), static_cast<std::size_t>(std::max(columns == 0 ? 80 : columns, 2)));
        EXPECT_FALSE(bar.empty());
        widest = std::max(widest, bar.size());
    }
    EXPECT_GT(widest, 40U);
    batch.readToEnd();
    terminal.readToEnd();
    EXPECT_EQ(endOf(child), 0);
}

TEST(ZqmigrateTerminal, keepsLinesAndBarApart) {
    const MigrateTool tool;
    tool.files("a", 2000);
    tool.file("b/1", "mine");
    const auto [status, seen] = seenOf(tool, {"batch", "a", "b"}, 60);
    EXPECT_EQ(status, 1);
    const std::string screen = screenAfter(seen);
    EXPECT_EQ(linesIn(screen), 1999 + 3);
    for (int number = 0; number < 2000; ++number) {
        const std::string line = " 0  " + std::to_string(number) + ": success\n";
        EXPECT_EQ(screen.find(line) == 0 || contains(screen, "\n" + line), number != 1) << line;
    }
    EXPECT_TRUE(contains(screen, "\nzqmigrate: 1,999 of 2,000 files moved; left to do: 1\n"
                                 "  30  1: the destination file already exists\nzqmigrate: 30: "));
    EXPECT_FALSE(drawingsIn(seen).empty());
}

TEST(ZqmigrateTerminal, showsNoBarToWhoWantsNone) {
    const std::pair<const char*, Words> rows[] = {{"xterm", {"--quiet", "batch", "a", "b"}},
                                                  {"dumb", {"batch", "b", "a"}},
                                                  {nullptr, {"batch", "a", "b"}}};
    const MigrateTool tool;
    tool.file("a/f");
    tool.folder().makeFolder("b");
    for (const auto& [term, words] : rows) {
        const auto [status, seen] = seenOf(tool, words, 80, term);
        EXPECT_EQ(status, 0);
        EXPECT_FALSE(contains(seen, "\x1B")) << seen;
    }
}

/// Whether a bar was drawn between the first item and the last.
bool wasFollowed(const std::string& seen, int count) {
    const std::string total = " of " + std::to_string(count / 1000) + ",001, "; // with the folder itself
    const Words drawings = drawingsIn(seen);
    return std::any_of(drawings.begin(), drawings.end(), [&](const std::string& drawing) {
        const bool isFirst = contains(drawing, "  0 of ") || contains(drawing, "  1 of ");
        return !isFirst && contains(drawing, total) && contains(drawing, " MB, ") &&
               !contains(drawing, std::to_string(count / 1000) + ",001 of ");
    });
}

// A folder that is copied between two drawings is tried again with more files.
TEST(ZqmigrateTerminal, followsTheFilesInsideOneFolder) {
    const MigrateTool tool;
    tool.folder().makeFolder("b");
    bool isFollowed = false;
    int made = 0;
    for (int count = 4000; !isFollowed && count <= 64000; count *= 2) {
        while (made < count) {
            tool.file("a/" + std::to_string(made++), std::string(1000, 'x'));
        }
        const auto [status, seen] =
            seenOf(tool, {"--keep-original", "folder", "a", "b/" + std::to_string(count)});
        EXPECT_EQ(status, 0);
        EXPECT_TRUE(contains(screenAfter(seen), "zqmigrate: 1 folder copied\n"));
        isFollowed = wasFollowed(seen, count);
    }
    EXPECT_TRUE(isFollowed);
}

// Signals

TEST(ZqmigrateInterruption, stopsTheWorkAndReportsWhatIsLeft) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        LongBatch batch;
        const int errors = batch.tool.opened("errors");
        const pid_t child = batch.startUntilStuck(errors, {"--create-parents", "--json", "batch", "a", "b"});
        EXPECT_EQ(::kill(child, number), 0);
        const std::string output = batch.readToEnd();
        EXPECT_EQ(endOf(child), 128 + number);
        ::close(errors);
        const int left = batch.left("a");
        const int done = batch.left("b");
        EXPECT_GT(done, 0);
        EXPECT_GT(left, 20);
        EXPECT_EQ(done + left, LongBatch::count);
        EXPECT_TRUE(contains(output, "\"migrated\": " + std::to_string(done) +
                                         ",\n\"failed\": 0,\n\"notReached\": " + std::to_string(left) +
                                         ",\n"));
        EXPECT_TRUE(contains(output, "\"interrupted\": true,\n\"success\": false\n}\n"));
        const std::string listOfLeft = output.substr(output.find("\"left\": ["));
        for (const auto& [path, what] : batch.tool.folder().digest("a")) {
            const bool isFile = what.rfind("file", 0) == 0;
            EXPECT_TRUE(!isFile || contains(listOfLeft, "{\"path\": \"" + path + "\"}")) << path;
        }
        const std::string report = batch.tool.report("errors");
        EXPECT_EQ(report.find("zqmigrate: stopped by a signal; " + std::to_string(done) +
                              " of 600 files moved; left to do: " + std::to_string(left) + "\n  --  "),
                  0U)
            << report.substr(0, 200);
        EXPECT_TRUE(contains(report, ": not reached\n  ... and " + std::to_string(left - 20) + " more\n"));
        EXPECT_EQ(linesIn(report), 1 + 20 + 1);
    }
}

TEST(ZqmigrateInterruption, isShownAtOnceByTheBar) {
    LongBatch batch;
    Terminal terminal;
    const pid_t child = batch.startUntilStuck(terminal.end());
    EXPECT_EQ(::kill(child, SIGINT), 0);
    terminal.waitFor(", stopping");
    std::thread reader([&batch] { batch.readToEnd(); });
    terminal.readToEnd(); // at the same time, as neither holds all that is left
    reader.join();
    EXPECT_EQ(endOf(child), 130);
}

TEST(ZqmigrateInterruption, doesNotWaitForAReaderThatHasStalled) {
    for (const bool isJson : {false, true}) {
        const Words words = isJson ? Words{"--json", "--create-parents", "batch", "a", "b"}
                                   : Words{"--create-parents", "batch", "a", "b"};
        LongBatch batch;
        const int errors = batch.tool.opened("errors");
        const pid_t child = batch.startUntilStuck(errors, words);
        EXPECT_EQ(::kill(child, SIGTERM), 0);
        EXPECT_EQ(endOf(child), 143); // the pipe still has a reader, which reads nothing
        ::close(errors);
        const std::string report = batch.tool.report("errors");
        const int left = batch.left("a");
        EXPECT_GT(left, 0);
        EXPECT_EQ(batch.left("b"), LongBatch::count - left);
        EXPECT_TRUE(contains(report, "zqmigrate: stopped by a signal; ")) << report.substr(0, 200);
        EXPECT_TRUE(contains(report, "; left to do: " + std::to_string(left) + "\n"));
        // The signal may come before the end of the JSON finds no room.
        const std::string output = batch.readToEnd();
        const bool isWhole = isJson && output.size() > 2 && output.compare(output.size() - 2, 2, "}\n") == 0;
        EXPECT_NE(contains(report, "zqmigrate: standard output was not written completely\n"), isWhole);
    }
}

TEST(ZqmigrateInterruption, doesNotWaitForAStalledReaderOfErrors) {
    LongBatch batch;
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    ASSERT_EQ(::fcntl(ends[1], F_SETPIPE_SZ, 4096), 4096);
    const pid_t child = batch.startUntilStuck(ends[1]); // as with 2>&1
    ::close(ends[1]);
    EXPECT_EQ(::kill(child, SIGINT), 0);
    EXPECT_EQ(endOf(child), 130);
    ::close(ends[0]);
}

/// Whether a migration has begun to fill a hidden copy in the folder.
bool isCopying(const std::string& folder) {
    bool isFound = false;
    DIR* const opened = ::opendir(folder.c_str());
    while (const dirent* entry = ::readdir(opened)) {
        isFound = isFound || std::string_view(entry->d_name).rfind(".zq-copy.", 0) == 0;
    }
    ::closedir(opened);
    return isFound;
}

// A folder that is complete before the signal comes is tried again with more files.
TEST(ZqmigrateInterruption, leavesAFolderThatIsHalfCopiedAtItsSource) {
    const MigrateTool tool;
    tool.folder().makeFolder("b");
    int made = 0;
    int status = 0;
    for (int count = 4000; status == 0 && count <= 64000; count *= 2) {
        while (made < count) {
            tool.file("a/" + std::to_string(made++));
        }
        const int errors = tool.opened("errors");
        const std::string copy = "b/" + std::to_string(count);
        const pid_t child = tool.start({"--keep-original", "folder", "a", copy}, errors, errors);
        while (!isCopying(tool / "b") && ::access((tool / copy).c_str(), F_OK) != 0) {
            ::sched_yield();
        }
        EXPECT_EQ(::kill(child, SIGINT), 0);
        const int ended = endOf(child);
        ::close(errors);
        const bool isWhole = ::access((tool / copy).c_str(), F_OK) == 0;
        status = isWhole ? 0 : ended;
    }
    EXPECT_EQ(status, 130);
    EXPECT_EQ(tool.report("errors"),
              "zqmigrate: stopped by a signal; 0 of 1 folder copied; left to do: 1\n  --  a: not reached\n");
    EXPECT_FALSE(isCopying(tool / "b")) << "no part of a copy is left";
    EXPECT_EQ(tool.folder().digest("a").size(), 1U + static_cast<std::size_t>(made));
}

/// Runs the tool in a child for which signals are waiting when it starts.
scene::Outcome runAfterPending(const MigrateTool& tool, const std::vector<int>& signals,
                               void (*disposition)(int), const Words& words) {
    return tool.runPrepared(words, [&] {
        struct sigaction action {};
        action.sa_handler = disposition;
        sigset_t blocked;
        sigemptyset(&blocked);
        for (const int number : signals) {
            ::sigaction(number, &action, nullptr);
            sigaddset(&blocked, number);
        }
        ::sigprocmask(SIG_BLOCK, &blocked, nullptr);
        return std::all_of(signals.begin(), signals.end(), [](int number) { return ::raise(number) == 0; });
    });
}

TEST(ZqmigrateInterruption, isNoneForSignalsThatWereIgnored) {
    const MigrateTool tool;
    tool.file("a/f");
    const auto outcome = runAfterPending(tool, {SIGHUP}, SIG_IGN, {"file", "a/f", "b"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "zqmigrate: 1 file moved\n");
}

TEST(ZqmigrateInterruption, beforeTheFirstFileLeavesAllOfIt) {
    const MigrateTool tool;
    tool.file("a/f");
    for (const Words& words :
         {Words{"file", "a/f", "b"}, Words{"folder", "a", "b"}, Words{"batch", "a", "b"}}) {
        const auto outcome = runAfterPending(tool, {SIGINT}, SIG_DFL, words);
        EXPECT_EQ(outcome.status, 130);
        EXPECT_EQ(outcome.output, "");
        EXPECT_TRUE(contains(outcome.errors, "left to do: 1\n  --  ")) << outcome.errors;
    }
    EXPECT_EQ(tool.folder().digest("a").size(), 2U);
}

TEST(ZqmigrateInterruption, cutsTheListOfWhatIsLeftTheSecondTime) {
    const MigrateTool tool;
    tool.file("a/1");
    tool.file("a/2");
    for (const std::vector<int>& signals : {std::vector<int>{SIGINT}, std::vector<int>{SIGINT, SIGTERM}}) {
        const bool isCut = signals.size() == 2;
        const auto [status, output, errors] =
            runAfterPending(tool, signals, SIG_DFL, {"--json", "batch", "a", "b"});
        EXPECT_EQ(status, 130);
        EXPECT_EQ(contains(output, "\"isLeftComplete\": false"), isCut) << output;
        EXPECT_TRUE(contains(output, "\"areUnreadableFoldersComplete\": false"));
        EXPECT_TRUE(contains(errors, "folders that cannot be read: there may be more\n")) << errors;
        EXPECT_TRUE(contains(errors, isCut ? " of 1 file moved; left to do: 1 or more\n" : "left to do: 2\n"))
            << errors;
    }
    EXPECT_EQ(tool.folder().digest("a").size(), 3U);
}

// Descriptors that are closed when the tool starts

TEST(ZqmigrateTerminal, keepsItsLinesOutOfFilesWhateverIsClosed) {
    constexpr int fileCount = 100;
    const kit::Variable term("TERM", "xterm");
    for (int closed = 0; closed < 8; ++closed) {
        SCOPED_TRACE(closed);
        const MigrateTool tool;
        for (int number = 0; number < fileCount; ++number) {
            tool.file("a/" + std::string(60, 'n') + std::to_string(number), std::to_string(number));
        }
        const scene::Digest before = tool.folder().digest("a");
        tool.folder().makeFolder("b");
        Terminal terminal;
        const int output = tool.opened("output");
        const pid_t child = tool.startPrepared({"batch", "a", "b"}, output, terminal.end(), [closed] {
            for (int number = 0; number < 3; ++number) {
                if ((closed & (1 << number)) != 0) {
                    ::close(number);
                }
            }
            return true;
        });
        ::close(output);
        const std::string seen = terminal.readToEnd();
        EXPECT_EQ(endOf(child), (closed & 2) != 0 ? 1 : 0);
        EXPECT_EQ(tool.folder().digest("b"), before);
        EXPECT_EQ(linesIn(tool.report("output")), (closed & 2) != 0 ? 0 : fileCount);
        EXPECT_EQ(seen.empty(), (closed & 4) != 0);
    }
}

TEST(ZqmigrateTerminal, needsNoNullDeviceWhileNothingIsClosed) {
    for (const bool isClosed : {false, true}) {
        const MigrateTool tool;
        tool.file("a");
        tool.folder().makeFolder("devices");
        const Outcome outcome = tool.runPrepared({"file", "a", "b"}, [&] {
            return kit::hasOwnMounts() && kit::bindMount(tool / "devices", "/dev") &&
                   (!isClosed || ::close(STDIN_FILENO) == 0);
        });
        if (outcome.status == notPrepared) {
            GTEST_SKIP() << "this machine allows no mounts of one's own";
        }
        EXPECT_EQ(outcome.status, isClosed ? 1 : 0);
        EXPECT_EQ(outcome.errors, isClosed ? "zqmigrate: a standard stream is closed, and /dev/null cannot "
                                             "take its place\n"
                                           : "zqmigrate: 1 file moved\n");
        EXPECT_EQ(tool.folder().contents(isClosed ? "a" : "b"), "x");
    }
}

} // namespace
