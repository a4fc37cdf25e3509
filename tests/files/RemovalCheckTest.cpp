// SPDX-License-Identifier: MIT
// The last check of what is to be removed.
#include "foundation/files/RemovalCheck.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/files/TreeCopy.h"
#include "foundation/system/OpenFolders.h"
#include "tests/kit/Child.h"
#include "tests/kit/Items.h"
#include "tests/kit/Mounts.h"
#include "tests/kit/ScratchFolder.h"

using namespace ZQFoundation;
using detail::CopyRecord;
using detail::Descriptor;
using detail::isTreeRemovable;

namespace {

class RemovalCheck : public ::testing::Test {
public:
    std::string in(const std::string& name) const { return folder / name; }

    /// A tree that was copied, and its record.
    void copyTree() {
        folder.write("tree/one", "1");
        folder.write("tree/sub/two", "2");
        folder.link("one", "tree/sub/link");
        folder.makeFolder("tree/empty");
        const Descriptor parent(::open(in("").c_str(), O_PATH | O_DIRECTORY));
        detail::TreeCopy copy("tree", {&record, nullptr});
        ASSERT_TRUE(copy.run(open("tree"), {parent.number(), "tree", parent.number(), "copy", true}));
        record.complete();
    }
    Descriptor open(const std::string& name) const {
        return Descriptor(::open(in(name).c_str(), detail::folderFlags));
    }
    /// 0, or why the tree may not be removed.
    int reason(const CopyRecord* what) const {
        const Descriptor tree = open("tree");
        return isTreeRemovable(tree, what) ? 0 : errno;
    }

    kit::ScratchFolder folder;
    CopyRecord record;
};

const struct Change {
    const char* what;
    std::function<void(const RemovalCheck&)> change;
} changes[] = {
    {"added",
     [](const RemovalCheck& test) {
         test.folder.write("tree/sub/new", "");
     }},
    {"added to an empty folder",
     [](const RemovalCheck& test) {
         test.folder.write("tree/empty/new", "");
     }},
    {"removed",
     [](const RemovalCheck& test) {
         ::unlink(test.in("tree/one").c_str());
     }},
    {"replaced",
     [](const RemovalCheck& test) {
         test.folder.write("tree/new", "1");
         ::rename(test.in("tree/new").c_str(), test.in("tree/one").c_str());
     }},
    {"written in place",
     [](const RemovalCheck& test) {
         test.folder.write("tree/one", "x");
     }},
    {"appended to",
     [](const RemovalCheck& test) {
         const Descriptor file(::open(test.in("tree/sub/two").c_str(), O_WRONLY | O_APPEND));
         ASSERT_EQ(::write(file.number(), "x", 1), 1);
     }},
    {"renamed",
     [](const RemovalCheck& test) {
         ::rename(test.in("tree/one").c_str(), test.in("tree/uno").c_str());
     }},
    {"moved to another folder",
     [](const RemovalCheck& test) {
         ::rename(test.in("tree/one").c_str(), test.in("tree/empty/one").c_str());
     }},
    {"given other permissions",
     [](const RemovalCheck& test) {
         ::chmod(test.in("tree/sub").c_str(), 0700);
     }},
    {"given other times by who sets them back",
     [](const RemovalCheck& test) {
         struct stat before {};
         ASSERT_EQ(::stat(test.in("tree/one").c_str(), &before), 0);
         test.folder.write("tree/one", "y");
         const timespec times[2] = {before.st_atim, before.st_mtim};
         ASSERT_EQ(::utimensat(AT_FDCWD, test.in("tree/one").c_str(), times, 0), 0);
     }},
};

} // namespace

TEST_F(RemovalCheck, allowsATreeThatIsAsItWasCopied) {
    copyTree();
    EXPECT_EQ(record.count(), 5U);
    EXPECT_EQ(reason(&record), 0);
    EXPECT_EQ(reason(nullptr), 0);
}

TEST_F(RemovalCheck, seesEveryChange) {
    for (const Change& row : changes) {
        record = CopyRecord();
        copyTree();
        row.change(*this);
        EXPECT_EQ(reason(&record), ESTALE) << row.what;
        EXPECT_EQ(reason(nullptr), 0) << row.what << ": without a record anything may be removed";
        ASSERT_EQ(::system(("rm -rf '" + in("tree") + "' '" + in("copy") + "'").c_str()), 0);
    }
}

