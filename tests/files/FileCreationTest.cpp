// SPDX-License-Identifier: MIT
// Creating files with contents: modes, existing files, and what a failure leaves.
#include <cerrno>
#include <csignal>
#include <initializer_list>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/files/FileInformation.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSDate.h"
#include "tests/files/CopyScene.h"
#include "tests/kit/Child.h"
#include "tests/kit/Items.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/Threads.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using kit::dataOf;

namespace {

bool create(const std::string& path, const NSData& contents, const NSDictionary& attributes = nullptr) {
    return NSFileManager::defaultManager().createFileAtPath_contents_attributes(kit::fromBytes(path),
                                                                                contents, attributes);
}

std::size_t namesIn(const std::string& path) {
    return NSFileManager::defaultManager().contentsOfDirectoryAtPath_error(path).count();
}

class FileCreation : public scene::FolderTest {};

TEST_F(FileCreation, writesTheContents) {
    const std::string all = std::string("\0a\xFF", 3) + std::string(3'000'000, 'x');
    EXPECT_TRUE(create(in("f"), dataOf(all)));
    EXPECT_EQ(kit::contentsOf(in("f")), all);
    EXPECT_TRUE(create(in("f"), dataOf("short")));
    EXPECT_EQ(kit::contentsOf(in("f")), "short");
    EXPECT_EQ(namesIn(folder.path()), 1u) << "nothing is left beside it";
}

TEST_F(FileCreation, nilContentsMakeAnEmptyFile) {
    EXPECT_TRUE(create(in("nil"), nullptr));
    EXPECT_TRUE(create(in("empty"), NSData::data()));
    EXPECT_TRUE(kit::exists(in("nil")) && kit::exists(in("empty")));
    EXPECT_EQ(kit::contentsOf(in("nil")) + kit::contentsOf(in("empty")), "");
    folder.write("f", "old");
    EXPECT_TRUE(create(in("f"), nullptr));
    EXPECT_EQ(kit::contentsOf(in("f")), "");
}

TEST_F(FileCreation, aNewFileHasTheOrdinaryMode) {
    const kit::Umask umask(026);
    EXPECT_TRUE(create(in("f"), nullptr));
    EXPECT_EQ(kit::modeOf(in("f")), 0640u);
}

TEST_F(FileCreation, anExistingFilesModeIsKept) {
    const kit::Umask umask(022);
    for (const mode_t mode :
         std::initializer_list<mode_t>{0600u, 0666u, 0444u, 0u, 0751u, 04755u, 02710u, 01644u}) {
        folder.write("f", "old");
        folder.setMode("f", mode);
        EXPECT_TRUE(create(in("f"), dataOf("new")));
        EXPECT_EQ(kit::modeOf(in("f")), mode) << std::oct << mode;
        EXPECT_EQ(::unlink(in("f").c_str()), 0);
    }
}

TEST_F(FileCreation, theAccessListOfAnExistingFileIsKept) {
    folder.write("f", "old");
    if (!scene::setAttribute(in("f"), scene::accessList, scene::listForUser(6))) {
        GTEST_SKIP() << "this file system stores no access lists";
    }
    const mode_t mode = kit::modeOf(in("f"));
    EXPECT_TRUE(create(in("f"), dataOf("new")));
    EXPECT_EQ(scene::attribute(in("f"), scene::accessList), scene::listForUser(6));
    EXPECT_EQ(kit::modeOf(in("f")), mode);
}

TEST_F(FileCreation, anExistingFileGetsNoAccessListFromItsFolder) {
    folder.write("f", "old");
    folder.setMode("f", 0640);
    if (!scene::setAttribute(folder.path(), scene::listForNewItems, scene::listForUser(6))) {
        GTEST_SKIP() << "this file system stores no access lists";
    }
    EXPECT_TRUE(create(in("f"), dataOf("new")));
    EXPECT_EQ(scene::attribute(in("f"), scene::accessList), "(none)");
    EXPECT_EQ(kit::modeOf(in("f")), 0640U);
}

TEST_F(FileCreation, theRightToRunAsAnOwnerIsNotPassedOnToAnother) {
    if (!kit::isRoot()) {
        GTEST_SKIP() << "only root can give files to another user";
    }
    folder.write("f", "");
    folder.setOwner("f", 54321);
    folder.setMode("f", 06755);
    EXPECT_TRUE(create(in("f"), nullptr));
    EXPECT_EQ(kit::modeOf(in("f")), 0755u);
}

TEST_F(FileCreation, openDescriptorsAndOtherNamesKeepTheOldFile) {
    folder.write("f", "old");
    ASSERT_EQ(::link(in("f").c_str(), in("second").c_str()), 0);
    const int file = ::open(in("f").c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_TRUE(create(in("f"), dataOf("new")));
    char bytes[4] = "";
    EXPECT_EQ(::read(file, bytes, 3), 3);
    EXPECT_STREQ(bytes, "old");
    ::close(file);
    EXPECT_EQ(kit::contentsOf(in("second")), "old");
}

TEST_F(FileCreation, aLinkIsReplacedNotFollowed) {
    folder.write("target", "kept");
    folder.setMode("target", 0600);
    folder.link("target", "l");
    folder.link("no such", "dangling");
    folder.link("loop", "loop");
    const kit::Umask umask(022);
    EXPECT_TRUE(create(in("l"), dataOf("new")));
    EXPECT_TRUE(create(in("dangling"), dataOf("new")));
    EXPECT_TRUE(create(in("loop"), dataOf("new")));
    EXPECT_EQ(kit::contentsOf(in("dangling")) + kit::contentsOf(in("loop")), "newnew");
    EXPECT_EQ(kit::contentsOf(in("target")), "kept");
    EXPECT_EQ(kit::contentsOf(in("l")), "new");
    EXPECT_EQ(kit::modeOf(in("l")), 0644u);
    EXPECT_FALSE(kit::exists(in("no such")));
}

TEST_F(FileCreation, aPipeIsReplaced) {
    folder.makePipe("p");
    EXPECT_TRUE(create(in("p"), dataOf("new")));
    EXPECT_EQ(kit::contentsOf(in("p")), "new");
}

TEST_F(FileCreation, foldersAndWhatHasNoPlaceFail) {
    folder.makeFolder("d");
    folder.write("f", "kept");
    folder.link("d", "to-d");
    const std::string names[] = {"d", "d/", "d/.", "d/..", "no such/f", "f/", "f/x", std::string(300, 'n')};
    for (const std::string& name : names) {
        EXPECT_FALSE(create(in(name), dataOf("new"))) << name;
    }
    EXPECT_FALSE(create("", nullptr));
    EXPECT_FALSE(create("/", nullptr));
    EXPECT_FALSE(
        NSFileManager::defaultManager().createFileAtPath_contents_attributes(nullptr, nullptr, nullptr));
    EXPECT_EQ(namesIn(in("d")), 0u);
    EXPECT_EQ(namesIn(folder.path()), 3u);
    EXPECT_EQ(kit::contentsOf(in("f")), "kept");
    EXPECT_TRUE(create(in("to-d/f"), nullptr)) << "a link on the way is followed";
}

TEST_F(FileCreation, attributesAreApplied) {
    const NSDate date = NSDate::dateWithTimeIntervalSinceReferenceDate(-1234.25);
    const NSDictionary attributes{{NSFilePosixPermissions, 0462},
                                  {NSFileModificationDate, date},
                                  {NSFileOwnerAccountID, 54321},
                                  {NSFileGroupOwnerAccountID, 54322},
                                  {NSFileSize, 7}};
    folder.write("old", "");
    for (const char* const name : {"new", "old"}) {
        EXPECT_TRUE(create(in(name), dataOf("x"), attributes)) << "what is not permitted is ignored";
        struct stat information;
        ASSERT_TRUE(detail::getItemInformation(in(name), information));
        EXPECT_EQ(information.st_mode & 07777, 0462u);
        EXPECT_TRUE(detail::modificationDateOf(information).isEqualToDate(date));
        EXPECT_EQ(information.st_uid, kit::isRoot() ? 54321u : ::geteuid());
        EXPECT_EQ(information.st_gid == 54322u, kit::isRoot());
        EXPECT_EQ(information.st_size, 1);
    }
}

TEST_F(FileCreation, valuesOfAWrongKindAreIgnored) {
    const kit::Umask umask(022);
    const NSDictionary attributes{
        {NSFilePosixPermissions, "x"}, {NSFileModificationDate, 5}, {NSFileOwnerAccountID, NSArray::array()}};
    EXPECT_TRUE(create(in("f"), nullptr, attributes));
    EXPECT_EQ(kit::modeOf(in("f")), 0644u);
    for (const double odd : {1e300, -1e300, std::numeric_limits<double>::quiet_NaN()}) {
        const NSDate date = NSDate::dateWithTimeIntervalSinceReferenceDate(odd);
        EXPECT_TRUE(create(in("f"), nullptr, NSDictionary{{NSFileModificationDate, date}}));
    }
}

TEST_F(FileCreation, neverMoreReadableThanTheFileWillBe) {
    folder.write("f", "");
    folder.setMode("f", 0600);
    kit::Meanwhile watcher([&] {
        for (const NSObject& name :
             NSFileManager::defaultManager().contentsOfDirectoryAtPath_error(folder.path())) {
            struct stat information;
            if (detail::getItemInformation(in(kit::bytesOf(name.as<NSString>())), information)) {
                EXPECT_EQ(information.st_mode & 0077, 0u);
            }
        }
    });
    const NSDictionary secret{{NSFilePosixPermissions, 0600}};
    for (int round = 0; round < 500; ++round) {
        EXPECT_TRUE(create(in("f"), dataOf("x")));
        EXPECT_TRUE(create(in("g"), dataOf("x"), secret));
        ::unlink(in("g").c_str());
    }
    watcher.end();
}

TEST_F(FileCreation, othersSeeTheOldFileOrTheWholeNewOne) {
    const std::string one(100'000, '1');
    const std::string two(200'000, '2');
    ASSERT_TRUE(create(in("f"), dataOf(one)));
    kit::Meanwhile reader([&] {
        const std::string seen = kit::contentsOf(in("f"));
        EXPECT_TRUE(seen == one || seen == two) << seen.size();
    });
    for (int round = 0; round < 100; ++round) {
        EXPECT_TRUE(create(in("f"), dataOf(round % 2 == 0 ? two : one)));
    }
    reader.end();
}

TEST_F(FileCreation, aFailedWriteLeavesTheOldFileAndNothingBesideIt) {
    folder.write("f", "old");
    folder.setMode("", 0777);
    folder.setMode("f", 0666);
    kit::expectAsUser([this] {
        struct sigaction action {};
        action.sa_handler = [](int) {
            kit::leave(50);
        };
        ::sigaction(SIGXFSZ, &action, nullptr);
        const rlimit limit{1000, 1000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        if (create(in("f"), dataOf(std::string(5000, 'x')))) {
            return 1;
        }
        return kit::contentsOf(in("f")) == "old" && namesIn(folder.path()) == 1 ? 0 : 2;
    });
}

TEST_F(FileCreation, theFolderMustBeWritable) {
    folder.makeFolder("d");
    folder.write("d/f", "old");
    folder.setMode("d/f", 0666);
    folder.setMode("d", 0555);
    kit::expectAsUser([this] { return create(in("d/f"), nullptr) || create(in("d/new"), nullptr) ? 1 : 0; });
    EXPECT_EQ(kit::contentsOf(in("d/f")), "old");
}

TEST_F(FileCreation, theFolderNeedNotBeReadable) {
    folder.makeFolder("d");
    folder.setMode("d", 0333);
    kit::expectAsUser([this] { return create(in("d/f"), dataOf("x")); });
    EXPECT_TRUE(kit::exists(in("d/f")));
}

TEST_F(FileCreation, namesOfAnyBytesAndOfFullLengthAreMade) {
    EXPECT_TRUE(create(in("\xFF\xC3\x28"), dataOf("x")));
    EXPECT_EQ(kit::contentsOf(in("\xFF\xC3\x28")), "x");
    EXPECT_TRUE(create(in(std::string(255, 'n')), dataOf("x")));
    const kit::CurrentFolder current(folder.path());
    EXPECT_TRUE(create("relative", dataOf("x")));
    EXPECT_EQ(kit::contentsOf(in("relative")), "x");
}

TEST_F(FileCreation, pathsMayBeLongerThanTheSystemTakes) {
    const std::string name(200, 'n');
    const std::string deep = kit::makeChain(folder.path(), name, 50);
    EXPECT_TRUE(create(deep + "/f", dataOf("x")));
    EXPECT_TRUE(NSFileManager::defaultManager().fileExistsAtPath(deep + "/f"));
    EXPECT_TRUE(NSFileManager::defaultManager().removeItemAtPath_error(in(name)));
}

TEST_F(FileCreation, keepsTheErrorNumberAndEveryDescriptor) {
    kit::expectNoTrace([this] {
        create(in("f"), dataOf("x"));
        create(in("no such/f"), dataOf("x"));
    });
}

} // namespace
