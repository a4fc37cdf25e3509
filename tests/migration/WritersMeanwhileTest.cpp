// SPDX-License-Identifier: MIT
// Migrations of files that somebody keeps working on: adds, saves, rewrites, appends, moves and swaps, before
// every single call of the migration, and in a race with it. What was there after each step of the writer
// must be found afterwards, at the source, at the destination or beside either.
#include <cstdio>
#include <functional>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/kit/Environment.h"
#include "tests/kit/Sanitizers.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/migration/faults/Verdict.h"
#include "tests/migration/faults/Writer.h"

using namespace ZQFoundation;
using namespace faults;
using namespace scene;

namespace {

/// What a writer does, one step after the other, this many calls of the migration apart.
struct Habit {
    const char* name;
    std::vector<std::function<void(Writer&)>> steps;
    long apart = 1;
};
using Habits = std::vector<Habit>;

/// A step by one of the writer's functions, with these names.
template <class... Parameters>
auto step(void (Writer::*act)(Parameters...),
          const std::type_identity_t<std::decay_t<Parameters>>&... names) {
    return [=](Writer& writer) {
        (writer.*act)(names...);
    };
}

/// Of one file, named by its place in the source; "" when it is the source itself.
Habits habitsOfOneFile(const std::string& name) {
    const auto saveBeside = step(&Writer::savesBeside, name);
    const auto saveOver = step(&Writer::savesOver, name);
    const auto append = step(&Writer::appends, name);
    const auto open = step(&Writer::opens, name);
    const auto appendToOpen = step(&Writer::appendsToOpen);
    Habits habits{{"saves at once", {saveBeside, saveOver}, 0},
                  {"saves", {saveBeside, saveOver}},
                  {"rewrites", {step(&Writer::rewrites, name)}},
                  {"appends", {append, append}, 5},
                  {"keeps it open", {open, appendToOpen, appendToOpen}},
                  {"keeps it open for long", {open, appendToOpen, appendToOpen}, 100000}};
    if (hasFineTimes()) {
        habits.push_back({"rewrites unnoticed", {step(&Writer::rewritesUnnoticed, name)}});
    }
    return habits;
}

/// Names of a tree, or of the folder of a batch.
struct Names {
    const char* top;
    const char* middle;
    const char* deep;
    const char* other;
};
constexpr Names namesOfTree{"one.txt", "sub/two.txt", "sub/deeper/three", "other/four"};
constexpr Names namesOfBatch{"a.log", "sub/c.log", "sub/deeper/d.log", "other/e.log"};

Habits habitsOfFolders(const Names& names, const std::string& extension) {
    const auto add = [extension](const std::string& name) {
        return [name, extension](Writer& writer) {
            writer.adds(name + extension);
            writer.bringsIn(name + "-brought" + extension);
        };
    };
    const auto move = [](const std::string& from, const std::string& to) {
        return step(&Writer::moves, from, to);
    };
    const auto take = [](const std::string& name) {
        return step(&Writer::takesOut, name);
    };
    const auto swap = [](const std::string& name) {
        return step(&Writer::swaps, name);
    };
    return {{"adds at the top", {add("new")}},
            {"adds in the middle", {add("sub/new")}},
            {"adds deep", {add("sub/deeper/new")}},
            {"moves a file up", {move(names.deep, "moved" + extension)}},
            {"moves a file down", {move(names.top, "sub/deeper/moved" + extension)}},
            {"moves a file across", {move(names.deep, "other/moved" + extension)}},
            {"moves a file back across", {move(names.other, "sub/deeper/moved" + extension)}},
            {"moves a folder across", {move("sub/deeper", "other/deeper")}},
            {"moves a folder down", {move("other", "sub/deeper/other")}},
            {"takes a file out", {take(names.middle)}},
            {"takes a folder out", {take("sub/deeper")}},
            {"swaps a folder for a link", {swap("sub")}},
            {"swaps a folder for a link and back", {swap("sub"), swap("sub")}},
            {"swaps a deep folder for a link and back", {swap("sub/deeper"), swap("sub/deeper")}, 3},
            {"makes the source again", {step(&Writer::makesAgain, "again")}}};
}

Habits habitsFor(Subject subject) {
    if (subject == Subject::file) {
        return habitsOfOneFile("");
    }
    const Names& names = subject == Subject::tree ? namesOfTree : namesOfBatch;
    Habits habits = habitsOfFolders(names, subject == Subject::tree ? "" : ".log");
    for (const char* const name : {names.middle, names.deep}) {
        for (const Habit& habit : habitsOfOneFile(name)) {
            habits.push_back(habit);
        }
    }
    return habits;
}

/// How migrations ended, to be printed.
struct Count {
    long runs = 0;
    long succeeded = 0;
    long kept = 0; ///< with at least one source that could not be removed

