// SPDX-License-Identifier: MIT
// Migrations while another process swaps folders and files for links to somebody's victim folder, over and
// over. Reading through such a link may happen; nothing in the victim may be written, removed or changed.
#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Items.h"
#include "tests/kit/Sanitizers.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/migration/MigrationScene.h"

using namespace ZQFoundation;
using namespace scene;

namespace {

constexpr long wantedSwaps = kit::isSanitized ? 2000 : 8000;
constexpr long wantedMigrations = kit::isSanitized ? 50 : 150;

/// What both processes see.
struct Shared {
    std::atomic<bool> stops{false};
    std::atomic<long> swaps{0};
};

/// The scene: "work" with the folders that are migrated from and to, "victim" with the same names in it.
class Swapped {
public:
    /// The owner, who swaps, may write to these folders; 0 is this user.
    Swapped(uid_t owner, const Words& folders) : owner_(owner) {
        shared_ =
            new (::mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))
                Shared;
        for (const char* const name : {"one", "sub/two", "sub/deeper/three", "item/one", "item/sub/two",
                                       "item/sub/deeper/three", "a.log", "sub/b.log", "sub/deeper/c.log"}) {
            folder_.write(std::string("victim/") + name, "the victim's");
        }
        folder_.setMode("victim/one", 0600);
        for (const char* const name : {"work/from", "work/to", "staging", "trash"}) {
            folder_.makeFolder(name);
        }
        for (const std::string& name : folders) {
            folder_.setMode(name, owner == 0 ? 0755 : 0777);
        }
        before_ = victim();
    }
    Swapped(const Swapped&) = delete;
    Swapped& operator=(const Swapped&) = delete;
    ~Swapped() { ::munmap(shared_, sizeof(Shared)); }

    const MigrationFolder& folder() const { return folder_; }
    std::string operator/(const std::string& name) const { return folder_ / name; }

    /// A fresh tree at "work/<place>", made elsewhere and put there at once; what was there goes away.
    void renew(const std::string& place, bool withTree) {
        const std::string at = folder_ / ("work/" + place);
        const std::string number = std::to_string(++made_);
        if (::rename(at.c_str(), (folder_ / ("trash/" + number)).c_str()) == 0) {
            // A link may have been taken along; removing a tree does not follow it.
            kit::removeTree(folder_ / ("trash/" + number));
        }
        if (!withTree) {
            return;
        }
        const std::string staged = "staging/" + number;
        for (const char* name :
             {"/one", "/sub/two", "/sub/deeper/three", "/a.log", "/sub/b.log", "/sub/deeper/c.log"}) {
            folder_.write(staged + name, "mine");
        }
        if (owner_ != 0) { // and so this is root; the swapper needs to own the folders in which it swaps
            for (const char* name : {"", "/sub", "/sub/deeper"}) {
                folder_.setOwner(staged + name, owner_);
            }
        }
        ::rename((folder_ / staged).c_str(), at.c_str());
    }

    /// Runs `migrate` again and again while another process runs `swap` with the number of the turn, until
    /// both have done enough.
    template <class Swap, class Migrate>
    void race(const Swap& swap, const Migrate& migrate) {
        const pid_t parent = ::getpid();
        const pid_t swapper = ::fork();
        if (swapper == 0) {
            ::alarm(500);
            if (owner_ != 0 && (::setgid(owner_) != 0 || ::setuid(owner_) != 0)) {
                kit::leave(99);
            }
            for (long turn = 0; !shared_->stops && ::getppid() == parent; ++turn) {
                if (swap(turn)) {
                    ++shared_->swaps;
                }
            }
            kit::leave(0);
        }
        long migrations = 0;
        while (shared_->swaps < wantedSwaps || migrations < wantedMigrations) {
            migrate(migrations);
            ++migrations;
        }
        shared_->stops = true;
        EXPECT_EQ(kit::endOf(swapper), 0);
        std::printf("%ld swaps, %ld migrations\n", shared_->swaps.load(), migrations);
        EXPECT_EQ(shownDigest(victim()), shownDigest(before_));
    }

private:
    /// With the numbers of the files and the times of folders: a name put in and taken out shows, too.
    Digest victim() const { return folder_.digest("victim", Detail::everything); }

