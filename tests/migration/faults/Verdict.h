// SPDX-License-Identifier: MIT
// What must hold after a run under faults, and after the same call once more: no file is lost, what has the
// final name is complete, and the code says what happened.
#ifndef ZQFOUNDATION_TESTS_FAULTS_VERDICT_H
#define ZQFOUNDATION_TESTS_FAULTS_VERDICT_H

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "tests/kit/Items.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/migration/faults/Cases.h"
#include "tests/migration/faults/Leftovers.h"

namespace ZQFoundation::faults {

/// One item of a case: a file or tree, or one file of a batch.
struct Item {
    std::string from;
    std::string to;
    Digest whole; ///< what is migrated
    Digest old;   ///< what was at the destination; empty when nothing was
};

/// The path with a number, as a copy gets it whose name is taken.
inline std::string numbered(const std::string& path, int number) {
    const std::size_t dot = path.find_last_of('.');
    const bool hasExtension = dot != std::string::npos && dot > path.find_last_of('/');
    const std::string text = " " + std::to_string(number);
    return hasExtension ? path.substr(0, dot) + text + path.substr(dot) : path + text + ".";
}

class Verdict {
public:
    explicit Verdict(const Run& run) : run_(run), case_(run.which()) {}

    /// What does not hold after a run under the fault; empty when all is well.
    scene::Words after(const Fault& fault, const Outcome& outcome) {
        const std::map<std::string, std::string> codes = judgedCodes(outcome);
        for (const auto& [name, item] : items()) {
            const auto code = codes.find(name);
            if (outcome.ended && code == codes.end()) {
                // The enumeration did not reach it: it was not touched.
                expect(now(item.from) == item.whole, "lost without a code: " + item.from);
            } else {
                judge(item, fault, outcome.ended ? code->second : "");
            }
        }
        return problems_;
    }

    /// What does not hold after the call was made once more.
    scene::Words afterAgain(Again again, const Outcome& outcome) {
        expect(outcome.ended, "the second call did not come to its end");
        const std::map<std::string, std::string> codes = judgedCodes(outcome);
        for (const auto& [name, item] : items()) {
            const auto code = codes.find(name);
            judgeAgain(item, again, code == codes.end() ? "none" : code->second);
        }
        for (const std::string& name : leftoversBelow(run_.base())) {
            expect(!concernedFolder(run_ / name, codes), "left under a hidden name: " + name);
        }
        return problems_;
    }

private:
    /// Whether the second call had to do with the folder of this leftover: a batch that moves nothing into a
    /// folder does not look into it.
    bool concernedFolder(const std::string& leftover, const std::map<std::string, std::string>& codes) const {
        const std::string folder = folderOf(leftover);
        if (case_.subject != Subject::batch || !begins(folder, run_.to().c_str())) {
            return true;
        }
        return std::any_of(codes.begin(), codes.end(), [&](const auto& code) {
            return folderOf(run_.to() + "/" + code.first) == folder;
        });
    }

    static Digest now(const std::string& path) { return digestOf(path, Detail::times); }

    void expect(bool holds, const std::string& what) {
        if (!holds) {
            problems_.push_back(what);
        }
    }

    /// By the name in the report; a single item has none.
    std::map<std::string, Item> items() const {
        if (case_.subject != Subject::batch) {
            return {{"", {run_.from(), run_.to(), run_.source(), run_.old()}}};
        }
        std::map<std::string, Item> files;
        for (const char* const name : batchNames) {
            const auto old = run_.old().find(name);
            files[name] = {run_.from() + "/" + name,
                           run_.to() + "/" + name,
                           {{"", run_.source().at(name)}},
                           old == run_.old().end() ? Digest{} : Digest{{"", old->second}}};
        }
        return files;
    }

    /// The codes by name, after the checks of every report and of all that is not migrated.
    std::map<std::string, std::string> judgedCodes(const Outcome& outcome) {
        expect(!outcome.hung, "it hung");
        expect(kit::contentsOf(run_ / "from/beside") == "beside", "a file beside the source suffered");
        expect(kit::contentsOf(run_ / "to/beside") == "beside", "a file beside the destination suffered");
        if (case_.subject != Subject::batch) {
            return {{"", outcome.report}};
        }
        expect(kit::contentsOf(run_.from() + "/kept.txt") == "of another extension", "another file suffered");
        std::map<std::string, std::string> codes;
        std::string rest = outcome.report;
        while (!rest.empty()) {
            const std::size_t end = rest.find('\n');
            const std::size_t middle = rest.find('=');
            const std::string name = rest.substr(0, middle);
            expect(run_.source().count(name) == 1, "a result for what is not there: " + name);
            codes[name] = rest.substr(middle + 1, end - middle - 1);
            rest.erase(0, end + 1);
        }
        return codes;
    }

