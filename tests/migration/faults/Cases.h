// SPDX-License-Identifier: MIT
// What is migrated under faults: a file, a tree or a batch, to a new place, or over or beside an older item.
#ifndef ZQFOUNDATION_TESTS_FAULTS_CASES_H
#define ZQFOUNDATION_TESTS_FAULTS_CASES_H

#include <cstdlib>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/objects/NSNumber.h"
#include "tests/kit/Items.h"
#include "tests/kit/Sanitizers.h"
#include "tests/migration/MigrationScene.h"
#include "tests/migration/faults/Tracing.h"

namespace ZQFoundation::faults {

using scene::Detail;
using scene::Digest;

enum class Subject { file, largeFile, tree, batch };
enum class Old { missing, overwritten, renamedAround };

/// How the same call is made once more after a run in which something went wrong.
enum class Again { overwriting, refusing, renaming };

struct Case {
    Subject subject;
    Old old;
    bool keepOriginal;

    std::string name() const {
        const char* const subjects[] = {"file", "large", "tree", "batch"};
        const char* const olds[] = {"create", "overwrite", "rename"};
        return std::string(subjects[static_cast<int>(subject)]) + "-" + olds[static_cast<int>(old)] +
               (keepOriginal ? "-copy" : "-move");
    }
    scene::Flags flags() const {
        return {keepOriginal, old == Old::missing, old == Old::overwritten, old == Old::renamedAround};
    }
    scene::Flags flagsFor(Again again) const {
        return {keepOriginal, true, again == Again::overwriting, again == Again::renaming};
    }
    bool isFile() const { return subject == Subject::file || subject == Subject::largeFile; }
};

inline std::vector<Case> casesOf(Subject subject) {
    std::vector<Case> cases;
    for (const Old old : {Old::missing, Old::overwritten, Old::renamedAround}) {
        cases.push_back({subject, old, false});
        cases.push_back({subject, old, true});
    }
    return cases;
}

inline std::vector<Case> allCases() {
    std::vector<Case> cases;
    for (const Subject subject : {Subject::file, Subject::largeFile, Subject::tree, Subject::batch}) {
        for (const Case& which : casesOf(subject)) {
            cases.push_back(which);
        }
    }
    return cases;
}

/// The files that a batch migrates.
inline constexpr const char* batchNames[] = {"a.log", "b.log", "sub/c.log", "sub/deeper/d.log",
                                             "other/e.log"};

/// The scene of one run. What is migrated is the item "from/item" (in a batch the files of a folder of that
/// name), to "to/item" or, where there is nothing yet, "to/new/item".
class Run {
public:
    explicit Run(const Case& which) : case_(which) {
        folder_.write("from/beside", "beside");
        folder_.write("to/beside", "beside");
        makeSource();
        if (case_.old != Old::missing) {
            makeOld();
        }
        source_ = digestOf(from(), Detail::times);
        old_ = digestOf(to(), Detail::times);
    }

    const Case& which() const { return case_; }
    const std::string& base() const { return folder_.path(); }
    std::string operator/(const std::string& name) const { return folder_ / name; }
    std::string from() const { return folder_ / (case_.isFile() ? "from/item.txt" : "from/item"); }
    std::string to() const {
        const std::string name = case_.isFile() ? "item.txt" : "item";
        return folder_ / ((case_.old == Old::missing ? "to/new/" : "to/") + name);
    }

    /// What there was before: the source, and the item at the destination.
    const Digest& source() const { return source_; }
    const Digest& old() const { return old_; }

    /// Migrates, and returns the code as text, or name and code of every file.
    std::string migrate(const scene::Flags& flags) const {
        switch (case_.subject) {
        case Subject::file:
        case Subject::largeFile:
            return std::to_string(scene::migrateFile(from(), to(), flags));
        case Subject::tree:
            return std::to_string(scene::migrateFolder(from(), to(), flags));
        case Subject::batch:
            break;
        }
        std::string report;
        for (const NSDictionaryEntry& entry :
             scene::migrateFiles("log", from(), to(), scene::DotFiles::included, flags)) {
            report += kit::bytesOf(NSString(entry.key)) + "=" +
                      std::to_string(NSNumber(entry.value).intValue()) + "\n";
        }
        return report;
    }

    Outcome under(const Fault& fault, const Deed& deed = {}, bool records = false) const {
        return runTraced({base(), fault, deed, records}, [this] { return migrate(case_.flags()); });
    }