    void add(const Outcome& outcome) {
        ++runs;
        // One code, or a line with one for each file.
        const std::string codes =
            outcome.report.find('=') == std::string::npos ? "=" + outcome.report + "\n" : outcome.report;
        kept += codes.find("=15\n") != std::string::npos ? 1 : 0;
        bool isAllMoved = true;
        for (std::size_t at = 0; (at = codes.find('=', at)) != std::string::npos; ++at) {
            isAllMoved = isAllMoved && codes.compare(at, 3, "=0\n") == 0;
        }
        succeeded += isAllMoved ? 1 : 0;
    }
    void print() const {
        std::printf("%ld runs, %ld moved everything, %ld kept a source\n", runs, succeeded, kept);
    }
};

/// Expects that nothing of the writer's is lost after a migration that nobody ended.
void expectNothingLost(const Run& run, const Writer& writer, const std::string& what,
                       const Outcome& outcome) {
    const std::string about = what + " (code '" + outcome.report.substr(0, 80) + "')";
    addFailures(about, writer.problems());
    addFailures(about, problemsWithLeftovers(run.base()));
    EXPECT_TRUE(outcome.ended) << about;
}

/// One migration with the steps of the habit before its calls from this one on. What is left of them
/// comes after its end.
Outcome withHabit(const Case& which, const Habit& habit, long call) {
    const Run run(which);
    Writer writer(run);
    std::size_t next = 0;
    const auto stepUntil = [&](long number) {
        while (next < habit.steps.size() && number >= call + static_cast<long>(next) * habit.apart) {
            habit.steps[next++](writer);
        }
        return next < habit.steps.size();
    };
    const Outcome outcome = run.under({}, stepUntil);
    while (next < habit.steps.size()) {
        habit.steps[next++](writer);
    }
    expectNothingLost(
        run, writer, which.name() + ", somebody " + habit.name + " at call " + std::to_string(call), outcome);
    return outcome;
}

void tryHabits(Subject subject, long usualStride) {
    const QuickRuns quick;
    const long stride = strideOf(usualStride);
    Count count;
    long start = 0;
    for (const Old old : {Old::missing, Old::overwritten}) {
        for (const Habit& habit : habitsFor(subject)) {
            const Case which{subject, old, false};
            atCallsOf(which, 1 + start++ % stride, stride,
                      [&](long call) { count.add(withHabit(which, habit, call)); });
        }
    }
    count.print();
}

/// A tree or batch with enough in it to be worked with for a while.
void enlarge(const Run& run) {
    for (int number = 0; number < 150; ++number) {
        const std::string name = "many/" + std::to_string(number % 5) + "/" + std::to_string(number) + ".log";
        const std::string path = run.from() + "/" + name;
        ::mkdir((run.from() + "/many").c_str(), 0755);
        ::mkdir(folderOf(path).c_str(), 0755);
        std::FILE* const file = std::fopen(path.c_str(), "w");
        ASSERT_NE(file, nullptr);
        std::fprintf(file, "file %d of many", number);
        std::fclose(file);
    }
}

/// Works until the migration has ended, each step at a place where no other kind of step is made.
void workUntilDone(Writer& writer, const ReportingChild& migration, unsigned seed, bool keepsOpen) {
    std::minstd_rand random(seed);
    const auto any = [&random](unsigned count) {
        return std::to_string(random() % count);
    };
    const auto anyEndingIn = [&](const std::string& digit) {
        return std::to_string(1 + random() % 14) + digit + ".log";
    };
    if (keepsOpen) {
        writer.opens("many/4/4.log");
    }
    do {
        const std::string folder = "many/" + any(3) + "/";
        const unsigned kind = random() % 8;
        if (kind == 0) {
            writer.adds(folder + "added");
        } else if (kind == 1) {
            const std::string name = "many/3/" + anyEndingIn("3");
            writer.savesBeside(name);
            writer.savesOver(name);
        } else if (kind == 2) {
            writer.rewrites("many/4/" + anyEndingIn("9"));
        } else if (kind == 3) {
            writer.appends("many/0/" + anyEndingIn("0"));
        } else if (kind == 4) {
            writer.moves(folder + any(150) + ".log", "many/" + any(3) + "/moved" + any(1000) + ".log");
        } else if (kind == 5) {
            writer.bringsIn(folder + "brought");
        } else if (kind == 6) {
            writer.swaps("sub");
        } else {
            writer.appendsToOpen();
        }
    } while (!migration.hasEnded());
}

void raceWriter(Subject subject) {
    const kit::ScratchInMemory memory;
    Count count;
    for (long turn = 0; turn < wantedRaces(25) && !::testing::Test::HasFailure(); ++turn) {
        const Run run({subject, turn % 2 == 0 ? Old::missing : Old::overwritten, false});
        enlarge(run);
        Writer writer(run);
        const ReportingChild migration([&] { return run.migrate(run.which().flags()); });
        workUntilDone(writer, migration, static_cast<unsigned>(turn) + 1, turn % 4 == 3);
        const Outcome outcome = migration.outcome();
        count.add(outcome);
        expectNothingLost(run, writer, "race " + std::to_string(turn), outcome);
    }
    count.print();
}

/// What somebody puts at the destination when its name is free.
enum class Placed { file, link, emptyFolder, folder };

bool place(Placed what, const std::string& path) {
    switch (what) {
    case Placed::file: {
        const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        const bool isMade = file >= 0 && ::write(file, "placed", 6) == 6;
        ::close(file);
        return isMade;
    }
    case Placed::link:
        return ::symlink("nowhere", path.c_str()) == 0;
    case Placed::emptyFolder:
        return ::mkdir(path.c_str(), 0700) == 0;
    case Placed::folder:
        return ::mkdir(path.c_str(), 0700) == 0 && ::mkdir((path + "/placed").c_str(), 0700) == 0;
    }
    return false;
}

/// Somebody puts something at the destination before this call, where its name is free.
void withPlaced(const Case& which, Placed what, long call) {
    const Run run(which);
    const std::string name = which.subject == Subject::batch ? "/sub/c.log" : "";
    const std::string path = run.to() + name;
    Digest placed;
    const Outcome outcome = run.under({}, [&](long number) {
        if (number == call && place(what, path)) {
            placed = digestOf(path);
        }
        return number < call;
    });
    if (!placed.empty()) {
        const std::string about =
            which.name() + " at call " + std::to_string(call) + ", code '" + outcome.report + "'";
        EXPECT_EQ(shownDigest(digestOf(path)), shownDigest(placed)) << about;
        if (which.subject == Subject::batch) {
            EXPECT_EQ(kit::contentsOf(run.from() + name), "contents of sub/c.log") << about;
        } else {
            EXPECT_EQ(digestOf(run.from(), Detail::times), run.source()) << about;
        }
        EXPECT_EQ(Words{}, leftoversBelow(run.base())) << about;
    }
}

} // namespace

TEST(WritersMeanwhile, loseNothingOfAFile) { tryHabits(Subject::file, 1); }
TEST(WritersMeanwhile, loseNothingOfAFolder) { tryHabits(Subject::tree, 41); }
TEST(WritersMeanwhile, loseNothingOfABatch) { tryHabits(Subject::batch, 29); }

TEST(WritersMeanwhile, loseNothingInARaceWithAFolder) { raceWriter(Subject::tree); }
TEST(WritersMeanwhile, loseNothingInARaceWithABatch) { raceWriter(Subject::batch); }

TEST(WritersMeanwhile, keepWhatTheyPutAtTheDestination) {
    const QuickRuns quick;
    for (const Subject subject : {Subject::file, Subject::tree, Subject::batch}) {
        for (const Old old : {Old::missing, Old::overwritten}) {
            const Case which{subject, old, false};
            const long stride = subject == Subject::file ? 1 : kit::isSanitized ? 31 : 13;
            for (int what = 0; what < 4; ++what) {
                atCallsOf(which, 1 + what, stride,
                          [&](long call) { withPlaced(which, static_cast<Placed>(what), call); });
            }
        }
    }
}
