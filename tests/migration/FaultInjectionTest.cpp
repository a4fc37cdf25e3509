// SPDX-License-Identifier: MIT
// Migrations in which one system call fails, all calls fail from one on, calls transfer less than requested,
// or the process is killed before a call; and the same migration once more after that: see docs/faults.md.
#include <cerrno>
#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/kit/Sanitizers.h"
#include "tests/migration/faults/Verdict.h"

using namespace ZQFoundation;
using namespace faults;
using namespace scene;

namespace {

using Repetitions = std::vector<Again>;

/// How far it is from one tried call to the next. Adjacent calls differ little in larger things, so that each
/// error starts at another call there, and again at another one for another item at the destination. With a
/// sanitizer a run takes ten times as long.
long strideFor(const Case& which, const Fault& fault) {
    if (isEveryCallTried()) {
        return 1;
    }
    if (fault.kind == Fault::killing && !which.isFile()) {
        return kit::isSanitized ? 3 : 1; // of those that follow a change
    }
    long stride = kit::isSanitized ? 9 : 1;
    if (fault.kind == Fault::failing) {
        stride *= which.isFile() ? 1 : which.keepOriginal ? 16 : 8; // a copy is a move without its last calls
        stride *= fault.lasting ? 2 : 1;
    }
    return stride;
}

/// The calls before which something on disk is not as it was before the previous call. A process that is
/// killed before any other call leaves what it leaves at the last of these.
std::vector<long> callsAfterChanges(const Case& which) {
    const Run run(which);
    Digest last = digestOf(run.base(), Detail::everything);
    std::vector<long> calls;
    run.under({}, [&](long call) {
        Digest now = digestOf(run.base(), Detail::everything);
        if (now != last) {
            calls.push_back(call);
        }
        last = std::move(now);
        return true;
    });
    return calls;
}

/// In which ways the call is made once more after the run with this number, each after a run of its own.
/// Where nothing is removed, nothing can get lost by the second call that the first one has not lost.
std::vector<Repetitions> repetitionsAfter(const Case& which, const Fault& fault, long number) {
    const Repetitions all[] = {{Again::overwriting},
                               {Again::refusing, Again::overwriting},
                               {Again::renaming, Again::overwriting},
                               {Again::overwriting, Again::renaming}};
    if (isEveryCallTried()) {
        return {all[0], all[1], all[2]};
    }
    if (fault.kind == Fault::killing && !which.keepOriginal) {
        return {all[0], all[1], all[2]};
    }
    return {all[number % 3]};
}

/// Of those that are tried; not every C library knows the names.
const char* nameOfError(int error) {
    return error == EIO ? "EIO" : error == ENOSPC ? "ENOSPC" : error == EACCES ? "EACCES" : "EINTR";
}

std::string shown(const Case& which, const Fault& fault, const Repetitions& repetitions) {
    static const char* const kinds[] = {"none", "", "kill", "one", "half"};
    static const char* const agains[] = {"overwrite", "refuse", "rename"};
    const std::string what =
        fault.kind == Fault::failing ? nameOfError(fault.error) : kinds[static_cast<int>(fault.kind)];
    std::string text = "fault-runner " + which.name() + " " + std::to_string(fault.call) + " " + what +
                       (fault.lasting ? " lasting" : "");
    for (const Again again : repetitions) {
        text += std::string(" ") + agains[static_cast<int>(again)];
    }
    return text;
}

/// What is repeated with a case to find how many calls it makes.
Outcome undisturbed(const Case& which) {
    const Run run(which);
    const Outcome outcome = run.under({});
    if (outcome.traced) {
        addFailures(which.name() + " without a fault", Verdict(run).after({}, outcome));
    }
    return outcome;
}

/// One run after the other with the fault at every call; how many were made.
class Runs {
public:
    /// False when this machine does not permit it.
    bool each(const Case& which, Fault fault, long start) {
        const Outcome plain = undisturbed(which);
        if (!plain.traced) {
            return false;
        }
        EXPECT_GT(plain.calls, 10) << "hardly a call was seen";
        EXPECT_GT(plain.transfers, 0) << "nothing was read or written";
        // A fault can bring more calls, ways out that are not taken otherwise. The last one of them was
        // reached when a run ends without having met its fault.
        const long stride = strideFor(which, fault);
        failures_ = 0;
        if (fault.kind == Fault::killing && !which.isFile() && !isEveryCallTried()) {
            const std::vector<long> calls = callsAfterChanges(which);
            EXPECT_GT(calls.size(), 3U) << "hardly anything was changed";
            for (std::size_t next = 0; next < calls.size() && failures_ < enough;
                 next += static_cast<std::size_t>(stride)) {
                fault.call = calls[next];
                EXPECT_TRUE(all(which, fault)) << "the call was not reached";
            }
            return true;
        }
        fault.call = 1 + start % stride;
        while (all(which, fault) && failures_ < enough) {
            fault.call += stride;
        }
        EXPECT_TRUE(failures_ >= enough ||
                    fault.call >= (fault.isShortening() ? plain.transfers : plain.calls) - stride)
            << "not every call was tried";
        return true;
    }

