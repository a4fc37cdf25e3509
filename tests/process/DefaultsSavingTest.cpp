// SPDX-License-Identifier: MIT
// Settings that a process saves with `synchronize`.
#include "foundation/process/DefaultsSaving.h"

#include <atomic>
#include <climits>
#include <csignal>
#include <ctime>

#include <dirent.h>
#include <sys/file.h>
#include <sys/resource.h>

#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/process/LockedFile.h"
#include "tests/files/CopyScene.h"
#include "tests/kit/Interruptions.h"
#include "tests/kit/Items.h"
#include "tests/process/DefaultsScene.h"

#if __has_include(<linux/seccomp.h>)
#include "tests/kit/RefusedCalls.h"
#endif

using namespace ZQFoundation;
using process::defaults;
using process::useThreads;

namespace {

/// With nothing left to save from other tests.
class DefaultsSaving : public process::DefaultsScene {
protected:
    void SetUp() override { saveElsewhere(); }
    void TearDown() override {
        for (const char* const key : {"Saved", "Unfit"}) {
            defaults().removeObjectForKey(key);
        }
        saveElsewhere();
    }

    void saveElsewhere() const {
        const kit::Path other(detail::overrides::defaultsFolder, folder / "other");
        EXPECT_TRUE(defaults().synchronize());
    }

    /// Expects that saving fails for a reason that holds the text, and leaves the file as it was.
    void expectRefusal(const std::string& reason) const {
        const std::string before = kit::contentsOf(file());
        NSString error;
        errno = 4321;
        EXPECT_FALSE(defaults().synchronize(&error));
        EXPECT_EQ(errno, 4321);
        EXPECT_NE(error.utf8().find(reason), std::string::npos) << error.utf8();
        EXPECT_FALSE(defaults().synchronize()) << "nobody has to ask for the reason";
        EXPECT_EQ(kit::contentsOf(file()), before);
        EXPECT_EQ(entries(), 1U) << "nothing but the file";
    }

    NSDictionary saved() const { return NSDictionary::dictionaryWithContentsOfFile(file()); }
    std::string file() const { return folder / "store/Viewer.plist"; }

    std::size_t entries() const {
        std::size_t count = 0;
        DIR* const listing = ::opendir((folder / "store").c_str());
        while (const dirent* const entry = listing != nullptr ? ::readdir(listing) : nullptr) {
            count += std::string(entry->d_name).find_first_not_of('.') != std::string::npos ? 1 : 0;
        }
        ::closedir(listing);
        return count;
    }
};

} // namespace

TEST_F(DefaultsSaving, keepsValuesOfEveryKindForTheNextProcess) {
    const NSDictionary values{{"Text", "a < b & c\nd"},
                              {"Number", std::int64_t{-9223372036854775807}},
                              {"Real", 0.1},
                              {"Flag", true},
                              {"Date", NSDate::dateWithTimeIntervalSince1970(1e9)},
                              {"Data", NSData::dataWithBytes_length("\0\xFF", 2)},
                              {"List", NSArray{1, NSDictionary{{"k", "v"}}}}};
    for (const NSDictionaryEntry& entry : values) {
        defaults().setObject_forKey(entry.value, NSString(entry.key));
    }
    EXPECT_FALSE(kit::exists(file())) << "setting alone writes nothing";
    NSString error = "old";
    EXPECT_TRUE(defaults().synchronize(&error));
    EXPECT_FALSE(error);
    EXPECT_EQ(saved(), values);
    EXPECT_TRUE(NSNumber(saved().objectForKey("Flag")).isBoolean());
    EXPECT_EQ(kit::modeOf(file()), 0600U);
    EXPECT_EQ(kit::modeOf(folder / "store"), 0700U);
}