TEST_F(RemovalCheck, seesWhoWrites) {
    copyTree();
    {
        const Descriptor writer(::open(in("tree/sub/two").c_str(), O_WRONLY | O_APPEND));
        EXPECT_EQ(reason(&record), ETXTBSY);
        EXPECT_EQ(reason(nullptr), 0);
    }
    const Descriptor reader(::open(in("tree/sub/two").c_str(), O_RDONLY));
    EXPECT_EQ(reason(&record), 0);
}

TEST_F(RemovalCheck, seesFoldersThatThisUserMayNotEmpty) {
    folder.write("tree/sub/two", "2");
    ASSERT_EQ(::system(("chown -R 65534 '" + in("") + "'").c_str()), 0);
    ::chmod(in("tree/sub").c_str(), 0500);
    kit::expectAsUser([this] { EXPECT_EQ(reason(nullptr), EACCES); });
    ::chmod(in("tree/sub").c_str(), 0700);
    kit::expectAsUser([this] { EXPECT_EQ(reason(nullptr), 0); });
    // An empty folder goes whatever its permissions are.
    folder.makeFolder("tree/empty");
    ASSERT_EQ(::system(("chown 65534 '" + in("tree/empty") + "'").c_str()), 0);
    ::chmod(in("tree/empty").c_str(), 0500);
    kit::expectAsUser([this] { EXPECT_EQ(reason(nullptr), 0); });
    ::chmod(in("tree/empty").c_str(), 0000);
    EXPECT_EQ(kit::inUnprivilegedChild([this] { EXPECT_NE(reason(nullptr), 0); }), 0)
        << "nobody knows what it holds";
}

TEST_F(RemovalCheck, seesStickyFoldersWithItemsOfOthers) {
    if (!kit::isRoot()) {
        GTEST_SKIP() << "gives files to other users";
    }
    folder.write("tree/sub/two", "2");
    ::chmod(in("tree").c_str(), 0777);
    ::chmod(in("tree/sub").c_str(), 01777);
    kit::expectAsUser([this] { EXPECT_EQ(reason(nullptr), EPERM); });
    folder.setOwner("tree/sub/two", 65534);
    kit::expectAsUser([this] { EXPECT_EQ(reason(nullptr), 0); });
    EXPECT_EQ(reason(nullptr), 0);
}

TEST_F(RemovalCheck, seesWhatNobodyMayChange) {
    folder.write("tree/sub/two", "2");
    const Descriptor file(::open(in("tree/sub/two").c_str(), O_RDONLY));
    for (const int flag : {FS_IMMUTABLE_FL, FS_APPEND_FL}) {
        if (::ioctl(file.number(), FS_IOC_SETFLAGS, &flag) != 0) {
            GTEST_SKIP() << "such files cannot be made here";
        }
        const int found = reason(nullptr);
        const int none = 0;
        ASSERT_EQ(::ioctl(file.number(), FS_IOC_SETFLAGS, &none), 0);
        EXPECT_EQ(found, EPERM) << flag;
    }
    EXPECT_EQ(reason(nullptr), 0);
}

TEST_F(RemovalCheck, seesMountPoints) {
    folder.write("tree/sub/two", "2");
    folder.write("other/file", "3");
    kit::withOwnMounts([this] {
        EXPECT_EQ(::mount("none", in("tree/sub").c_str(), "tmpfs", 0, nullptr), 0);
        EXPECT_EQ(reason(nullptr), EBUSY);
        EXPECT_EQ(::umount(in("tree/sub").c_str()), 0);
        // A folder of the same file system does not show by a device number.
        EXPECT_TRUE(kit::bindMount(in("other"), in("tree/sub")));
        EXPECT_EQ(reason(nullptr), EBUSY);
        EXPECT_EQ(::umount(in("tree/sub").c_str()), 0);
        EXPECT_TRUE(kit::bindMount(in("other/file"), in("tree/sub/two")));
        EXPECT_EQ(reason(nullptr), EBUSY);
        EXPECT_EQ(::umount(in("tree/sub/two").c_str()), 0);
        EXPECT_TRUE(kit::bindMount(in("other"), in("tree")));
        EXPECT_EQ(reason(nullptr), EBUSY);
        return true;
    });
}