    /// An empty code: the process was killed.
    void judge(const Item& item, const Fault& fault, const std::string& code) {
        const std::string about = " (" + lastComponent(item.from) + ", code '" + code + "')";
        const bool isRenamed = case_.old == Old::renamedAround && !item.old.empty();
        const Digest copy = now(isRenamed ? numbered(item.to, 1) : item.to);
        const bool sourceWhole = now(item.from) == item.whole;
        const bool copyWhole = copy == item.whole;
        expect(sourceWhole || !case_.keepOriginal, "a copy has changed the source" + about);
        expect(copy.empty() || copyWhole || (!isRenamed && copy == item.old),
               "what bears the final name is not complete" + about);
        if (isRenamed) {
            expect(now(item.to) == item.old, "what was at the destination suffered" + about);
        }
        if (code.empty()) {
            expect(sourceWhole || copyWhole, "killed: neither source nor copy is whole" + about);
        } else if (code == "0") {
            expect(copyWhole, "success without a whole copy" + about);
            expect(case_.keepOriginal || !kit::exists(item.from), "a move left the source" + about);
        } else if (code == "15") {
            expect(copyWhole, "no whole copy" + about);
            expect(!case_.keepOriginal, "a copy removes nothing" + about);
            // When every call fails, so does the one that puts the source back.
            expect(sourceWhole || (fault.lasting && isAside(item)), "the source is not whole" + about);
        } else {
            judgeFailure(item, fault, code, about);
            expect(sourceWhole, "the source suffered" + about);
        }
    }

    void judgeFailure(const Item& item, const Fault& fault, const std::string& code,
                      const std::string& about) {
        static const std::set<std::string> ofFiles{"10", "14", "20", "22", "34", "35"};
        static const std::set<std::string> ofTrees{"10", "20", "22", "36", "37"};
        const bool isTree = case_.subject == Subject::tree;
        expect((isTree ? ofTrees : ofFiles).count(code) == 1, "a code that no failure has" + about);
        if ((code == "35" || code == "37") && !fault.lasting) {
            const Digest there = now(item.to);
            expect(there.empty() || there == item.old,
                   "a failed copy left something at the destination" + about);
            for (const std::string& name : leftoversBelow(run_.base())) {
                expect(!begins(lastComponent(name), unfinished), "a failed copy left " + name + about);
            }
        }
    }

    /// Whether the whole source is beside its name, waiting to be put back.
    static bool isAside(const Item& item) {
        for (const std::string& name : leftoversBelow(folderOf(item.from))) {
            if (begins(lastComponent(name), setAside) &&
                now(folderOf(item.from) + "/" + name) == item.whole) {
                return true;
            }
        }
        return false;
    }

    void judgeAgain(const Item& item, Again again, const std::string& code) {
        static const std::set<std::string> done{"0", "10", "none"};
        static const std::set<std::string> refused{"30", "31"};
        const std::string about = " (" + lastComponent(item.from) + ", second call's code '" + code + "')";
        expect(done.count(code) == 1 || (again == Again::refusing && refused.count(code) == 1),
               "the second call failed" + about);
        const bool sourceWhole = now(item.from) == item.whole;
        bool copyWhole = false;
        for (const std::string& path : {item.to, numbered(item.to, 1), numbered(item.to, 2)}) {
            const Digest copy = now(path);
            copyWhole = copyWhole || copy == item.whole;
            expect(copy.empty() || copy == item.whole || copy == item.old,
                   "after the second call something incomplete bears a final name" + about);
        }
        expect(sourceWhole || (copyWhole && !case_.keepOriginal), "lost by the second call" + about);
        expect(code != "0" || copyWhole, "the second call reports a copy that is not there" + about);
        if (again != Again::overwriting && case_.old == Old::renamedAround) {
            expect(item.old.empty() || now(item.to) == item.old,
                   "the second call replaced what was at the destination" + about);
        }
    }

    const Run& run_;
    const Case& case_;
    scene::Words problems_;
};

} // namespace ZQFoundation::faults

#endif