TEST_F(DefaultsSaving, changesOnlyTheKeysThatThisProcessChanged) {
    folder.write("store/Viewer.plist", "{ Saved = old; Removed = old; Kept = old; }");
    defaults().setObject_forKey("new", "Saved");
    defaults().removeObjectForKey("Removed");
    folder.write("store/Viewer.plist", "{ Saved = old; Removed = old; Kept = newer; Added = x; }");
    EXPECT_TRUE(defaults().synchronize());
    EXPECT_EQ(saved(), (NSDictionary{{"Saved", "new"}, {"Kept", "newer"}, {"Added", "x"}}));
}

TEST_F(DefaultsSaving, leavesTheAnswerToTheFileAfterwards) {
    defaults().setObject_forKey("mine", "Saved");
    EXPECT_TRUE(defaults().synchronize());
    EXPECT_EQ(defaults().objectForKey("Saved"), NSObject("mine"));
    folder.write("store/Viewer.plist", "{ Saved = theirs; }");
    EXPECT_EQ(defaults().objectForKey("Saved"), NSObject("theirs"));
    EXPECT_TRUE(defaults().synchronize());
    EXPECT_EQ(kit::contentsOf(file()), "{ Saved = theirs; }") << "nothing to save, nothing written";
}

TEST_F(DefaultsSaving, makesNoFileForRemovalsAndForNothing) {
    EXPECT_TRUE(defaults().synchronize());
    defaults().removeObjectForKey("Saved");
    EXPECT_TRUE(defaults().synchronize());
    EXPECT_FALSE(kit::exists(folder / "store"));
    folder.write("store/Viewer.plist", "{ Kept = x; }");
    defaults().removeObjectForKey("Saved");
    EXPECT_TRUE(defaults().synchronize());
    EXPECT_EQ(kit::contentsOf(file()), "{ Kept = x; }");
}

TEST_F(DefaultsSaving, refusesWhatXmlCannotHoldAndKeepsItInMemory) {
    folder.write("store/Viewer.plist", "{ Kept = x; }");
    defaults().setObject_forKey(NSArray{"fit", "un\x1B"}, "Unfit");
    defaults().setObject_forKey("new", "Saved");
    expectRefusal("Viewer.plist: Unfit[1] holds the character U+001B");
    EXPECT_EQ(defaults().objectForKey("Saved"), NSObject("new"));
    defaults().setObject_forKey("fit", "Unfit");
    EXPECT_TRUE(defaults().synchronize()) << "a later call tries again";
    EXPECT_EQ(saved(), (NSDictionary{{"Kept", "x"}, {"Unfit", "fit"}, {"Saved", "new"}}));
}

TEST_F(DefaultsSaving, neverReplacesWhatItCannotRead) {
    for (const char* const bytes : {"{ broken", "( array )", ""}) {
        folder.write("store/Viewer.plist", bytes);
        defaults().setObject_forKey("new", "Saved");
        expectRefusal("Viewer.plist");
    }
}

TEST_F(DefaultsSaving, makesNoFileThatWouldBeTooLargeToRead) {
    folder.write("store/Viewer.plist", "{ Kept = x; }");
    defaults().setObject_forKey(std::string((16 << 20) + 1, 'x'), "Saved");
    expectRefusal("would be larger");
}

