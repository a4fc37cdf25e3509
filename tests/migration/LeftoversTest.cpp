// SPDX-License-Identifier: MIT
// What a killed migration leaves under hidden names: the next one in the same folders puts a source back and
// removes the rest, but nothing that a living process still works on or that belongs to another user
// of a shared folder.
#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <sys/file.h>

#include "tests/migration/faults/Verdict.h"

using faults::Again;
using faults::Case;
using faults::Fault;
using faults::Old;
using faults::Outcome;
using faults::Run;
using faults::Subject;
using scene::Detail;
using scene::Digest;

namespace {

constexpr uid_t somebody = 65534;
constexpr uid_t somebodyElse = 65533;

constexpr const char* allMarks[] = {faults::setAside, faults::givenUp, faults::unfinished};

/// A tree is moved over an older one: every kind of leftover can result.
constexpr Case moved{Subject::tree, Old::overwritten, false};

/// A run that was killed so that something with the mark is left, and what that is.
struct Killed {
    std::unique_ptr<Run> run;
    std::string leftover; ///< its path; empty when nothing is left
    bool traced = true;

    const Run& operator*() const { return *run; }
    Digest digest() const { return scene::digestOf(leftover, Detail::times); }
};

std::string leftoverWith(const Run& run, const char* mark) {
    for (const std::string& name : faults::leftoversBelow(run.base())) {
        if (faults::begins(faults::lastComponent(name), mark) || faults::begins(name, mark)) {
            return run / name;
        }
    }
    return "";
}

/// Kills a migration at the first call at which something with the mark is there. `prepare` changes the
/// scene, and `migrate` is what is killed; it returns a text.
template <class Prepare, class Migrate>
Killed killedLeaving(const char* mark, const Prepare& prepare, const Migrate& migrate) {
    const auto migrated = [&](const Run& run, const Fault& fault, const faults::Deed& deed) {
        prepare(run);
        return faults::runTraced({run.base(), fault, deed}, [&] { return migrate(run); });
    };
    long first = 0;
    const Run observed(moved);
    const Outcome outcome = migrated(observed, {}, [&](long call) {
        first = first == 0 && !leftoverWith(observed, mark).empty() ? call : first;
    });
    Killed killed{std::make_unique<Run>(moved), "", outcome.traced};
    if (killed.traced) {
        EXPECT_NE(first, 0) << "nothing with the mark " << mark << " is made";
        migrated(*killed.run, {Fault::killing, 0, first, false}, {});
        killed.leftover = leftoverWith(*killed.run, mark);
    }
    return killed;
}

Killed killedLeaving(const char* mark) {
    return killedLeaving(
        mark, [](const Run&) {}, [](const Run& run) { return run.migrate(moved.flags()); });
}

/// Calls the body with what a kill leaves, for each mark; skips the test where tracing is not permitted.
template <class Body>
void withEachLeftover(const Body& body) {
    const scene::ScenesInMemory memory;
    const faults::OneProcessor processor;
    for (const char* const mark : allMarks) {
        const Killed killed = killedLeaving(mark);
        if (!killed.traced) {
            GTEST_SKIP() << faults::notTraced;
        }
        if (!killed.leftover.empty()) {
            SCOPED_TRACE(mark);
            body(killed);
        }
    }
}

/// The source is at its place or its copy is, and nothing is left.
void expectRecovered(const Run& run) {
    EXPECT_EQ(scene::Words{}, faults::leftoversBelow(run.base()));
    EXPECT_TRUE(scene::digestOf(run.from(), Detail::times) == run.source() ||
                scene::digestOf(run.to(), Detail::times) == run.source())
        << "neither source nor copy is whole";
}

/// A lock as a migration that is at work has one.
class LivingLock {
public:
    explicit LivingLock(const std::string& path) : item_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        EXPECT_EQ(::flock(item_, LOCK_EX | LOCK_NB), 0) << path << ": " << std::strerror(errno);
    }
    LivingLock(const LivingLock&) = delete;
    LivingLock& operator=(const LivingLock&) = delete;
    ~LivingLock() { ::close(item_); }

private:
    int item_;
};

