// SPDX-License-Identifier: MIT
// The home folder of the process and of accounts.
#include "foundation/files/HomeFolder.h"

#include <string>

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"

using namespace ZQFoundation;
using namespace ZQFoundation::detail;

namespace {

/// What the system says when it is asked in the simplest way.
std::string folderOfUser(uid_t user) {
    const passwd* const record = ::getpwuid(user);
    return record != nullptr ? record->pw_dir : "";
}

TEST(HomeFolder, isTheVariableWhenThatIsAbsolute) {
    const kit::Variable home("HOME", "/some/where");
    EXPECT_EQ(homeFolder(), "/some/where");
}

TEST(HomeFolder, followsTheVariableAtEveryCall) {
    {
        const kit::Variable home("HOME", "/one");
        EXPECT_EQ(homeFolder(), "/one");
    }
    const kit::Variable home("HOME", "/two");
    EXPECT_EQ(homeFolder(), "/two");
}

TEST(HomeFolder, isTheUserDatabasesWithoutAnAbsoluteVariable) {
    const std::string expected = folderOfUser(::geteuid());
    for (const char* const value : {static_cast<const char*>(nullptr), "", "relative", "~"}) {
        const kit::Variable home("HOME", value);
        EXPECT_EQ(homeFolder(), expected) << (value != nullptr ? value : "(unset)");
        EXPECT_EQ(homeFolder(), expected) << "the second time";
    }
}

TEST(HomeFolder, belongsToTheEffectiveUser) {
    const kit::Variable home("HOME", nullptr);
    homeFolder();
    kit::expectAsUser([] { return homeFolder() == folderOfUser(::geteuid()); });
}

TEST(HomeFolder, ofAnAccountIsTheUserDatabases) {
    const kit::Variable home("HOME", "/elsewhere");
    EXPECT_EQ(homeFolderOfAccount("root"), folderOfUser(0));
}

TEST(HomeFolder, ofAnUnknownAccountIsEmpty) {
    for (const char* const name : {"no such account", "", "root\n", "\xFF"}) {
        EXPECT_EQ(homeFolderOfAccount(name), "") << name;
    }
}

} // namespace