TEST_F(DefaultsSaving, leavesTheOldFileAndRaisesNoSignalWhereTheNewOneDoesNotFit) {
    folder.write("store/Viewer.plist", "{ Kept = x; }");
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    defaults().setObject_forKey(std::string(100'000, 'x'), "Saved");
    const rlimit lowered{4096, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &lowered), 0);
    expectRefusal("Viewer.plist");
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    EXPECT_TRUE(defaults().synchronize());
}

TEST_F(DefaultsSaving, writesThroughALinkAndKeepsPermissions) {
    const std::string target = folder.write("dotfiles/viewer", "{ Kept = x; }");
    ASSERT_EQ(::chmod(target.c_str(), 0640), 0);
    folder.makeFolder("store");
    ASSERT_EQ(::symlink("../dotfiles/viewer", file().c_str()), 0);
    defaults().setObject_forKey("new", "Saved");
    EXPECT_TRUE(defaults().synchronize());
    EXPECT_TRUE(kit::isLink(file()));
    EXPECT_EQ(NSDictionary::dictionaryWithContentsOfFile(target),
              (NSDictionary{{"Kept", "x"}, {"Saved", "new"}}));
    EXPECT_EQ(kit::modeOf(target), 0640U);
}

TEST_F(DefaultsSaving, keepsTheAccessListSoThatTheGroupGainsNothing) {
    folder.write("store/Viewer.plist", "{ Kept = x; }");
    if (!scene::setAttribute(file(), scene::accessList, scene::listForUser(6))) {
        GTEST_SKIP() << "this file system stores no access lists";
    }
    defaults().setObject_forKey("new", "Saved");
    EXPECT_TRUE(defaults().synchronize());
    EXPECT_EQ(scene::attribute(file(), scene::accessList), scene::listForUser(6));
    EXPECT_EQ(saved(), (NSDictionary{{"Kept", "x"}, {"Saved", "new"}}));
}

TEST_F(DefaultsSaving, waitsForALockHoweverManySignalsArrive) {
    folder.write("store/Viewer.plist", "{ Kept = x; }");
    const int held = ::open((folder / "store").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::flock(held, LOCK_EX), 0);
    const kit::Interruptions interruptions([] {}, LONG_MAX);
    timespec start{};
    timespec end{};
    ::clock_gettime(CLOCK_MONOTONIC, &start);
    defaults().setObject_forKey("new", "Saved");
    EXPECT_FALSE(defaults().synchronize());
    ::clock_gettime(CLOCK_MONOTONIC, &end);
    EXPECT_GE((end.tv_sec - start.tv_sec) * 1000 + (end.tv_nsec - start.tv_nsec) / 1'000'000, 499);
    ::close(held);
}

TEST_F(DefaultsSaving, followsNoLinkThatAnotherUserPlantedInASharedFolder) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can act as two users";
    }
    const std::string precious = folder.write("precious.plist", "{ Precious = x; }");
    ASSERT_EQ(::chmod(folder.makeFolder("store").c_str(), 01777), 0);
    ASSERT_EQ(::symlink(precious.c_str(), file().c_str()), 0);
    ASSERT_EQ(::lchown(file().c_str(), 65534, 65534), 0);
    defaults().setObject_forKey("new", "Saved");
    expectRefusal("ermission");
    EXPECT_EQ(kit::contentsOf(precious), "{ Precious = x; }");
}

TEST_F(DefaultsSaving, failsWhereItMayNotWriteAndWithoutAFolder) {
    folder.write("store/Viewer.plist", "{ Kept = x; }");
    ASSERT_EQ(::chmod((folder / "store").c_str(), 0555), 0);
    kit::expectAsUser([] {
        defaults().setObject_forKey("new", "Saved");
        return !defaults().synchronize();
    });
    const kit::Path nowhere(detail::overrides::defaultsFolder, "");
    NSString error;
    defaults().setObject_forKey("new", "Saved");
    EXPECT_FALSE(defaults().synchronize(&error));
    EXPECT_TRUE(error);
}

