// SPDX-License-Identifier: MIT
// Two processes that migrate at the same time: the same source to the same destination, one before every
// single call of the other or in a race, and neighbors in the same folders. Nothing that either reports as
// moved may be missing, and neither waits for the other.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/migration/faults/Leftovers.h"
#include "tests/migration/faults/Verdict.h"

using faults::Again;
using faults::Case;
using faults::Old;
using faults::Outcome;
using faults::Run;
using faults::Subject;

namespace {

/// What does not hold after both have ended.
scene::Words judged(const Run& run, const std::set<std::string>& texts, const Outcome& one,
                    const Outcome& other) {
    scene::Words problems;
    const std::set<std::string> found = faults::visibleContents(run.base());
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
    for (const std::string& name : faults::leftoversBelow(run.base())) {
        problems.push_back("left under a hidden name: " + name);
    }
    return problems;
}

void report(const Case& which, const std::string& when, const Outcome& one, const Outcome& other,
            const scene::Words& problems) {
    for (const std::string& problem : problems) {
        ADD_FAILURE() << which.name() << ", " << when << " (codes '" << one.report << "', '" << other.report
                      << "'): " << problem;
    }
}

/// A whole second migration before this call of the first one.
void withSecond(const Case& which, Again second, long call) {
    const Run run(which);
    const std::set<std::string> texts = faults::visibleContents(run.from());
    Outcome other;
    other.ended = true;
    const Outcome one = run.under({}, [&](long number) {
        if (number == call) {
            other = run.again(second);
        }
    });
    report(which, "a second one at call " + std::to_string(call), one, other, judged(run, texts, one, other));
}

void tryAllCalls(Subject subject, long usualStride) {
    const scene::ScenesInMemory memory;
    const faults::OneProcessor processor;
    const long stride = faults::isEveryCallTried() ? 1 : usualStride * (scene::forksTakeTurns ? 5 : 1);
    long start = 0;
    for (const Old old : {Old::missing, Old::overwritten, Old::renamedAround}) {
        for (const Again second : {Again::overwriting, Again::refusing, Again::renaming}) {
            const Case which{subject, old, false};
            if (!faults::atCallsOf(which, 1 + start++ % stride, stride,
                                   [&](long call) { withSecond(which, second, call); })) {
                GTEST_SKIP() << faults::notTraced;
            }
        }
    }
}

void race(Subject subject) {
    const scene::ScenesInMemory memory;
    for (long turn = 0; turn < faults::wantedRaces(60) && !::testing::Test::HasFailure(); ++turn) {
        const Old old = turn % 2 == 0 ? Old::missing : Old::overwritten;
        const Run run({subject, old, false});
        const std::set<std::string> texts = faults::visibleContents(run.from());
        const auto migrate = [&] {
            return run.migrate(run.which().flagsFor(Again::overwriting));
        };
        const faults::ReportingChild first(
            60, [] { return true; }, migrate);
        const faults::ReportingChild second(
            60, [] { return true; }, migrate);
        const Outcome one = first.outcome();
        const Outcome other = second.outcome();
        report(run.which(), "race " + std::to_string(turn), one, other, judged(run, texts, one, other));
    }
}

/// The code of a move of a neighbor of the item, from and to the same folders.
std::string moveNeighbour(const Run& run, Subject subject) {
    const std::string from = run / "from/neighbour";
    const std::string to = faults::folderOf(run.to()) + "/neighbour";
    const scene::Flags flags{false, true, true, false};
    return std::to_string(subject == Subject::tree ? scene::migrateFolder(from, to, flags)
                                                   : scene::migrateFile(from, to, flags));
}

/// A neighbor is migrated before this call; both must succeed.
void withNeighbour(const Case& which, long call) {
    const Run run(which);
    if (which.subject == Subject::tree) {
        ::mkdir((run / "from/neighbour").c_str(), 0755);
        ::mkdir((run / "from/neighbour/inside").c_str(), 0755);
    } else {
        EXPECT_EQ(::link((run / "from/beside").c_str(), (run / "from/neighbour").c_str()), 0);
    }
    Outcome other;
    const Outcome one = run.under({}, [&](long number) {
        if (number == call) {
            other = faults::runUndisturbed([&] { return moveNeighbour(run, which.subject); });
        }
    });
    scene::Words problems = faults::Verdict(run).after({}, one);
    if (one.report != "0") {
        problems.push_back("the first one did not succeed");
    }
    if (other.report != "0") {
        problems.push_back("the neighbour was not moved");
    }
    for (const std::string& name : faults::leftoversBelow(run.base())) {
        problems.push_back("left under a hidden name: " + name);
    }
    report(which, "a neighbour at call " + std::to_string(call), one, other, problems);
}

} // namespace

TEST(MigrationsAtOnce, loseNoFile) { tryAllCalls(Subject::file, 1); }
TEST(MigrationsAtOnce, loseNoFolder) { tryAllCalls(Subject::tree, 13); }
TEST(MigrationsAtOnce, loseNothingOfABatch) { tryAllCalls(Subject::batch, 9); }

TEST(MigrationsAtOnce, loseNoFileInARace) { race(Subject::file); }
TEST(MigrationsAtOnce, loseNoFolderInARace) { race(Subject::tree); }
TEST(MigrationsAtOnce, loseNothingOfABatchInARace) { race(Subject::batch); }

TEST(MigrationsAtOnce, leaveAloneWhatTheOtherWorksOn) {
    const scene::ScenesInMemory memory;
    const faults::OneProcessor processor;
    for (const Subject subject : {Subject::file, Subject::tree}) {
        for (const Old old : {Old::missing, Old::overwritten}) {
            const Case which{subject, old, false};
            const long stride = subject == Subject::file ? 1 : scene::forksTakeTurns ? 31 : 5;
            if (!faults::atCallsOf(which, 1, stride, [&](long call) { withNeighbour(which, call); })) {
                GTEST_SKIP() << faults::notTraced;
            }
        }
    }
}
