// SPDX-License-Identifier: MIT
// A walk through folders of any depth, of which a few are open.
#include "foundation/system/OpenFolders.h"

#include <cerrno>
#include <string>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "tests/kit/Items.h"
#include "tests/kit/ScratchFolder.h"

using namespace ZQFoundation;
using namespace ZQFoundation::detail;

namespace {

constexpr std::size_t deep = 100;

struct stat statusOf(int folder) {
    struct stat information {};
    EXPECT_EQ(::fstat(folder, &information), 0);
    return information;
}

Descriptor folderAt(const std::string& path) { return Descriptor(::open(path.c_str(), folderFlags)); }

/// A walk from a scratch folder down a chain of folders called "d".
struct Walk {
    Walk() {
        kit::makeChain(scratch.path(), "d", deep);
        EXPECT_TRUE(folders.push(folderAt(scratch.path())));
        while (folders.depth() <= deep) {
            EXPECT_TRUE(folders.push(Descriptor(::openat(folders.current(), "d", folderFlags))));
        }
    }

    kit::ScratchFolder scratch;
    OpenFolders folders;
};

TEST(OpenFolders, keepsAFewOpenHoweverDeepTheWalkIs) {
    const int before = kit::openDescriptors();
    {
        const Walk walk;
        EXPECT_EQ(walk.folders.depth(), deep + 1);
        EXPECT_LE(kit::openDescriptors(), before + 8);
    }
    EXPECT_EQ(kit::openDescriptors(), before);
}

TEST(OpenFolders, findsTheWayBackUp) {
    Walk walk;
    std::string path = walk.scratch.path();
    for (std::size_t level = 0; level < deep; ++level) {
        path += "/d";
    }
    while (walk.folders.depth() > 1) {
        path.erase(path.rfind('/'));
        struct stat expected {};
        ASSERT_EQ(::stat(path.c_str(), &expected), 0);
        ASSERT_TRUE(walk.folders.reopenParent());
        ASSERT_TRUE(isSameItem(statusOf(walk.folders.parent()), expected)) << walk.folders.depth();
        walk.folders.pop();
        ASSERT_TRUE(isSameItem(statusOf(walk.folders.current()), expected));
    }
    EXPECT_EQ(path, walk.scratch.path());
    EXPECT_TRUE(walk.folders.reopenParent()) << "there is none";
}

TEST(OpenFolders, noticesThatAFolderWasMoved) {
    Walk walk;
    while (walk.folders.closeOne()) {
    }
    std::string path = walk.scratch.path();
    for (std::size_t level = 1; level < deep; ++level) {
        path += "/d";
    }
    ASSERT_EQ(::rename((path + "/d").c_str(), (walk.scratch / "moved").c_str()), 0);
    EXPECT_FALSE(walk.folders.reopenParent());
    EXPECT_EQ(errno, ESTALE);
    EXPECT_TRUE(walk.folders.restore(deep - 1, folderAt(path)));
    EXPECT_TRUE(walk.folders.reopenParent()) << "it is open";
    EXPECT_FALSE(walk.folders.restore(deep - 2, folderAt(path))) << "the folder of another level";
    EXPECT_EQ(errno, ESTALE);
    EXPECT_FALSE(walk.folders.restore(deep - 2, Descriptor()));
    EXPECT_EQ(errno, EBADF);
}

TEST(OpenFolders, takesNoDescriptorForAFolderThatIsNone) {
    OpenFolders folders;
    EXPECT_FALSE(folders.push(Descriptor()));
    EXPECT_EQ(errno, EBADF);
    EXPECT_EQ(folders.depth(), 0U);
    EXPECT_FALSE(folders.closeOne());
}

TEST(OpenFolders, knowWhatIsAtOrAboveAPlace) {
    const kit::ScratchFolder scratch;
    const Descriptor inner = folderAt(scratch.makeFolder("a/b"));
    const Descriptor beside = folderAt(scratch.makeFolder("a/c"));
    struct stat root {};
    ASSERT_EQ(::stat("/", &root), 0);
    EXPECT_TRUE(isAtOrAbove(statusOf(inner.number()), inner.number()));
    EXPECT_TRUE(isAtOrAbove(statusOf(folderAt(scratch / "a").number()), inner.number()));
    EXPECT_TRUE(isAtOrAbove(root, inner.number()));
    EXPECT_FALSE(isAtOrAbove(statusOf(beside.number()), inner.number()));
    EXPECT_FALSE(isAtOrAbove(statusOf(inner.number()), beside.number()));
    EXPECT_FALSE(isAtOrAbove(statusOf(inner.number()), folderAt(scratch / "a").number()));
    EXPECT_FALSE(isAtOrAbove(root, -1));
}

} // namespace
