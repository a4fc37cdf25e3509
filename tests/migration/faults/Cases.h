// SPDX-License-Identifier: MIT
// What is migrated under faults, and what must hold afterwards whatever went wrong: the source is whole or a
// complete copy is, and the code says which.
#ifndef ZQFOUNDATION_TESTS_FAULTS_CASES_H
#define ZQFOUNDATION_TESTS_FAULTS_CASES_H

#include <set>
#include <string>
#include <vector>

#include "foundation/objects/NSNumber.h"
#include "tests/migration/MigrationScene.h"
#include "tests/migration/faults/Tracing.h"

namespace faults {

using scene::Detail;
using scene::Digest;

enum class Subject { file, tree, batch };
enum class Old { missing, overwritten, renamedAround };

struct Case {
    Subject subject;
    Old old;
    bool keepOriginal;

    std::string name() const {
        const char* const subjects[] = {"file", "tree", "batch"};
        const char* const olds[] = {"create", "overwrite", "rename"};
        return std::string(subjects[static_cast<int>(subject)]) + "-" + olds[static_cast<int>(old)] +
               (keepOriginal ? "-copy" : "-move");
    }
    scene::Flags flags() const {
        return {keepOriginal, old == Old::missing, old == Old::overwritten, old == Old::renamedAround};
    }
};

inline std::vector<Case> casesOf(Subject subject) {
    std::vector<Case> cases;
    for (const Old old : {Old::missing, Old::overwritten, Old::renamedAround}) {
        cases.push_back({subject, old, false});
        cases.push_back({subject, old, true});
    }
    return cases;
}

/// The scene of one run. What is migrated is the item "from/item" (in a batch the files of a folder of that
/// name), to "to/item" or, where there is nothing yet, "to/new/item".
class Run {
public:
    explicit Run(const Case& which) : case_(which) {
        folder_.file("from/beside", "beside");
        folder_.file("to/beside", "beside");
        makeSource();
        if (case_.old != Old::missing) {
            makeOld();
        }
        source_ = digestOf(from(), Detail::times);
        old_ = digestOf(to(), Detail::times);
    }

    const std::string& base() const { return folder_.path(); }

    /// In the child: migrates, and tells the code, or name and code of every file.
    std::string migrate() const {
        const scene::Flags flags = case_.flags();
        switch (case_.subject) {
        case Subject::file:
            return std::to_string(scene::migrateFile(from(), to(), flags));
        case Subject::tree:
            return std::to_string(scene::migrateFolder(from(), to(), flags));
        case Subject::batch:
            break;
        }
        std::string report;
        for (const ZQFoundation::NSDictionaryEntry& entry :
             scene::migrateFiles("log", from(), to(), scene::DotFiles::included, flags)) {
            report += scene::bytesOf(ZQFoundation::NSString(entry.key)) + "=" +
                      std::to_string(ZQFoundation::NSNumber(entry.value).intValue()) + "\n";
        }
        return report;
    }

    Outcome under(const Fault& fault, bool records = false) const {
        return runTraced(base(), fault, records, [this] { return migrate(); });
    }

    /// What does not hold; empty when all is well.
    std::vector<std::string> judged(const Outcome& outcome) {
        expect(!outcome.hung, "it hung");
        expect(scene::contentsOf(folder_ / "from/beside") == "beside", "a file beside the source suffered");
        expect(scene::contentsOf(folder_ / "to/beside") == "beside",
               "a file beside the destination suffered");
        if (case_.subject == Subject::batch) {
            judgeBatch(outcome);
        } else {
            const std::string copy = case_.old == Old::renamedAround ? renamed(to()) : to();
            judgeItem(case_.subject == Subject::tree, from(), copy, source_,
                      outcome.ended ? outcome.report : "");
            if (case_.old == Old::renamedAround) {
                expect(digestOf(to(), Detail::times) == old_, "what stood at the destination suffered");
            }
        }
        return problems_;
    }

private:
    std::string from() const {
        return folder_ / (case_.subject == Subject::file ? "from/item.txt" : "from/item");
    }
    std::string to() const {
        const std::string name = case_.subject == Subject::file ? "item.txt" : "item";
        return folder_ / ((case_.old == Old::missing ? "to/new/" : "to/") + name);
    }

    static std::string renamed(const std::string& path) {
        const std::size_t dot = path.find_last_of('.');
        const bool hasExtension = dot != std::string::npos && dot > path.find_last_of('/');
        return hasExtension ? path.substr(0, dot) + " 1" + path.substr(dot) : path + " 1.";
    }

