// SPDX-License-Identifier: MIT
// Moves while the power fails: whatever the disks hold before any call of the migration, and right after
// it, each file is whole at the source or at the destination, and the same call once more loses none.
#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/kit/Environment.h"
#include "tests/kit/Mounts.h"
#include "tests/kit/Sanitizers.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/migration/faults/Cases.h"
#include "tests/migration/faults/Image.h"
#include "tests/migration/faults/Leftovers.h"

using namespace ZQFoundation;
using faults::Outcome;

namespace {

constexpr off_t imageBytes = off_t{4} << 20;

enum class Moved { file, tree, batch };

/// The folder of a batch or tree, "from" on the first disk, and its place "to" on the last one.
struct Move {
    Moved subject;
    std::string from;
    std::string to;

    std::string run(bool overwrites) const {
        const scene::Flags flags{false, true, overwrites, false};
        if (subject == Moved::batch) {
            return scene::migrateFiles("log", from, to, scene::DotFiles::included, flags)
                .condensedDescription()
                .utf8();
        }
        return std::to_string(subject == Moved::tree
                                  ? scene::migrateFolder(from, to + "/item", flags)
                                  : scene::migrateFile(from + "/2/11.log", to + "/item", flags));
    }
};

/// One or two disks with what is moved, and copies of them as they are when the power fails.
class Disks {
public:
    Disks(const scene::MigrationFolder& folder, Moved subject, const scene::Words& names)
        : folder_(folder), subject_(subject), names_(names), last_(names.size()) {}

