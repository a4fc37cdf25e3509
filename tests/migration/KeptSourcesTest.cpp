// SPDX-License-Identifier: MIT
// Sources that cannot be copied or removed as a whole: the code says so, the source is as it was, and calls
// that follow lose nothing.
#include <cerrno>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "tests/kit/Child.h"
#include "tests/kit/Items.h"
#include "tests/migration/MigrationScene.h"
#include "tests/migration/faults/Leftovers.h"

using namespace ZQFoundation;
using namespace scene;

namespace {

constexpr uid_t somebody = 65534; ///< the user of `kit::inUnprivilegedChild`
constexpr uid_t somebodyElse = 65533;

/// base/from/tree and base/from/file, which belong to an ordinary user where a test runs as root.
struct Tree {
    Tree() {
        folder.write("from/file", "a file");
        folder.write("from/tree/one", "the only copy");
        folder.write("from/tree/inner/two", "another");
        folder.write("from/tree/inner/deeper/three", "one more");
        folder.write("from/tree/after", "the last one");
        folder.makeFolder("to");
        folder.setMode("to", 0777);
        folder.setMode("from", 0777);
        for (const auto& [name, what] : folder.digest("from")) {
            if (kit::isRoot() && !name.empty()) {
                folder.setOwner("from/" + name, somebody);
            }
        }
    }
    std::string operator/(const std::string& name) const { return folder / name; }
    Digest source() const { return folder.digest("from/tree", Detail::times); }
    void expectNoLeftovers() const { EXPECT_EQ(Words{}, faults::leftoversBelow(folder.path())); }

