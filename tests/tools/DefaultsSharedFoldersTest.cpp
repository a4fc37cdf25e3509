// SPDX-License-Identifier: MIT
// The tool `defaults` in folders where everybody may make items, such as /tmp: nothing that another user has
// planted there leads it to files elsewhere, or learns from it.
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/kit/Environment.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/tools/ToolScene.h"

using namespace ZQFoundation;
using scene::Outcome;
using scene::Tool;
using scene::Words;

namespace {

constexpr uid_t nobody = 65534;
constexpr uid_t somebody = 12345;

/// A folder like /tmp, in which the user nobody plants, and a list of the tool's user elsewhere.
class DefaultsSharedFolders : public testing::Test {
protected:
    void SetUp() override {
        if (::geteuid() != 0) {
            GTEST_SKIP() << "only root can act as two users";
        }
        tool.folder().makeFolder("shared");
        tool.folder().makeFolder("private");
        ASSERT_EQ(::chmod(shared().c_str(), 01777), 0);
        tool.folder().write("private/list.plist", precious);
        ASSERT_EQ(::chmod((elsewhere() + "/list.plist").c_str(), 0600), 0);
        tool.done({"write", "d", "secret", "v"});
    }

    std::string shared() const { return tool.folder() / "shared"; }
    std::string elsewhere() const { return tool.folder() / "private"; }

    std::string link(const std::string& target, const char* name, uid_t owner = nobody) const {
        std::string path = shared().append("/").append(name);
        EXPECT_EQ(::symlink(target.c_str(), path.c_str()), 0);
        EXPECT_EQ(::lchown(path.c_str(), owner, owner), 0);
        return path;
    }

    /// Commands that would go through the path, which ends in ".plist", for reading or writing.
    void expectAllRefused(const std::string& path) const {
        const Words rows[] = {{"export", "d", path},
                              {"import", "d", path},
                              {"read", path},
                              {"write", path, "k", "v"},
                              {"remove", path, "precious"},
                              {"remove", path},
                              {"rename", path, "precious", "k"}};
        for (const Words& row : rows) {
            const std::string message = tool.refused(row);
            EXPECT_TRUE(scene::contains(message, "shared/")) << message;
            EXPECT_TRUE(scene::contains(message, "ermission")) << row[0] << ": " << message;
        }
        EXPECT_EQ(kit::contentsOf(elsewhere() + "/list.plist"), precious);
        EXPECT_EQ(tool.done({"read", "d"}), "{\n    secret = v;\n}\n");
    }

    static constexpr const char* precious = "{ precious = yes; }";
    const Tool tool;
};

} // namespace

TEST_F(DefaultsSharedFolders, linksOfOthersAreNotFollowed) {
    expectAllRefused(link(elsewhere() + "/list.plist", "list.plist"));
    link(elsewhere(), "folder");
    expectAllRefused(shared() + "/folder/list.plist");
    link("folder/list.plist", "second.plist", 0); // an own one, to a planted one
    expectAllRefused(shared() + "/second.plist");
}

TEST_F(DefaultsSharedFolders, danglingLinksOfOthersMakeNoFile) {
    const std::string path = link(elsewhere() + "/new.plist", "dangling.plist");
    tool.refused({"export", "d", path});
    tool.refused({"write", path, "k", "v"});
    EXPECT_EQ(::access((elsewhere() + "/new.plist").c_str(), F_OK), -1);
    link(elsewhere() + "/config", "config");
    const kit::Variable configuration("XDG_CONFIG_HOME", (shared() + "/config").c_str());
    tool.refused({"write", "d", "k", "v"});
    EXPECT_EQ(::access((elsewhere() + "/config").c_str(), F_OK), -1);
}

TEST_F(DefaultsSharedFolders, filesAndPipesOfOthersAreNotWrittenTo) {
    const std::string file = tool.folder().write("shared/file.plist", "{ theirs = yes; }");
    const std::string pipe = shared() + "/pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0666), 0);
    for (const std::string& path : {file, pipe}) {
        ASSERT_EQ(::chmod(path.c_str(), 0666), 0);
        ASSERT_EQ(::chown(path.c_str(), nobody, nobody), 0);
        tool.refused({"export", "d", path});
    }
    tool.refused({"write", file, "k", "v"});
    tool.refused({"remove", file});
    EXPECT_EQ(kit::contentsOf(file), "{ theirs = yes; }");
    EXPECT_EQ(tool.done({"read", file, "theirs"}), "yes\n") << "reading a file harms nobody";
}

TEST_F(DefaultsSharedFolders, linksOfTheUserAndOfTheFoldersOwnerAreFollowed) {
    tool.done({"write", link(elsewhere() + "/list.plist", "own.plist", 0), "k", "own"});
    ASSERT_EQ(::chown(shared().c_str(), somebody, somebody), 0);
    tool.done({"write", link(elsewhere() + "/list.plist", "owners.plist", somebody), "k2", "owner's"});
    EXPECT_EQ(tool.done({"read", elsewhere() + "/list"}),
              "{\n    k = own;\n    k2 = \"owner's\";\n    precious = yes;\n}\n");
    const std::string theirs = link(elsewhere() + "/list.plist", "theirs.plist");
    tool.refused({"write", theirs, "k", "v"});
    ASSERT_EQ(::chmod(shared().c_str(), 0777), 0); // where the rule does not hold
    tool.done({"write", theirs, "k", "theirs"});
    EXPECT_EQ(tool.done({"read", elsewhere() + "/list", "k"}), "theirs\n");
}