    /// Puts the files there, and all on disk. False where the machine allows no such disks.
    bool prepare() {
        if (!faults::makeImage(folder_ / "empty.img", imageBytes)) {
            return false;
        }
        for (const std::string& name : names_) {
            folder_.write(name + ".img", kit::contentsOf(folder_ / "empty.img"));
            mounted_.push_back(mount(name));
            if (!mounted_.back()->isMounted()) {
                return false;
            }
            folder_.write(name + "/beside", "");
        }
        makeFiles();
        for (const std::string& name : names_) {
            const int disk = ::open((folder_ / name).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            EXPECT_EQ(::syncfs(disk), 0);
            ::close(disk);
        }
        return true;
    }

    void makeFiles() {
        for (int number = 0; number < 12; ++number) {
            const std::string text = "file " + std::to_string(number) + ":";
            const auto more = static_cast<std::size_t>(number * 900);
            folder_.write(names_.front() + "/from/" + std::to_string(number % 3) + "/" +
                              std::to_string(number) + ".log",
                          text + std::string(more, '.'));
        }
        folder_.makeFolder(names_.back() + "/to");
        texts_ = faults::visibleContents(folder_ / (names_.front() + "/from"));
    }

    /// On the disks, or on their copies, whose names begin with "cut".
    Move move(const std::string& prefix = "") const {
        return {subject_, folder_ / (prefix + names_.front() + "/from"),
                folder_ / (prefix + names_.back() + "/to")};
    }
    Outcome migrateTraced(const faults::Deed& deed, bool records = false) const {
        return faults::runTraced({folder_.path(), {}, deed, records, 300},
                                 [this] { return move().run(false); });
    }

    /// The journal of a file system is written, as it may be at any moment; the contents of files are not.
    void writeJournal(const std::string& name) const {
        const int file = ::open((folder_ / (name + "/beside")).c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
        EXPECT_EQ(::write(file, "x", 1), 1);
        EXPECT_EQ(::fsync(file), 0);
        ::close(file);
    }

    /// What is lost when the power fails now, and after the same call once more.
    scene::Words lostByPowerCut() {
        scene::Words snapshots;
        for (const std::string& name : names_) {
            snapshots.push_back(faults::snapshotOf(folder_ / (name + ".img")));
        }
        if (snapshots == last_) {
            return {}; // tried already
        }
        last_ = snapshots;
        ++cuts_;
        std::vector<std::unique_ptr<faults::MountedImage>> disks;
        for (std::size_t index = 0; index < snapshots.size(); ++index) {
            folder_.write("cut" + names_[index] + ".img", snapshots[index]);
            disks.push_back(mount("cut" + names_[index]));
            if (!disks.back()->isMounted()) {
                return {"a disk cannot be mounted after the power has failed"};
            }
        }
        const Outcome again = faults::runUndisturbed([this] { return move("cut").run(true); });
        return lostAfter(again);
    }

    long cuts() const { return cuts_; }

private:
    std::unique_ptr<faults::MountedImage> mount(const std::string& name) const {
        return std::make_unique<faults::MountedImage>(folder_ / (name + ".img"), folder_.makeFolder(name));
    }

    scene::Words lostAfter(const Outcome& again) const {
        scene::Words lost;
        if (!again.ended) {
            lost.push_back("the second call did not come to its end");
        }
        std::set<std::string> found;
        for (const std::string& name : names_) {
            found.merge(faults::visibleContents(folder_ / ("cut" + name)));
        }
        for (const std::string& text : texts_) {
            if (found.count(text) == 0) {
                lost.push_back("lost: " + text.substr(0, text.find(':')) + ", second call: " + again.report);
            }
        }
        return lost;
    }

    const scene::MigrationFolder& folder_;
    Moved subject_;
    scene::Words names_;
    std::vector<std::unique_ptr<faults::MountedImage>> mounted_;
    std::set<std::string> texts_;
    scene::Words last_; ///< what the disks contained when the power failed last
    long cuts_ = 0;
};

/// The power fails before every call, or of every few, and when the migration has ended, with the
/// journals of these disks just written. False where that cannot be tried.
bool cutPower(Disks& disks, Moved subject, const scene::Words& writing) {
    if (!disks.prepare()) {
        return false;
    }
    const long usual = subject == Moved::file ? 2 : kit::isSanitized ? 61 : 17;
    const long stride = faults::isEveryCallTried() ? 1 : usual;
    const auto cut = [&](long call) {
        for (const std::string& name : writing) {
            disks.writeJournal(name);
        }
        faults::addFailures("at call " + std::to_string(call), disks.lostByPowerCut());
    };
    const Outcome outcome = disks.migrateTraced([&](long call) {
        if (call % stride == 0) {
            cut(call);
        }
        return true;
    });
    if (!outcome.traced) {
        return false;
    }
    EXPECT_TRUE(outcome.ended);
    cut(outcome.calls + 1);
    EXPECT_GT(disks.cuts(), 2) << "hardly anything was ever written to a disk";
    return true;
}

void expectNothingLost(Moved subject) {
    const kit::ScratchInMemory memory;
    // From one disk to another, of which either may write its journal first, and on a single one.
    const std::vector<std::pair<scene::Words, scene::Words>> tries{
        {{"one", "two"}, {"one"}}, {{"one", "two"}, {"one", "two"}}, {{"one"}, {"one"}}};
    for (const auto& [names, writing] : tries) {
        SCOPED_TRACE(std::to_string(names.size()) + " disks, " + std::to_string(writing.size()) +
                     " of them write");
        const scene::MigrationFolder folder;
        kit::withOwnMounts(
            [&, &diskNames = names, &writingNames = writing] {
                Disks disks(folder, subject, diskNames);
                return cutPower(disks, subject, writingNames);
            },
            500);
    }
}

/// Whether the call sends what was written before to the disk.
bool isFlush(const std::string& call) {
    return faults::begins(call, "fsync ") || faults::begins(call, "fdatasync ") ||
           faults::begins(call, "syncfs ");
}

/// Whether the call takes something from the source: the first such one sets it aside or removes it.
bool takesFrom(const std::string& call, const std::string& source) {
    const std::string name = call.substr(0, call.find(' '));
    const bool takes = name.rfind("rename", 0) == 0 || name.rfind("unlink", 0) == 0 || name == "rmdir";
    return takes && call.find(" " + source) != std::string::npos;
}

} // namespace

TEST(PowerCut, losesNoFile) { expectNothingLost(Moved::file); }
TEST(PowerCut, losesNothingOfAFolder) { expectNothingLost(Moved::tree); }
TEST(PowerCut, losesNothingOfABatch) { expectNothingLost(Moved::batch); }

TEST(PowerCut, isForeseenBeforeAnythingIsRemovedAndNotForEachFile) {
    const kit::ScratchInMemory memory;
    for (const Moved subject : {Moved::file, Moved::tree, Moved::batch}) {
        const scene::MigrationFolder folder;
        Disks disks(folder, subject, {"one", "two"});
        disks.makeFiles();
        const Outcome outcome = disks.migrateTraced({}, true);
        if (!outcome.traced) {
            GTEST_SKIP() << faults::notTraced;
        }
        const auto& calls = outcome.names;
        const auto flush = std::find_if(calls.begin(), calls.end(), isFlush);
        const auto removal = std::find_if(calls.begin(), calls.end(), [&](const std::string& call) {
            return takesFrom(call, folder / "one");
        });
        EXPECT_NE(removal, calls.end());
        EXPECT_LT(flush, removal) << "the first one is removed before a copy is on disk";
        EXPECT_LT(std::count_if(calls.begin(), calls.end(), isFlush), 8) << "as many as there are files";
    }
}