    MigrationFolder folder;
};

/// A source that can be copied and not be removed: both are whole, also after the same call again in other
/// ways. A copy of a folder that may not be written to cannot be overwritten either: then that is what fails.
void expectKept(const Tree& tree, bool isCopyRemovable = true) {
    const Digest before = tree.source();
    const auto expectWhole = [&](const char* copy) {
        EXPECT_EQ(shownDigest(tree.source()), shownDigest(before)) << copy;
        EXPECT_EQ(shownDigest(tree.folder.digest(copy, Detail::contents)),
                  shownDigest(tree.folder.digest("from/tree", Detail::contents)))
            << copy;
        tree.expectNoLeftovers();
    };
    EXPECT_EQ(migrateFolder(tree / "from/tree", tree / "to/tree"), 15U);
    expectWhole("to/tree");
    EXPECT_EQ(migrateFolder(tree / "from/tree", tree / "to/tree"), 31U);
    EXPECT_EQ(migrateFolder(tree / "from/tree", tree / "to/tree", renaming), 15U);
    expectWhole("to/tree");
    expectWhole("to/tree 1.");
    for (const bool keeps : {false, true}) {
        const unsigned whenRemovable = keeps ? 0 : 15;
        EXPECT_EQ(migrateFolder(tree / "from/tree", tree / "to/tree", {keeps, false, true, false}),
                  isCopyRemovable ? whenRemovable : 36U);
        expectWhole("to/tree");
        expectWhole("to/tree 1.");
    }
}

void expectFileKept(const Tree& tree) {
    for (const Flags& flags : {nothingAllowed, overwriting}) {
        EXPECT_EQ(migrateFile(tree / "from/file", tree / "to/file", flags), 15U);
        EXPECT_EQ(tree.folder.contents("from/file") + tree.folder.contents("to/file"), "a filea file");
    }
}

/// A source that cannot even be copied.
void expectNotCopied(const Tree& tree) {
    const Digest before = tree.source(); // of what may be seen
    for (const Flags& flags : {nothingAllowed, copying, overwriting, renaming}) {
        EXPECT_EQ(migrateFolder(tree / "from/tree", tree / "to/tree", flags), 37U);
        EXPECT_FALSE(tree.folder.has("to/tree"));
        EXPECT_EQ(shownDigest(tree.source()), shownDigest(before));
        tree.expectNoLeftovers();
    }
}

/// The type of a request is another one in each C library.
template <class Request>
int attributeFlags(int item, int& flags, int (*control)(int, Request, ...)) {
    return control(item, static_cast<Request>(FS_IOC_GETFLAGS), &flags);
}

/// The flags of an item that make it immutable or append-only, for a scope.
class Flagged {
public:
    Flagged(const std::string& path, int flag)
        : item_(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
        isSet_ = attributeFlags(item_, before_, &::ioctl) == 0 && set(before_ | flag);
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
    for (const std::string name : {"from/tree/inner", "from/tree/inner/deeper"}) {
        const Tree tree;
        tree.folder.setMode(name, 0555);
        SCOPED_TRACE(name);
        kit::expectAsUser([&] {
            expectKept(tree, false);
            // Once it can be removed, it is.
            tree.folder.setMode(name, 0755);
            EXPECT_EQ(migrateFolder(tree / "from/tree", tree / "to/later"), 0U);
            EXPECT_FALSE(tree.folder.has("from/tree"));
            EXPECT_EQ(tree.folder.contents("to/later/inner/deeper/three"), "one more");
        });
    }
}

TEST(KeptSources, areWholeInAFolderThatMayNotBeWrittenTo) {
    const Tree tree;
    if (kit::isRoot()) {
        tree.folder.setOwner("from", somebody);
    }
    tree.folder.setMode("from", 0555);
    kit::expectAsUser([&] {
        expectKept(tree);
        expectFileKept(tree);
    });
}

TEST(KeptSources, ofAnotherUserAreWhole) {
    if (!kit::isRoot()) {
        GTEST_SKIP() << "only root can give files to another user";
    }
    // A folder inside, a sticky one with a file inside, and all that is in a sticky folder.
    const struct {
        Words given;
        const char* sticky;
    } rows[] = {{{"from/tree/inner"}, nullptr},
                {{"from/tree/inner", "from/tree/inner/two"}, "from/tree/inner"},
                {{"from/tree", "from/file"}, "from"}};
    for (const auto& row : rows) {
        const Tree tree;
        for (const std::string& name : row.given) {
            tree.folder.setOwner(name, somebodyElse);
        }
        if (row.sticky != nullptr) {
            tree.folder.setMode(row.sticky, 01777);
        }
        SCOPED_TRACE(row.given.back());
        kit::expectAsUser([&] {
            expectKept(tree);
            if (&row == std::end(rows) - 1) {
                expectFileKept(tree);
            }
        });
    }
    const Tree tree;
    tree.folder.setOwner("from/tree/inner", somebodyElse);
    tree.folder.setMode("from/tree/inner", 0700);
    kit::expectAsUser([&] { expectNotCopied(tree); });
    EXPECT_EQ(tree.folder.contents("from/tree/inner/two"), "another");
}

TEST(KeptSources, areNotCopiedInPart) {
    // Whatever cannot be read: a file, a folder that cannot be listed, one that cannot be entered.
    for (const auto& [name, mode] :
         {std::pair("one", 0000U), std::pair("inner/two", 0200U), std::pair("inner", 0000U),
          std::pair("inner/deeper", 0300U), std::pair("inner", 0444U)}) {
        const Tree tree;
        const std::string path = std::string("from/tree/") + name;
        tree.folder.setMode(path, mode);
        SCOPED_TRACE(name);
        kit::expectAsUser([&] { expectNotCopied(tree); });
        EXPECT_EQ(kit::modeOf(tree / path), mode);
        tree.folder.setMode(path, 0755);
        EXPECT_EQ(tree.folder.contents("from/tree/inner/deeper/three"), "one more");
        EXPECT_EQ(tree.folder.contents("from/tree/one"), "the only copy");
    }
}

TEST(KeptSources, areWholeWithImmutableOrAppendOnlyItemsInside) {
    for (const int flag : {FS_IMMUTABLE_FL, FS_APPEND_FL}) {
        for (const std::string name : {"inner/two", "inner", "inner/deeper", ""}) {
            const Tree tree;
            const Flagged item(tree / ("from/tree/" + name), flag);
            if (!item.isSet()) {
                GTEST_SKIP() << noFlags;
            }
            SCOPED_TRACE((flag == FS_APPEND_FL ? "append-only: " : "immutable: ") + name);
            expectKept(tree);
        }
    }
}

TEST(KeptSources, ofImmutableOrAppendOnlyFilesAreWhole) {
    for (const int flag : {FS_IMMUTABLE_FL, FS_APPEND_FL}) {
        const Tree tree;
        tree.folder.writeFiles({"a.log", "sub/b.log", "sub/c.log"}, "logs/");
        const Flagged file(tree / "from/file", flag);
        const Flagged log(tree / "logs/sub/b.log", flag);
        if (!file.isSet() || !log.isSet()) {
            GTEST_SKIP() << noFlags;
        }
        expectFileKept(tree);
        EXPECT_EQ(tree.folder.migrateLogs("logs", "to/batch", creating),
                  "{ a.log = 0; sub/b.log = 15; sub/c.log = 0; }");
        EXPECT_EQ(tree.folder.contents("logs/sub/b.log"), "sub/b.log");
        EXPECT_EQ(tree.folder.contents("to/batch/sub/b.log"), "sub/b.log");
        tree.expectNoLeftovers();
    }
}

TEST(KeptSources, ofABatchAreWholeInAFolderThatMayNotBeWrittenTo) {
    const Tree tree;
    tree.folder.setMode("from/tree/inner", 0555);
    kit::expectAsUser([&] {
        for (const bool isSecond : {false, true}) {
            const auto codes = migrateFiles(nullptr, tree / "from/tree", tree / "to/tree", DotFiles::included,
                                            {false, true, isSecond, false});
            EXPECT_EQ(codes.condensedDescription(),
                      isSecond ? "{ inner/two = 15; }"
                               : "{ after = 0; inner/deeper/three = 0; inner/two = 15; one = 0; }");
            EXPECT_EQ(tree.folder.contents("from/tree/inner/two"), "another") << isSecond;
            EXPECT_EQ(tree.folder.contents("to/tree/inner/two"), "another") << isSecond;
        }
        EXPECT_EQ(tree.folder.contents("to/tree/inner/deeper/three"), "one more");
        tree.expectNoLeftovers();
    });
}
