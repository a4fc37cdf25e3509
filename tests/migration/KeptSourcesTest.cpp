// SPDX-License-Identifier: MIT
// Sources that cannot be copied or removed as a whole: the code says so, the source is as it was, and calls
// that follow lose nothing.
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/ioctl.h>

#include "tests/files/CopyScene.h"
#include "tests/migration/MigrationScene.h"
#include "tests/migration/faults/Leftovers.h"

using scene::creating;
using scene::Detail;
using scene::Digest;
using scene::Flags;
using scene::MigrationFolder;
using scene::overwriting;

namespace {

constexpr uid_t somebody = 65534; ///< the user of `checkedWithoutPrivileges`
constexpr uid_t somebodyElse = 65533;
constexpr const char onlyRoot[] = "only root can give files to another user";

void giveTo(const std::string& path, uid_t owner) {
    EXPECT_EQ(::lchown(path.c_str(), owner, owner), 0) << path << ": " << std::strerror(errno);
}

/// base/from/tree, which belongs to an ordinary user where a test runs as root.
struct Tree {
    Tree() {
        folder.file("from/tree/one", "the only copy");
        folder.file("from/tree/inner/two", "another");
        folder.file("from/tree/inner/deeper/three", "one more");
        folder.file("from/tree/after", "the last one");
        folder.folder("to");
        ::chmod((folder / "to").c_str(), 0777);
        ::chmod((folder / "from").c_str(), 0777);
        if (scene::isRoot()) {
            for (const auto& [name, what] : folder.digest("from/tree")) {
                giveTo(folder / (name.empty() ? "from/tree" : "from/tree/" + name), somebody);
            }
        }
    }
    std::string operator/(const std::string& name) const { return folder / name; }
    Digest source() const { return folder.digest("from/tree", Detail::times); }

    MigrationFolder folder;
};

/// A source that can be copied and not be removed: both are whole, also after the same call again in other
/// ways. A copy of a folder that may not be written to cannot be overwritten either: then that is what fails.
void expectKept(const Tree& tree, bool isCopyRemovable = true) {
    const Digest before = tree.source();
    const auto expectWhole = [&](const char* copy) {
        EXPECT_EQ(scene::shownDigest(tree.source()), scene::shownDigest(before)) << copy;
        EXPECT_EQ(scene::shownDigest(tree.folder.digest(copy, Detail::contents)),
                  scene::shownDigest(tree.folder.digest("from/tree", Detail::contents)))
            << copy;
        EXPECT_EQ(scene::Words{}, faults::leftoversBelow(tree.folder.path())) << copy;
    };
    EXPECT_EQ(scene::migrateFolder(tree / "from/tree", tree / "to/tree"), 15U);
    expectWhole("to/tree");
    EXPECT_EQ(scene::migrateFolder(tree / "from/tree", tree / "to/tree"), 31U);
    EXPECT_EQ(scene::migrateFolder(tree / "from/tree", tree / "to/tree", scene::renaming), 15U);
    expectWhole("to/tree");
    expectWhole("to/tree 1.");
    for (const bool keeps : {false, true}) {
        const unsigned whenRemovable = keeps ? 0 : 15;
        EXPECT_EQ(scene::migrateFolder(tree / "from/tree", tree / "to/tree", {keeps, false, true, false}),
                  isCopyRemovable ? whenRemovable : 36U);
        expectWhole(isCopyRemovable ? "to/tree" : "to/tree 1.");
    }
}

/// A source that cannot even be copied.
void expectNotCopied(const Tree& tree, const std::function<Digest()>& look) {
    const Digest before = look();
    for (const Flags& flags : {scene::nothingAllowed, scene::copying, overwriting, scene::renaming}) {
        EXPECT_EQ(scene::migrateFolder(tree / "from/tree", tree / "to/tree", flags), 37U);
        EXPECT_FALSE(scene::stands(tree / "to/tree"));
        EXPECT_EQ(scene::shownDigest(look()), scene::shownDigest(before));
        EXPECT_EQ(scene::Words{}, faults::leftoversBelow(tree.folder.path()));
    }
}

/// The flags of an item that make it immutable or append-only, for a scope.
class Flagged {
public:
    Flagged(const std::string& path, int flag)
        : item_(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
        isSet_ = ::ioctl(item_, FS_IOC_GETFLAGS, &before_) == 0 && set(before_ | flag);
    }
    Flagged(const Flagged&) = delete;
    Flagged& operator=(const Flagged&) = delete;
    ~Flagged() {
        if (isSet_) {
            EXPECT_TRUE(set(before_));
        }
        ::close(item_);
    }
    bool isSet() const { return isSet_; }

private:
    bool set(int flags) const { return ::ioctl(item_, FS_IOC_SETFLAGS, &flags) == 0; }

    int item_;
    int before_ = 0;
    bool isSet_ = false;
};

constexpr const char noFlags[] = "no file can be made immutable here";

} // namespace

