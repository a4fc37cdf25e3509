// SPDX-License-Identifier: MIT
// Repeats one run of the fault injection by hand and shows every call: see docs/faults.md.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "tests/kit/Environment.h"
#include "tests/migration/faults/Verdict.h"

using namespace ZQFoundation;

namespace {

int usage() {
    std::puts(
        "Usage: fault-runner CASE [CALL EIO|ENOSPC|EACCES|EINTR|kill|one|half [lasting] "
        "[overwrite|refuse|rename]...]\n"
        "Migrates, with that call (from 1; of those that transfer bytes, with \"one\" or \"half\") failing,\n"
        "being the last or transferring one byte or half of what it would, then migrates once more in each\n"
        "way that is named, and shows the calls and what came out. The cases:");
    for (const faults::Case& which : faults::allCases()) {
        std::printf("  %s\n", which.name().c_str());
    }
    return 2;
}

struct Order {
    faults::Fault fault;
    std::vector<faults::Again> again;
};

/// The words after those of the case: the call, the kind of fault, and what follows. False when they are
/// wrong.
bool readOrder(const std::vector<std::string>& words, Order& order) {
    static const std::map<std::string, faults::Fault> kinds{
        {"kill", {faults::Fault::killing}},           {"one", {faults::Fault::shorteningToOne}},
        {"half", {faults::Fault::shorteningToHalf}},  {"EIO", {faults::Fault::failing, EIO}},
        {"ENOSPC", {faults::Fault::failing, ENOSPC}}, {"EACCES", {faults::Fault::failing, EACCES}},
        {"EINTR", {faults::Fault::failing, EINTR}}};
    static const std::map<std::string, faults::Again> agains{{"overwrite", faults::Again::overwriting},
                                                             {"refuse", faults::Again::refusing},
                                                             {"rename", faults::Again::renaming}};
    if (words.size() < 4 || kinds.count(words[3]) == 0) {
        return words.size() == 2;
    }
    order.fault = kinds.at(words[3]);
    order.fault.call = std::strtol(words[2].c_str(), nullptr, 10);
    for (std::size_t index = 4; index < words.size(); ++index) {
        if (words[index] == "lasting") {
            order.fault.lasting = true;
        } else if (agains.count(words[index]) == 1) {
            order.again.push_back(agains.at(words[index]));
        } else {
            return false;
        }
    }
    return order.fault.call > 0;
}

/// Prints the result of one migration; 1 when a promise is broken.
int show(const faults::Run& run, const faults::Outcome& outcome, const scene::Words& problems) {
    std::printf("%s\n%s\n", outcome.ended ? "ended, reporting:" : "did not end", outcome.report.c_str());
    std::printf("what is there:\n%s", scene::shownDigest(scene::digestOf(run.base())).c_str());
    for (const std::string& problem : problems) {
        std::printf("WRONG: %s\n", problem.c_str());
    }
    return problems.empty() ? 0 : 1;
}

int run(const faults::Case& which, const Order& order) {
    const kit::ScratchInMemory memory;
    const faults::Run run(which);
    const faults::Outcome outcome = run.under(order.fault, {}, true);
    if (!outcome.traced) {
        std::puts("This machine does not permit one process to trace another.");
        return 1;
    }
    long number = 0;
    for (const std::string& name : outcome.names) {
        ++number;
        const bool isIt = number == order.fault.call && !order.fault.isShortening();
        std::printf("%4ld%s %s\n", number, isIt ? " *" : "  ", name.c_str());
    }
    int answer = show(run, outcome, faults::Verdict(run).after(order.fault, outcome));
    for (const faults::Again again : order.again) {
        std::puts("once more:");
        const faults::Outcome second = run.again(again);
        answer |= show(run, second, faults::Verdict(run).afterAgain(again, second));
    }
    return answer;
}

} // namespace

int main(int count, char** arguments) {
    const std::vector<std::string> words(arguments, arguments + count);
    Order order;
    if (count < 2 || !readOrder(words, order)) {
        return usage();
    }
    for (const faults::Case& which : faults::allCases()) {
        if (which.name() == words[1]) {
            return run(which, order);
        }
    }
    return usage();
}