    /// The same once more, in a process of its own that nothing disturbs.
    Outcome again(Again again) const {
        return runUndisturbed([this, again] { return migrate(case_.flagsFor(again)); });
    }

private:
    void makeSource() const {
        if (case_.isFile()) {
            folder_.write("from/item.txt", std::string(5000, 'f') + "end");
            if (case_.subject == Subject::largeFile) {
                addHoleAndMore();
            }
            finish("from/item.txt", 0640);
        } else if (case_.subject == Subject::tree) {
            folder_.write("from/item/one.txt", "one");
            folder_.write("from/item/empty", "");
            folder_.write("from/item/sub/two.txt", std::string(3000, '2'));
            folder_.write("from/item/sub/deeper/three", "three");
            folder_.write("from/item/sub/deeper/readOnly", "read only");
            folder_.makeFolder("from/item/nothing");
            folder_.link("sub/two.txt", "from/item/link");
            folder_.link("nosuch", "from/item/sub/dangling");
            folder_.write("from/item/other/four", "four");
            finish("from/item/sub/deeper/readOnly", 0444);
            for (const char* name : {"sub/deeper", "sub", "other", "nothing", "one.txt"}) {
                finish(std::string("from/item/") + name, 0750);
            }
            finish("from/item", 0755);
        } else {
            for (const char* const name : batchNames) {
                folder_.write(std::string("from/item/") + name, std::string("contents of ") + name);
                finish(std::string("from/item/") + name, 0640);
            }
            folder_.write("from/item/kept.txt", "of another extension");
        }
    }

    /// What is too long for a small file: the kernel copies it, in two stretches.
    void addHoleAndMore() const {
        const std::string more(9000, 'm');
        const int file = ::open(from().c_str(), O_WRONLY | O_CLOEXEC);
        EXPECT_EQ(::pwrite(file, more.data(), more.size(), 40000), static_cast<ssize_t>(more.size()));
        ::close(file);
    }

    void makeOld() const {
        switch (case_.subject) {
        case Subject::file:
        case Subject::largeFile:
            folder_.write("to/item.txt", "old");
            break;
        case Subject::tree:
            folder_.write("to/item/old", "old");
            folder_.write("to/item/sub/two.txt", "old");
            break;
        case Subject::batch:
            for (const char* name : {"a.log", "sub/c.log"}) {
                folder_.write(std::string("to/item/") + name, "old");
            }
            folder_.makeFolder("to/item/sub/deeper");
            folder_.makeFolder("to/item/other");
            break;
        }
    }

    /// Permissions and a time of its own, so that a copy without them is noticed.
    void finish(const std::string& name, mode_t mode) const {
        ::chmod((folder_ / name).c_str(), mode);
        const timespec times[2] = {{1000000000, 1000}, {1234567890, 123456000}};
        ::utimensat(AT_FDCWD, (folder_ / name).c_str(), times, 0);
    }

    scene::MigrationFolder folder_;
    Case case_;
    Digest source_;
    Digest old_;
};

/// Nothing is left out: takes hours rather than seconds.
inline bool isEveryCallTried() { return std::getenv("ZQ_EVERY_CALL") != nullptr; }

/// From one tried call to the next, where trying this many of them is usual.
inline long strideOf(long usual) { return isEveryCallTried() ? 1 : usual * (kit::isSanitized ? 5 : 1); }

/// Calls `body` with the numbers of the calls that an undisturbed run of the case makes, from `first` on in
/// these strides. The test is skipped where tracing is not permitted.
template <class Body>
void atCallsOf(const Case& which, long first, long stride, const Body& body) {
    const Run run(which);
    const Outcome plain = run.under({});
    if (!plain.traced) {
        GTEST_SKIP() << notTraced;
    }
    for (long call = first; call <= plain.calls; call += stride) {
        body(call);
    }
}

/// The number of runs of a race.
inline long wantedRaces(long usual) {
    const char* const wanted = std::getenv("ZQ_RACES");
    return wanted != nullptr ? std::strtol(wanted, nullptr, 10) : kit::isSanitized ? usual / 4 : usual;
}

inline void addFailures(const std::string& what, const scene::Words& problems) {
    for (const std::string& problem : problems) {
        ADD_FAILURE() << what << ": " << problem;
    }
}

} // namespace ZQFoundation::faults

#endif