TEST(KeptSources, areWholeWithAReadOnlyFolderInside) {
    const Tree tree;
    ASSERT_EQ(::chmod((tree / "from/tree/inner").c_str(), 0555), 0);
    EXPECT_TRUE(scene::checkedWithoutPrivileges([&] {
        expectKept(tree, false);
        // Once it can be removed, it is.
        ::chmod((tree / "from/tree/inner").c_str(), 0755);
        EXPECT_EQ(scene::migrateFolder(tree / "from/tree", tree / "to/later"), 0U);
        EXPECT_FALSE(scene::stands(tree / "from/tree"));
        EXPECT_EQ(scene::contentsOf(tree / "to/later/inner/two"), "another");
    }));
}

TEST(KeptSources, areWholeWithAReadOnlyFolderDeepInside) {
    const Tree tree;
    ASSERT_EQ(::chmod((tree / "from/tree/inner/deeper").c_str(), 0555), 0);
    EXPECT_TRUE(scene::checkedWithoutPrivileges([&] { expectKept(tree, false); }));
}

TEST(KeptSources, areWholeInAFolderThatMayNotBeWrittenTo) {
    const Tree tree;
    const std::string file = tree.folder.file("from/file", "a file");
    if (scene::isRoot()) {
        giveTo(file, somebody);
        giveTo(tree / "from", somebody);
    }
    ASSERT_EQ(::chmod((tree / "from").c_str(), 0555), 0);
    EXPECT_TRUE(scene::checkedWithoutPrivileges([&] {
        expectKept(tree);
        for (const Flags& flags : {scene::nothingAllowed, overwriting}) {
            EXPECT_EQ(scene::migrateFile(file, tree / "to/file", flags), 15U);
            EXPECT_EQ(scene::contentsOf(file), "a file");
            EXPECT_EQ(scene::contentsOf(tree / "to/file"), "a file");
        }
    }));
}

TEST(KeptSources, areWholeWithAFolderOfAnotherUserInside) {
    if (!scene::isRoot()) {
        GTEST_SKIP() << onlyRoot;
    }
    const Tree tree;
    giveTo(tree / "from/tree/inner", somebodyElse);
    EXPECT_TRUE(scene::checkedWithoutPrivileges([&] { expectKept(tree); }));
}

TEST(KeptSources, areWholeWithAStickyFolderOfAnotherUserInside) {
    if (!scene::isRoot()) {
        GTEST_SKIP() << onlyRoot;
    }
    const Tree tree;
    giveTo(tree / "from/tree/inner", somebodyElse);
    giveTo(tree / "from/tree/inner/two", somebodyElse);
    ASSERT_EQ(::chmod((tree / "from/tree/inner").c_str(), 01777), 0);
    EXPECT_TRUE(scene::checkedWithoutPrivileges([&] { expectKept(tree); }));
}

TEST(KeptSources, ofAnotherUserAreWholeInAStickyFolder) {
    if (!scene::isRoot()) {
        GTEST_SKIP() << onlyRoot;
    }
    const Tree tree;
    giveTo(tree / "from/tree", somebodyElse);
    giveTo(tree.folder.file("from/file", "a file"), somebodyElse);
    ASSERT_EQ(::chmod((tree / "from").c_str(), 01777), 0);
    EXPECT_TRUE(scene::checkedWithoutPrivileges([&] {
        expectKept(tree);
        EXPECT_EQ(scene::migrateFile(tree / "from/file", tree / "to/file"), 15U);
        EXPECT_EQ(scene::contentsOf(tree / "from/file"), "a file");
    }));
}

TEST(KeptSources, areNotCopiedInPart) {
    // Whatever cannot be read: a file, a folder that cannot be listed, one that cannot be entered.
    for (const auto& [name, mode] :
         {std::pair("one", 0000), std::pair("inner/two", 0200), std::pair("inner", 0000),
          std::pair("inner/deeper", 0300), std::pair("inner", 0444)}) {
        const Tree tree;
        const std::string path = tree / (std::string("from/tree/") + name);
        ASSERT_EQ(::chmod(path.c_str(), static_cast<mode_t>(mode)), 0);
        EXPECT_TRUE(scene::checkedWithoutPrivileges([&] { // what the look shows is what may be seen
            expectNotCopied(tree, [&] { return tree.source(); });
        })) << name;
        EXPECT_EQ(scene::modeOf(path), static_cast<mode_t>(mode));
        ASSERT_EQ(::chmod(path.c_str(), 0755), 0);
        EXPECT_EQ(scene::contentsOf(tree / "from/tree/inner/deeper/three"), "one more");
        EXPECT_EQ(scene::contentsOf(tree / "from/tree/one"), "the only copy");
    }
}