#if __has_include(<linux/seccomp.h>)
TEST_F(DefaultsSaving, writesIntoTheFolderThatHasThePathOnceTheLockIsFree) {
    for (const bool isReplaced : {true, false}) {
        folder.makeFolder("store");
        static int held;
        static std::string place;
        static bool replaces;
        held = ::open((folder / "store").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        place = folder / "store";
        replaces = isReplaced;
        ASSERT_EQ(::flock(held, LOCK_EX), 0);
        EXPECT_EQ(kit::inChild([this] {
                      EXPECT_TRUE(kit::refuseCall(SYS_clock_nanosleep, 0) &&
                                  kit::refuseCall(SYS_nanosleep, 0));
                      const auto replace = [](const std::string&) { // while it waits
                          EXPECT_EQ(::rename(place.c_str(), (place + ".moved").c_str()), 0);
                          EXPECT_TRUE(!replaces || ::mkdir(place.c_str(), 0700) == 0);
                          ::flock(held, LOCK_UN);
                      };
                      detail::LockedFile locked;
                      EXPECT_TRUE(
                          locked.open(file(), detail::LockedFile::Folder::make, {10'000, replace}, nullptr));
                      EXPECT_TRUE(locked.replace(NSDictionary{{"Saved", "new"}}, nullptr));
                  }),
                  0);
        EXPECT_EQ(saved(), (NSDictionary{{"Saved", "new"}}));
        EXPECT_FALSE(kit::exists(folder / "store.moved/Viewer.plist"));
        ::close(held);
        kit::removeTree(folder / "store");
        kit::removeTree(folder / "store.moved");
    }
}

TEST_F(DefaultsSaving, givesUpOnALockThatIsNotReleased) {
    folder.write("store/Viewer.plist", "{ Kept = x; }");
    const int held = ::open((folder / "store").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::flock(held, LOCK_EX), 0);
    kit::expectInChild([] {
        // Sleeping takes no time here.
        EXPECT_TRUE(kit::refuseCall(SYS_clock_nanosleep, 0) && kit::refuseCall(SYS_nanosleep, 0));
        NSString error;
        defaults().setObject_forKey("new", "Saved");
        EXPECT_FALSE(defaults().synchronize(&error));
        EXPECT_TRUE(error.containsString("locked for 0.5 seconds"));
    });
    EXPECT_EQ(kit::contentsOf(file()), "{ Kept = x; }");
    ::close(held);
}
#endif

TEST_F(DefaultsSaving, inAForkedChildIsForWhatTheChildHasChanged) {
    defaults().setObject_forKey("parent's", "Saved");
    kit::expectInChild([this] {
        EXPECT_EQ(defaults().objectForKey("Saved"), NSObject("parent's"));
        defaults().setObject_forKey("child's", "Child");
        EXPECT_TRUE(defaults().synchronize());
        EXPECT_EQ(saved(), (NSDictionary{{"Child", "child's"}}));
    });
    defaults().setObject_forKey("newer", "Saved");
    EXPECT_TRUE(defaults().synchronize());
    EXPECT_EQ(saved(), (NSDictionary{{"Child", "child's"}, {"Saved", "newer"}}));
}

TEST_F(DefaultsSaving, isNotKeptFromTheLockByAChildForkedMeanwhile) {
    // The child gets what the writer had open; its end, and nothing else, must not be what frees the folder.
    std::atomic<bool> stop{false};
    std::atomic<int> failures{0};
    std::thread writer([&] {
        for (int round = 0; !stop; ++round) {
            defaults().setObject_forKey(round, "Saved");
            failures += defaults().synchronize() ? 0 : 1;
        }
    });
    std::vector<pid_t> children;
    for (int count = 0; count < 50; ++count) {
        const pid_t child = kit::isSanitized ? -1 : ::fork();
        if (child == 0) {
            ::alarm(60);
            ::pause();
            kit::leave(0);
        }
        if (child > 0) {
            children.push_back(child);
        }
    }
    stop = true;
    writer.join();
    defaults().setObject_forKey("last", "Saved");
    EXPECT_TRUE(defaults().synchronize());
    for (const pid_t child : children) {
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
    }
    EXPECT_EQ(failures, 0);
}

TEST_F(DefaultsSaving, losesNoChangeOfConcurrentThreads) {
    const auto nameOf = [](int number, int key) {
        return "Set" + std::to_string(number) + "." + std::to_string(key);
    };
    std::atomic<int> failures{0};
    useThreads(4, [&](int number) {
        for (int key = 0; key < 25; ++key) {
            defaults().setObject_forKey(key, nameOf(number, key));
            failures += defaults().synchronize() ? 0 : 1;
        }
    });
    EXPECT_EQ(failures, 0);
    const NSDictionary all = saved();
    EXPECT_EQ(all.count(), 100U);
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(all.objectForKey(nameOf(i / 25, i % 25)), NSObject(i % 25));
    }
}
