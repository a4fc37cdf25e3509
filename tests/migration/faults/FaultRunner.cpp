// SPDX-License-Identifier: MIT
// Repeats one run of the fault injection by hand and shows every call: see docs/faults.md.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "tests/migration/faults/Cases.h"

namespace {

int usage() {
    std::puts(
        "Usage: fault-runner CASE [CALL EIO|ENOSPC|EACCES|EINTR|kill [lasting]]\n"
        "Migrates, with that call (from 1) failing or being the last, and shows the calls and what came "
        "out.\nThe cases:");
    for (const faults::Subject subject :
         {faults::Subject::file, faults::Subject::tree, faults::Subject::batch}) {
        for (const faults::Case& which : faults::casesOf(subject)) {
            std::printf("  %s\n", which.name().c_str());
        }
    }
    return 2;
}

bool readFault(int count, char** words, faults::Fault& fault) {
    if (count < 4) {
        return count == 2;
    }
    fault.call = std::strtol(words[2], nullptr, 10);
    fault.lasting = count > 4 && std::strcmp(words[4], "lasting") == 0;
    fault.kind = faults::Fault::failing;
    const std::string name = words[3];
    if (name == "kill") {
        fault.kind = faults::Fault::killing;
    } else if (name == "EIO") {
        fault.error = EIO;
    } else if (name == "ENOSPC") {
        fault.error = ENOSPC;
    } else if (name == "EACCES") {
        fault.error = EACCES;
    } else if (name == "EINTR") {
        fault.error = EINTR;
    }
    return fault.call > 0 && (fault.kind == faults::Fault::killing || fault.error != 0);
}

int run(const faults::Case& which, const faults::Fault& fault) {
    const scene::ScenesInMemory memory;
    faults::Run one(which);
    const faults::Outcome outcome = one.under(fault, true);
    if (!outcome.traced) {
        std::puts("This machine does not permit one process to trace another.");
        return 1;
    }
    long number = 0;
    for (const std::string& name : outcome.names) {
        ++number;
        std::printf("%4ld%s %s\n", number, number == fault.call ? " *" : "  ", name.c_str());
    }
    std::printf("%s\n%s\n", outcome.ended ? "ended, reporting:" : "did not end", outcome.report.c_str());
    std::printf("what stands there:\n%s", scene::shownDigest(scene::digestOf(one.base())).c_str());
    int answer = 0;
    for (const std::string& problem : one.judged(outcome)) {
        std::printf("WRONG: %s\n", problem.c_str());
        answer = 1;
    }
    return answer;
}

} // namespace

int main(int count, char** words) {
    faults::Fault fault;
    if (count < 2 || !readFault(count, words, fault)) {
        return usage();
    }
    for (const faults::Subject subject :
         {faults::Subject::file, faults::Subject::tree, faults::Subject::batch}) {
        for (const faults::Case& which : faults::casesOf(subject)) {
            if (which.name() == words[1]) {
                return run(which, fault);
            }
        }
    }
    return usage();
}