TEST(KeptSources, areNotCopiedWithoutAPrivateFolderOfAnotherUser) {
    if (!scene::isRoot()) {
        GTEST_SKIP() << onlyRoot;
    }
    const Tree tree;
    giveTo(tree / "from/tree/inner", somebodyElse);
    ASSERT_EQ(::chmod((tree / "from/tree/inner").c_str(), 0700), 0);
    EXPECT_TRUE(
        scene::checkedWithoutPrivileges([&] { expectNotCopied(tree, [&] { return tree.source(); }); }));
    EXPECT_EQ(scene::contentsOf(tree / "from/tree/inner/two"), "another");
}

TEST(KeptSources, areWholeWithImmutableOrAppendOnlyItemsInside) {
    for (const int flag : {FS_IMMUTABLE_FL, FS_APPEND_FL}) {
        for (const char* const name : {"inner/two", "inner", "inner/deeper", ""}) {
            const Tree tree;
            const Flagged item(tree / (std::string("from/tree/") + name), flag);
            if (!item.isSet()) {
                GTEST_SKIP() << noFlags;
            }
            SCOPED_TRACE(std::string(flag == FS_APPEND_FL ? "append-only: " : "immutable: ") + name);
            expectKept(tree);
        }
    }
}

TEST(KeptSources, ofImmutableOrAppendOnlyFilesAreWhole) {
    for (const int flag : {FS_IMMUTABLE_FL, FS_APPEND_FL}) {
        const MigrationFolder folder;
        for (const char* const name : {"from/a.log", "from/sub/b.log", "from/sub/c.log"}) {
            folder.file(name, name);
        }
        folder.folder("to");
        const Flagged item(folder / "from/sub/b.log", flag);
        if (!item.isSet()) {
            GTEST_SKIP() << noFlags;
        }
        EXPECT_EQ(scene::migrateFile(folder / "from/sub/b.log", folder / "to/file"), 15U);
        EXPECT_EQ(scene::migrateFile(folder / "from/sub/b.log", folder / "to/file", overwriting), 15U);
        EXPECT_EQ(scene::contentsOf(folder / "to/file"), "from/sub/b.log");
        const auto codes = scene::migrateFiles("log", folder / "from", folder / "to/batch",
                                               scene::DotFiles::included, creating);
        EXPECT_EQ(codes.condensedDescription(), "{ a.log = 0; sub/b.log = 15; sub/c.log = 0; }");
        EXPECT_EQ(scene::contentsOf(folder / "from/sub/b.log"), "from/sub/b.log");
        EXPECT_EQ(scene::contentsOf(folder / "to/batch/sub/b.log"), "from/sub/b.log");
        EXPECT_EQ(scene::Words{}, faults::leftoversBelow(folder.path()));
    }
}

TEST(KeptSources, ofABatchAreWholeInAFolderThatMayNotBeWrittenTo) {
    const Tree tree;
    ASSERT_EQ(::chmod((tree / "from/tree/inner").c_str(), 0555), 0);
    EXPECT_TRUE(scene::checkedWithoutPrivileges([&] {
        for (const bool isSecond : {false, true}) {
            const auto codes = scene::migrateFiles(nullptr, tree / "from/tree", tree / "to/tree",
                                                   scene::DotFiles::included, {false, true, isSecond, false});
            EXPECT_EQ(codes.integerForKey("inner/two"), 15) << isSecond;
            EXPECT_EQ(codes.integerForKey("inner/deeper/three"), 0) << isSecond;
            EXPECT_EQ(codes.count(), isSecond ? 1U : 4U);
            EXPECT_EQ(scene::contentsOf(tree / "from/tree/inner/two"), "another") << isSecond;
            EXPECT_EQ(scene::contentsOf(tree / "to/tree/inner/two"), "another") << isSecond;
        }
        EXPECT_EQ(scene::contentsOf(tree / "to/tree/inner/deeper/three"), "one more");
        EXPECT_EQ(scene::Words{}, faults::leftoversBelow(tree.folder.path()));
    }));
}

TEST(KeptSources, ofABatchAreWholeInAFolderThatCannotBeRead) {
    const Tree tree;
    ASSERT_EQ(::chmod((tree / "from/tree/inner").c_str(), 0000), 0);
    EXPECT_TRUE(scene::checkedWithoutPrivileges([&] {
        const auto codes = scene::migrateFiles(nullptr, tree / "from/tree", tree / "to/tree",
                                               scene::DotFiles::included, creating);
        EXPECT_EQ(codes.integerForKey("one"), 0);
        EXPECT_EQ(codes.integerForKey("after"), 0);
    }));
    ASSERT_EQ(::chmod((tree / "from/tree/inner").c_str(), 0755), 0);
    EXPECT_EQ(scene::contentsOf(tree / "from/tree/inner/two"), "another");
    EXPECT_EQ(scene::contentsOf(tree / "from/tree/inner/deeper/three"), "one more");
    EXPECT_EQ(scene::contentsOf(tree / "to/tree/one"), "the only copy");
}