/// Migrations of a neighbor by which the folder of a leftover is one of those concerned.
std::string copyNeighbourTo(const std::string& from, const std::string& to) {
    return std::to_string(scene::migrateFile(from, to, {true, true, true, false}));
}

/// A file, a folder and a batch go from "from" to "to".
void migrateOneOfEach(const scene::MigrationFolder& folder) {
    folder.file("from/file", "a file");
    folder.file("from/folder/inside", "in a folder");
    folder.file("from/x.log", "of a batch");
    const scene::Flags flags{false, true, true, false};
    EXPECT_EQ(scene::migrateFile(folder / "from/file", folder / "to/file", flags), 0U);
    EXPECT_EQ(scene::migrateFolder(folder / "from/folder", folder / "to/folder", flags), 0U);
    EXPECT_EQ(scene::migrateFiles("log", folder / "from", folder / "to", scene::DotFiles::included, flags)
                  .condensedDescription(),
              "{ x.log = 0; }");
    for (const char* const name : {"file", "folder", "x.log"}) {
        EXPECT_TRUE(scene::stands(folder / (std::string("to/") + name)));
        EXPECT_FALSE(scene::stands(folder / (std::string("from/") + name)));
        scene::removeTree(folder / (std::string("to/") + name));
    }
}

/// Makes both folders ones in which everybody may write, with the tree of one user and a file of another.
void share(const Run& run) {
    for (const char* const place : {"from", "to"}) {
        for (const auto& [name, what] : scene::digestOf(run / place)) {
            const std::string path = run / (name.empty() ? place : place + ("/" + name));
            EXPECT_EQ(::lchown(path.c_str(), somebodyElse, somebodyElse), 0) << path;
        }
        EXPECT_EQ(::lchown((run / place).c_str(), 0, 0), 0);
        EXPECT_EQ(::lchown((run / place + "/beside").c_str(), somebody, somebody), 0);
        EXPECT_EQ(::chmod((run / place).c_str(), 01777), 0);
    }
}

/// In a child.
std::string migrateAsSomebodyElse(const Run& run) {
    return ::setgid(somebodyElse) == 0 && ::setuid(somebodyElse) == 0 ? run.migrate(moved.flags())
                                                                      : "no such user";
}

} // namespace

TEST(Leftovers, arePutBackOrRemovedByTheNextMigrationFromTheirFolder) {
    withEachLeftover([](const Killed& killed) {
        const std::string folder = faults::folderOf(killed.leftover);
        EXPECT_EQ(copyNeighbourTo(folder + "/beside", *killed / "elsewhere/beside"), "0");
        EXPECT_FALSE(scene::stands(killed.leftover));
    });
}

TEST(Leftovers, arePutBackOrRemovedByTheNextMigrationToTheirFolder) {
    withEachLeftover([](const Killed& killed) {
        const std::string folder = faults::folderOf(killed.leftover);
        const std::string other = *killed / (folder == *killed / "from" ? "to" : "from");
        EXPECT_EQ(copyNeighbourTo(other + "/beside", folder + "/neighbour"), "0");
        EXPECT_FALSE(scene::stands(killed.leftover));
    });
}

TEST(Leftovers, arePutBackOrRemovedByABatchThatComesThatWay) {
    withEachLeftover([](const Killed& killed) {
        scene::migrateFiles("nosuch", *killed / "from", *killed / "to", scene::DotFiles::included, {});
        scene::migrateFiles("nosuch", killed.run->base(), *killed / "elsewhere", scene::DotFiles::included,
                            {});
        expectRecovered(*killed);
    });
}

TEST(Leftovers, arePutBackOrRemovedByAMigrationThatFails) {
    withEachLeftover([](const Killed& killed) {
        EXPECT_EQ(scene::migrateFile(*killed / "from/nosuch", *killed / "to/x"), 10U);
        expectRecovered(*killed);
    });
}

