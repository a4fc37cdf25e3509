// SPDX-License-Identifier: MIT
// Two processes that migrate at the same time: the same source to the same destination, one before every
// single call of the other or in a race, and neighbors in the same folders. Nothing that either reports as
// moved may be missing, and neither waits for the other.
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/kit/Environment.h"
#include "tests/kit/Sanitizers.h"
#include "tests/migration/faults/Leftovers.h"
#include "tests/migration/faults/Verdict.h"

using namespace ZQFoundation;
using namespace faults;
using namespace scene;

namespace {

/// Expects that nothing of these texts is lost when both have ended, and nothing is left over.
void expectNothingLost(const Run& run, const std::set<std::string>& texts, const std::string& when,
                       const Outcome& one, const Outcome& other) {
    Words problems = problemsWithLeftovers(run.base());
    const std::set<std::string> found = visibleContents(run.base());
    for (const std::string& text : texts) {
        if (found.count(text) == 0) {
            problems.push_back("lost: '" + text.substr(0, 60) + "'");
        }
    }
    for (const Outcome* const outcome : {&one, &other}) {
        if (!outcome->ended) {
            problems.push_back(outcome->hung ? "a migration hung" : "a migration did not come to its end");
        }
    }
    addFailures(run.which().name() + ", " + when + " (codes '" + one.report + "', '" + other.report + "')",
                problems);
}

/// A whole second migration before this call of the first one.
void withSecond(const Case& which, Again second, long call) {
    const Run run(which);
    const std::set<std::string> texts = visibleContents(run.from());
    Outcome other;
    other.ended = true;
    const Outcome one = run.under({}, [&](long number) {
        if (number == call) {
            other = run.again(second);
        }
        return number < call;
    });
    expectNothingLost(run, texts, "a second one at call " + std::to_string(call), one, other);
}

void tryAllCalls(Subject subject, long usualStride) {
    const QuickRuns quick;
    const long stride = strideOf(usualStride);
    long start = 0;
    for (const Old old : {Old::missing, Old::overwritten, Old::renamedAround}) {
        for (const Again second : {Again::overwriting, Again::refusing, Again::renaming}) {
            const Case which{subject, old, false};
            atCallsOf(which, 1 + start++ % stride, stride,
                      [&](long call) { withSecond(which, second, call); });
        }
    }
}

void raceMigrations(Subject subject) {
    const kit::ScratchInMemory memory;
    for (long turn = 0; turn < wantedRaces(60) && !::testing::Test::HasFailure(); ++turn) {
        const Run run({subject, turn % 2 == 0 ? Old::missing : Old::overwritten, false});
        const std::set<std::string> texts = visibleContents(run.from());
        const auto migrate = [&] {
            return run.migrate(run.which().flagsFor(Again::overwriting));
        };
        const ReportingChild first(migrate);
        const ReportingChild second(migrate);
        expectNothingLost(run, texts, "race " + std::to_string(turn), first.outcome(), second.outcome());
    }
}

/// A neighbor of the item is moved from and to the same folders before this call; both must succeed.
void withNeighbor(const Case& which, long call) {
    const Run run(which);
    const bool isTree = which.subject == Subject::tree;
    const std::string from = run / "from/neighbor";
    if (isTree) {
        EXPECT_EQ(::mkdir(from.c_str(), 0755) + ::mkdir((from + "/inside").c_str(), 0755), 0);
    } else {
        EXPECT_EQ(::link((run / "from/beside").c_str(), from.c_str()), 0);
    }
    Outcome other;
    const Outcome one = run.under({}, [&](long number) {
        if (number == call) {
            other = runUndisturbed([&] {
                const Operation& migrate = isTree ? ofFolders : ofFiles;
                const std::string to = folderOf(run.to()) + "/neighbor";
                return std::to_string(migrate(from, to, {false, true, true, false}));
            });
        }
        return number < call;
    });
    const std::string about = which.name() + ", a neighbor at call " + std::to_string(call);
    addFailures(about, Verdict(run).after({}, one));
    addFailures(about, problemsWithLeftovers(run.base()));
    EXPECT_EQ(one.report, "0") << about;
    EXPECT_EQ(other.report, "0") << about;
}

} // namespace

TEST(MigrationsAtOnce, loseNoFile) { tryAllCalls(Subject::file, 1); }
TEST(MigrationsAtOnce, loseNoFolder) { tryAllCalls(Subject::tree, 13); }
TEST(MigrationsAtOnce, loseNothingOfABatch) { tryAllCalls(Subject::batch, 9); }

TEST(MigrationsAtOnce, loseNoFileInARace) { raceMigrations(Subject::file); }
TEST(MigrationsAtOnce, loseNoFolderInARace) { raceMigrations(Subject::tree); }
TEST(MigrationsAtOnce, loseNothingOfABatchInARace) { raceMigrations(Subject::batch); }

TEST(MigrationsAtOnce, leaveAloneWhatTheOtherWorksOn) {
    const QuickRuns quick;
    for (const Subject subject : {Subject::file, Subject::tree}) {
        for (const Old old : {Old::missing, Old::overwritten}) {
            const Case which{subject, old, false};
            const long stride = subject == Subject::file ? 1 : kit::isSanitized ? 31 : 5;
            atCallsOf(which, 1, stride, [&](long call) { withNeighbor(which, call); });
        }
    }
}