    long count() const { return count_; }

private:
    bool all(const Case& which, const Fault& fault) {
        bool isMet = false;
        for (const Repetitions& repetitions : repetitionsAfter(which, fault, fault.call)) {
            isMet = once(which, fault, repetitions);
        }
        return isMet;
    }

    bool once(const Case& which, const Fault& fault, const Repetitions& repetitions) {
        ++count_;
        const Run run(which);
        const Outcome outcome = run.under(fault);
        report(shown(which, fault, {}), Verdict(run).after(fault, outcome));
        for (const Again again : repetitions) {
            const Outcome second = run.again(again);
            report(shown(which, fault, repetitions), Verdict(run).afterAgain(again, second));
        }
        return outcome.met(fault);
    }

    void report(const std::string& what, const Words& problems) {
        failures_ += static_cast<long>(problems.size());
        addFailures(what, problems);
    }

    static constexpr long enough = 20; ///< of what is wrong with one case, to be read

    long count_ = 0;
    long failures_ = 0;
};

void runAll(const std::vector<Subject>& subjects, const std::vector<Fault>& kinds) {
    const QuickRuns quick;
    Runs runs;
    for (const Subject subject : subjects) {
        for (const Case& which : casesOf(subject)) {
            auto start = static_cast<long>(which.old) * static_cast<long>(kinds.size());
            for (const Fault& kind : kinds) {
                if (!runs.each(which, kind, start++)) {
                    GTEST_SKIP() << notTraced;
                }
            }
        }
    }
    ::testing::Test::RecordProperty("runs", std::to_string(runs.count()));
    std::printf("%ld runs\n", runs.count());
}

std::vector<Fault> allErrors(bool lasting) {
    std::vector<Fault> faults;
    for (const int error : {EIO, ENOSPC, EACCES, EINTR}) {
        faults.push_back({Fault::failing, error, 1, lasting});
    }
    return faults;
}

const std::vector<Fault> killing{{Fault::killing, 0, 1, false}};
const std::vector<Fault> shorteningOne{{Fault::shorteningToOne, 0, 1, false},
                                       {Fault::shorteningToHalf, 0, 1, false}};

/// Every transfer from the first on: one run is enough, the others would only begin later.
void runShortened(const std::vector<Subject>& subjects) {
    const QuickRuns quick;
    for (const Subject subject : subjects) {
        for (const Case& which : casesOf(subject)) {
            for (const Fault::Kind kind : {Fault::shorteningToOne, Fault::shorteningToHalf}) {
                const Run run(which);
                const Fault fault{kind, 0, 1, true};
                const Outcome outcome = run.under(fault);
                if (!outcome.traced) {
                    GTEST_SKIP() << notTraced;
                }
                addFailures(shown(which, fault, {}), Verdict(run).after(fault, outcome));
            }
        }
    }
}

} // namespace

TEST(FaultInjection, losesNoFileWhenACallFails) { runAll({Subject::file}, allErrors(false)); }
TEST(FaultInjection, losesNoFileWhenAllCallsFailFromOneOn) { runAll({Subject::file}, allErrors(true)); }
TEST(FaultInjection, losesNoFileWhenItIsKilled) { runAll({Subject::file}, killing); }

TEST(FaultInjection, losesNoFolderWhenACallFails) { runAll({Subject::tree}, allErrors(false)); }
TEST(FaultInjection, losesNoFolderWhenAllCallsFailFromOneOn) { runAll({Subject::tree}, allErrors(true)); }
TEST(FaultInjection, losesNoFolderWhenItIsKilled) { runAll({Subject::tree}, killing); }

TEST(FaultInjection, losesNothingOfABatchWhenACallFails) { runAll({Subject::batch}, allErrors(false)); }
TEST(FaultInjection, losesNothingOfABatchWhenAllCallsFailFromOneOn) {
    runAll({Subject::batch}, allErrors(true));
}
TEST(FaultInjection, losesNothingOfABatchWhenItIsKilled) { runAll({Subject::batch}, killing); }

TEST(FaultInjection, takesNoShortTransferForTheEnd) {
    runAll({Subject::file, Subject::largeFile, Subject::tree, Subject::batch}, shorteningOne);
}
TEST(FaultInjection, takesNoShortTransferForTheEndWhereAllAreShort) {
    runShortened({Subject::file, Subject::largeFile, Subject::tree, Subject::batch});
}