TEST(Leftovers, areLeftAloneWhileSomebodyHoldsThem) {
    withEachLeftover([](const Killed& killed) {
        const Digest before = killed.digest();
        {
            const LivingLock lock(killed.leftover);
            for (const Again again : {Again::refusing, Again::overwriting}) {
                EXPECT_TRUE(killed.run->again(again).ended);
                EXPECT_EQ(scene::shownDigest(killed.digest()), scene::shownDigest(before));
            }
        }
        EXPECT_TRUE(killed.run->again(Again::overwriting).ended);
        expectRecovered(*killed);
    });
}

TEST(Leftovers, ofASourceWhoseNameIsTakenAreNotRemoved) {
    const scene::ScenesInMemory memory;
    const std::string atTheSource = std::string("from/") + faults::setAside;
    const Killed killed = killedLeaving(atTheSource.c_str());
    if (!killed.traced) {
        GTEST_SKIP() << faults::notTraced;
    }
    ASSERT_FALSE(killed.leftover.empty());
    // Somebody has made the folder again and has removed the copy: what was set aside is the only one.
    ASSERT_EQ(::mkdir(killed.run->from().c_str(), 0755), 0);
    ASSERT_EQ(::symlink("mine", (killed.run->from() + "/mine").c_str()), 0);
    scene::removeTree(killed.run->to());
    EXPECT_EQ(copyNeighbourTo(*killed / "from/beside", *killed / "elsewhere/beside"), "0");
    EXPECT_EQ(scene::linkText(killed.run->from() + "/mine"), "mine");
    EXPECT_EQ(scene::digestOf(killed.run->from()).size(), 2U);
    bool isFound = false;
    for (const auto& [name, what] : scene::digestOf(*killed / "from")) {
        isFound =
            isFound || (name.find('/') == std::string::npos &&
                        scene::digestOf(*killed / ("from/" + name), Detail::times) == killed.run->source());
    }
    EXPECT_TRUE(isFound) << "the source is nowhere";
}

TEST(Leftovers, thatAreLinksLeadNowhere) {
    const scene::MigrationFolder folder;
    folder.file("victim/file", "the victim's");
    folder.folder("from");
    folder.folder("to");
    for (const char* const place : {"from/", "to/"}) {
        for (const char* const mark : allMarks) {
            folder.link("../victim", std::string(place) + mark + "1");
            folder.link("../victim/file", std::string(place) + mark + "2");
            folder.link("nowhere", std::string(place) + mark + "3");
        }
    }
    const Digest before = folder.digest("victim", Detail::times);
    migrateOneOfEach(folder);
    EXPECT_EQ(scene::shownDigest(folder.digest("victim", Detail::times)), scene::shownDigest(before));
}

TEST(Leftovers, ofAnotherUserInASharedFolderAreLeftAlone) {
    if (!scene::isRoot()) {
        GTEST_SKIP() << "only root can have another user migrate";
    }
    const scene::ScenesInMemory memory;
    const faults::OneProcessor processor;
    for (const char* const mark : allMarks) {
        const Killed killed = killedLeaving(mark, share, migrateAsSomebodyElse);
        if (!killed.traced) {
            GTEST_SKIP() << faults::notTraced;
        }
        ASSERT_FALSE(killed.leftover.empty());
        const Digest before = killed.digest();
        const std::string folder = faults::folderOf(killed.leftover);
        const auto copyBeside = [&] {
            return copyNeighbourTo(folder + "/beside", folder + "/neighbour");
        };
        EXPECT_EQ(scene::inUnprivilegedChild([&] { return copyBeside() == "0" ? 0 : 1; }), 0);
        EXPECT_EQ(scene::shownDigest(killed.digest()), scene::shownDigest(before)) << "by another user";
        EXPECT_EQ(copyBeside(), "0");
        EXPECT_EQ(scene::shownDigest(killed.digest()), scene::shownDigest(before)) << "by root";
        EXPECT_TRUE(faults::runUndisturbed([&] { return migrateAsSomebodyElse(*killed); }).ended);
        EXPECT_FALSE(scene::stands(killed.leftover)) << "by the user whose it is";
    }
}