    uid_t owner_;
    kit::ScratchInMemory memory_;
    MigrationFolder folder_;
    Shared* shared_;
    Digest before_;
    long made_ = 0;
};

/// An entry below "work", and what of the victim it is swapped for.
struct Swap {
    const char* entry;
    const char* victim;
};
using Swaps = std::vector<Swap>;

/// Swaps an entry for a link and back. The link waits in "swap", where only the swapper works.
class Swapper {
public:
    Swapper(const Swapped& scene, const Swaps& swaps) {
        scene.folder().makeFolder("swap");
        scene.folder().setMode("swap", 0777);
        for (const Swap& swap : swaps) {
            pairs_.push_back({scene / (std::string("work/") + swap.entry),
                              scene / ("swap/" + std::to_string(pairs_.size())), scene / swap.victim});
        }
    }

    bool operator()(long turn) const {
        const Pair& pair = pairs_[static_cast<std::size_t>(turn / 2) % pairs_.size()];
        if (turn % 2 != 0) {
            return exchange(pair.entry, pair.link);
        }
        // The one before may have been taken away with the tree in which it was.
        if (!kit::isLink(pair.link)) {
            kit::removeTree(pair.link);
            if (::symlink(pair.victim.c_str(), pair.link.c_str()) != 0) {
                return false;
            }
        }
        return exchange(pair.entry, pair.link);
    }

private:
    struct Pair {
        std::string entry;
        std::string link;
        std::string victim;
    };
    std::vector<Pair> pairs_;
};

/// Another user where there is one to be, else (0) this one.
uid_t swappingUser() { return kit::isRoot() ? 65534 : 0; }

/// Moves trees over each other while the owner swaps. Each list of swaps is tried by itself.
void moveTrees(const std::vector<Swaps>& lists, uid_t owner) {
    for (const Swaps& swaps : lists) {
        Swapped scene(owner, {"work", "work/from", "work/to", "trash", "staging"});
        scene.renew("from/item", true);
        scene.race(Swapper(scene, swaps), [&](long turn) {
            scene.renew("from/item", true);
            scene.renew("to/item", turn % 2 == 0);
            migrateFolder(scene / "work/from/item", scene / "work/to/item",
                          {turn % 3 == 0, false, true, false});
        });
    }
}

/// The same with batches, by one user.
template <class Check>
void moveBatches(const std::vector<Swaps>& lists, const Check& check) {
    for (const Swaps& swaps : lists) {
        Swapped scene(0, {});
        scene.renew("from/item", true);
        scene.race(Swapper(scene, swaps), [&](long turn) {
            scene.renew("from/item", true);
            scene.renew("to/item", turn % 2 == 0);
            migrateFiles("log", scene / "work/from/item", scene / "work/to/item", DotFiles::included,
                         {turn % 3 == 0, true, turn % 4 != 0, turn % 4 == 0});
            check(scene);
        });
    }
}

// No swapped entry is below another one, or the swapper itself would reach into the victim through a link.
const Swaps atTheTopOfTheSource{{"from/item/sub", "victim/sub"}, {"from/item/one", "victim/one"}};
const Swaps deepInTheSource{{"from/item/sub/deeper", "victim/sub/deeper"},
                            {"from/item/sub/two", "victim/sub/two"}};
const Swaps atTheTopOfTheDestination{{"to/item/sub", "victim/sub"}, {"to/item/one", "victim/one"}};
const Swaps deepInTheDestination{{"to/item/sub/deeper", "victim/sub/deeper"},
                                 {"to/item/sub/two", "victim/sub/two"}};
const Swaps theItems{{"from/item", "victim"}, {"to/item", "victim"}};

Swaps both(Swaps one, const Swaps& other) {
    one.insert(one.end(), other.begin(), other.end());
    return one;
}

} // namespace

TEST(Swapping, insideTheSourceHarmsNoVictim) {
    moveTrees({atTheTopOfTheSource, deepInTheSource}, swappingUser());
}