    void makeSource() const {
        if (case_.subject == Subject::file) {
            folder_.file("from/item.txt", std::string(5000, 'f') + "end");
            finish("from/item.txt", 0640);
        } else if (case_.subject == Subject::tree) {
            folder_.file("from/item/one.txt", "one");
            folder_.file("from/item/empty", "");
            folder_.file("from/item/sub/two.txt", std::string(3000, '2'));
            folder_.file("from/item/sub/deeper/three", "three");
            folder_.file("from/item/sub/deeper/readOnly", "read only");
            folder_.folder("from/item/nothing");
            folder_.link("sub/two.txt", "from/item/link");
            folder_.link("nosuch", "from/item/sub/dangling");
            folder_.file("from/item/other/four", "four");
            finish("from/item/sub/deeper/readOnly", 0444);
            for (const char* name : {"sub/deeper", "sub", "other", "nothing", "one.txt"}) {
                finish(std::string("from/item/") + name, 0750);
            }
            finish("from/item", 0755);
        } else {
            for (const char* const name :
                 {"a.log", "b.log", "sub/c.log", "sub/deeper/d.log", "other/e.log"}) {
                folder_.file(std::string("from/item/") + name, std::string("contents of ") + name);
                finish(std::string("from/item/") + name, 0640);
            }
            folder_.file("from/item/kept.txt", "of another extension");
        }
    }

    void makeOld() const {
        switch (case_.subject) {
        case Subject::file:
            folder_.file("to/item.txt", "old");
            break;
        case Subject::tree:
            folder_.file("to/item/old", "old");
            folder_.file("to/item/sub/two.txt", "old");
            break;
        case Subject::batch:
            for (const char* name : {"a.log", "sub/c.log"}) {
                folder_.file(std::string("to/item/") + name, "old");
            }
            folder_.folder("to/item/sub/deeper");
            folder_.folder("to/item/other");
            break;
        }
    }

    /// Permissions and a time of its own, so that a copy without them shows.
    void finish(const std::string& name, mode_t mode) const {
        ::chmod((folder_ / name).c_str(), mode);
        const timespec times[2] = {{1000000000, 1000}, {1234567890, 123456000}};
        ::utimensat(AT_FDCWD, (folder_ / name).c_str(), times, 0);
    }

    void expect(bool holds, const std::string& what) {
        if (!holds) {
            problems_.push_back(what);
        }
    }

    /// One file or tree, its code as text; an empty text when nobody was left to report one.
    void judgeItem(bool isTree, const std::string& from, const std::string& copy, const Digest& whole,
                   const std::string& code) {
        const bool sourceWhole = digestOf(from, Detail::times) == whole;
        const bool copyWhole = digestOf(copy, Detail::times) == whole;
        const bool sourceGone = !scene::stands(from);
        const std::string about = " (" + from.substr(base().size()) + ", code '" + code + "')";
        expect(sourceWhole || !case_.keepOriginal, "a copy has changed the source" + about);
        if (code.empty()) {
            expect(sourceWhole || copyWhole, "killed: neither source nor copy is whole" + about);
        } else if (code == "0") {
            expect(copyWhole, "success without a whole copy" + about);
            expect(case_.keepOriginal || sourceGone, "a move left the source" + about);
        } else if (code == "15") {
            expect(copyWhole, "no whole copy" + about);
            expect(!case_.keepOriginal, "a copy removes nothing" + about);
            expect(!sourceGone, "the source is gone" + about);
        } else {
            expect(sourceWhole, "the source suffered" + about);
            static const std::set<std::string> ofFiles{"10", "14", "20", "22", "34", "35"};
            static const std::set<std::string> ofTrees{"10", "20", "22", "36", "37"};
            expect((isTree ? ofTrees : ofFiles).count(code) == 1, "a code that no failure has" + about);
        }
    }

    void judgeBatch(const Outcome& outcome) {
        std::map<std::string, std::string> codes;
        std::string rest = outcome.report;
        while (!rest.empty()) {
            const std::size_t end = rest.find('\n');
            const std::size_t middle = rest.find('=');
            codes[rest.substr(0, middle)] = rest.substr(middle + 1, end - middle - 1);
            rest.erase(0, end + 1);
        }
        for (const char* name : {"a.log", "b.log", "sub/c.log", "sub/deeper/d.log", "other/e.log"}) {
            const std::string target = to() + "/" + name;
            const bool renames = case_.old == Old::renamedAround && old_.count(name) == 1;
            const Digest whole{{"", source_.at(name)}};
            const auto code = codes.find(name);
            if (outcome.ended && code == codes.end()) {
                // The enumeration did not come to it: it was not touched.
                expect(digestOf(from() + "/" + name, Detail::times) == whole,
                       "lost without a code: " + target);
            } else {
                judgeItem(false, from() + "/" + name, renames ? renamed(target) : target, whole,
                          outcome.ended ? code->second : "");
            }
            if (renames) {
                expect(scene::contentsOf(target) == "old",
                       "what stood at the destination suffered: " + target);
            }
            codes.erase(name);
        }
        expect(codes.empty(), "a result for what was not to be migrated");
        expect(scene::contentsOf(from() + "/kept.txt") == "of another extension", "another file suffered");
    }

    scene::MigrationFolder folder_;
    Case case_;
    Digest source_;
    Digest old_;
    std::vector<std::string> problems_;
};

} // namespace faults

#endif
