// SPDX-License-Identifier: MIT
// A host that runs with the rights of its file's owner for whoever starts it: that user's environment does
// not decide where files are read or written.
#include <string>

#include <sys/stat.h>

#include "tests/kit/Child.h"
#include "tests/kit/ScratchFolder.h"

using namespace ZQFoundation;

namespace {

constexpr uid_t nobody = 65534;

class SetUserId : public testing::Test {
protected:
    /// A copy of the child program with that mode, which anybody may start.
    std::string programWithMode(mode_t mode) const {
        std::string path = folder.write(
            "tells-its-places", kit::contentsOf(ZQ_TEST_BINARY_DIR "/tests/process/tells-its-places"));
        EXPECT_EQ(::chmod(path.c_str(), mode), 0);
        return path;
    }

    void plant() const {
        folder.makeFolder("home/Library");
        folder.write("config/ZQFoundation/NSGlobalDomain.plist", "{ ZQTestPlanted = YES; }");
        folder.write("zones/Planted/Zone", kit::contentsOf("/usr/share/zoneinfo/Asia/Tokyo"));
    }

    /// The variables with which the caller would like to steer the host.
    void setVariables() const {
        ::setenv("HOME", (folder / "home").c_str(), 1);
        ::setenv("XDG_CONFIG_HOME", (folder / "config").c_str(), 1);
        ::setenv("ZQ_DEFAULTS", "-ZQTestGiven given", 1);
        ::setenv("TZDIR", (folder / "zones").c_str(), 1);
        ::setenv("TZ", "Planted/Zone", 1);
        for (const char* const name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LC_NUMERIC", "LANG"}) {
            ::setenv(name, "de_DE", 1);
        }
    }

    static void clearVariables() {
        environ = nullptr;
        ::setenv("PATH", "/usr/bin:/bin", 1);
    }

    const kit::ScratchFolder folder;
};

} // namespace

TEST_F(SetUserId, programsIgnoreTheEnvironmentOfTheirCaller) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can be another user";
    }
    plant();
    const std::string program = programWithMode(04755);
    const std::string own = kit::outputOf(program, {"places"}, clearVariables);
    const std::string callers = kit::outputOf(program, {"places"}, [this] {
        setVariables();
        if (::setgid(nobody) != 0 || ::setuid(nobody) != 0) {
            ::_exit(99);
        }
    });
    if (callers.starts_with(std::to_string(nobody))) {
        GTEST_SKIP() << "this file system has no set-user-ID programs";
    }
    EXPECT_EQ(callers, own);
    EXPECT_TRUE(own.starts_with("0\n/"));
    EXPECT_EQ(own.find(folder.path()), std::string::npos);
}

TEST_F(SetUserId, otherProgramsFollowIt) {
    plant();
    const std::string places = kit::outputOf(programWithMode(0755), {"places"}, [this] { setVariables(); });
    const std::string home = folder / "home";
    EXPECT_EQ(places,
              std::to_string(::geteuid()) + "\n" + home + "\n" + home +
                  "/Library/Application Support/places\n" + home +
                  "/Library/Logs/places\nYES\ngiven\n( de-DE )\nde_DE\nPlanted/Zone\na planted zone\n");
}