TEST(Swapping, insideTheDestinationHarmsNoVictim) {
    moveTrees({atTheTopOfTheDestination, deepInTheDestination}, swappingUser());
}

TEST(Swapping, ofSourceAndDestinationThemselvesHarmsNoVictim) { moveTrees({theItems}, swappingUser()); }

TEST(Swapping, onBothSidesByTheSameUserHarmsNoVictim) {
    moveTrees(
        {both(atTheTopOfTheSource, atTheTopOfTheDestination), both(deepInTheSource, deepInTheDestination)},
        0);
}

TEST(Swapping, ofFilesHarmsNoVictim) {
    Swapped scene(swappingUser(), {"work/from", "work/to"});
    const Swapper swapper(scene, {{"from/one", "victim/one"}, {"to/one", "victim/one"}});
    scene.race(swapper, [&](long turn) {
        for (const char* name : {"work/from/one", "work/to/one"}) {
            // Written beside and put there, so that the scene does not write through a link itself.
            const std::string staged = scene.folder().write("staging/one", "mine");
            ::rename(staged.c_str(), (scene / name).c_str());
        }
        migrateFile(scene / "work/from/one", scene / "work/to/one",
                    flagsOf(static_cast<unsigned>(turn) % 16));
    });
}

TEST(Swapping, ofParentsInAStickyFolderHarmsNoVictim) {
    if (!kit::isRoot()) {
        GTEST_SKIP() << "only root can have another user swap";
    }
    if (kit::contentsOf("/proc/sys/fs/protected_symlinks") != "1\n") {
        GTEST_SKIP() << "this system follows foreign links in sticky folders";
    }
    // In a folder like /tmp, in which everybody may make links, a link of somebody else is not followed: the
    // parents of source and destination belong to the swapper, who puts links in their places.
    Swapped scene(65534, {});
    scene.folder().setMode("work", 01777);
    scene.folder().makeFolder("swap");
    scene.folder().link(scene / "victim", "swap/from");
    scene.folder().link(scene / "victim", "swap/to");
    for (const char* const name : {"work/from", "work/to", "swap", "swap/from", "swap/to"}) {
        scene.folder().setOwner(name, 65534);
    }
    const std::string pairs[2][2] = {{scene / "work/from", scene / "swap/from"},
                                     {scene / "work/to", scene / "swap/to"}};
    scene.race([&](long turn) { return exchange(pairs[turn / 2 % 2][0], pairs[turn / 2 % 2][1]); },
               [&](long turn) {
                   const Flags flags{turn % 2 == 0, turn % 5 == 0, true, false};
                   migrateFolder(scene / "work/from/item", scene / "work/to/item", flags);
                   migrateFile(scene / "work/from/one", scene / "work/to/one", flags);
                   migrateFile(scene / "work/from/one", scene / "work/to/new", flags);
                   migrateFiles("log", scene / "work/from", scene / "work/to", DotFiles::included, flags);
                   // From a place that nobody swaps to one that is.
                   const std::string mine = scene.folder().write("staging/mine", "mine");
                   migrateFile(mine, scene / "work/to/one", flags);
               });
}

TEST(Swapping, inABatchHarmsNoVictim) {
    moveBatches({{{"from/item/a.log", "victim/a.log"},
                  {"to/item/a.log", "victim/a.log"},
                  {"from/item/sub/b.log", "victim/sub/b.log"},
                  {"to/item/sub/b.log", "victim/sub/b.log"}}},
                [](const Swapped&) {});
}

TEST(Swapping, ofFoldersInABatchHarmsNoVictim) {
    moveBatches({{{"from/item/sub", "victim/sub"}}, {{"from/item/sub/deeper", "victim/sub/deeper"}}},
                [](const Swapped& scene) {
                    // A batch does not enter links, whenever they are put there.
                    for (const auto& [name, what] : scene.folder().digest("work/to", Detail::contents)) {
                        EXPECT_EQ(what.find("the victim's"), std::string::npos) << name;
                    }
                });
}
