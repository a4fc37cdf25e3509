// SPDX-License-Identifier: MIT
// Migrations of which any one system call fails, all from one on fail, or one is the last: see
// docs/faults.md.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/migration/faults/Cases.h"

using faults::Case;
using faults::Fault;
using faults::Outcome;
using faults::Subject;

namespace {

/// How far it is from one tried call to the next. With a sanitizer a run takes ten times as long. Where all
/// calls fail from one on, neighbours differ little in larger things; the errors start at different calls.
long strideOf(Subject subject, bool lasting) {
    return (scene::forksTakeTurns ? 9 : 1) * (lasting && subject != Subject::file ? 3 : 1);
}

/// A copy makes the calls of a move without the last ones: one error is enough for the larger ones.
bool isWorthTrying(const Case& which, const Fault& fault) {
    return which.subject == Subject::file || !which.keepOriginal || fault.kind == Fault::killing ||
           fault.error == EIO;
}

/// What is repeated with a case to find how many calls it makes.
Outcome undisturbed(const Case& which) {
    faults::Run run(which);
    const Outcome outcome = run.under({});
    for (const std::string& problem : run.judged(outcome)) {
        ADD_FAILURE() << which.name() << " without a fault: " << problem;
    }
    return outcome;
}

std::string shown(const Case& which, const Fault& fault) {
    const std::string what = fault.kind == Fault::killing ? "kill" : ::strerrorname_np(fault.error);
    return "fault-runner " + which.name() + " " + std::to_string(fault.call) + " " + what +
           (fault.lasting ? " lasting" : "");
}

/// One run after the other with the fault at every call; how many were made.
class Runs {
public:
    explicit Runs(Subject subject) : cases_(faults::casesOf(subject)) {}

    /// False when this machine does not permit it.
    bool each(Fault fault, long start) {
        for (const Case& which : cases_) {
            if (!isWorthTrying(which, fault)) {
                continue;
            }
            const Outcome plain = undisturbed(which);
            if (!plain.traced) {
                return false;
            }
            EXPECT_GT(plain.calls, 10) << "hardly a call was seen";
            // A fault can bring more calls, ways out that are not taken otherwise. The last one of them has
            // been passed when a run ends without having met its fault.
            const long stride = strideOf(which.subject, fault.lasting);
            fault.call = 1 + start % stride;
            while (once(which, fault)) {
                fault.call += stride;
            }
            EXPECT_GE(fault.call, plain.calls - stride);
        }
        return true;
    }

    long count() const { return count_; }

private:
    bool once(const Case& which, const Fault& fault) {
        ++count_;
        faults::Run run(which);
        const Outcome outcome = run.under(fault);
        for (const std::string& problem : run.judged(outcome)) {
            ADD_FAILURE() << shown(which, fault) << ": " << problem;
        }
        return outcome.calls >= fault.call && !::testing::Test::HasFatalFailure();
    }

    std::vector<Case> cases_;
    long count_ = 0;
};

void runAll(Subject subject, Fault::Kind kind, const std::vector<int>& errors, bool lasting) {
    const scene::ScenesInMemory memory;
    const faults::OneProcessor processor;
    Runs runs(subject);
    long start = 0;
    for (const int error : errors) {
        if (!runs.each({kind, error, 1, lasting}, start++)) {
            GTEST_SKIP() << "this machine does not permit one process to trace another";
        }
    }
    ::testing::Test::RecordProperty("runs", std::to_string(runs.count()));
    std::printf("%ld runs\n", runs.count());
}

const std::vector<int> allErrors{EIO, ENOSPC, EACCES, EINTR};

} // namespace

TEST(FaultInjection, losesNoFileWhenACallFails) { runAll(Subject::file, Fault::failing, allErrors, false); }

TEST(FaultInjection, losesNoFileWhenAllCallsFailFromOneOn) {
    runAll(Subject::file, Fault::failing, allErrors, true);
}

TEST(FaultInjection, losesNoFileWhenItIsKilled) { runAll(Subject::file, Fault::killing, {0}, false); }

TEST(FaultInjection, losesNoFolderWhenACallFails) { runAll(Subject::tree, Fault::failing, allErrors, false); }

TEST(FaultInjection, losesNoFolderWhenAllCallsFailFromOneOn) {
    runAll(Subject::tree, Fault::failing, allErrors, true);
}

TEST(FaultInjection, losesNoFolderWhenItIsKilled) { runAll(Subject::tree, Fault::killing, {0}, false); }

TEST(FaultInjection, losesNothingOfABatchWhenACallFails) {
    runAll(Subject::batch, Fault::failing, allErrors, false);
}

TEST(FaultInjection, losesNothingOfABatchWhenAllCallsFailFromOneOn) {
    runAll(Subject::batch, Fault::failing, allErrors, true);
}

TEST(FaultInjection, losesNothingOfABatchWhenItIsKilled) {
    runAll(Subject::batch, Fault::killing, {0}, false);
}
