// SPDX-License-Identifier: MIT
// Log files in surroundings that are broken or that somebody has prepared against the host. Redirection is
// the process's, so each case runs in a child.
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "tests/kit/Items.h"
#include "tests/kit/Mounts.h"
#include "tests/log/LogScene.h"

using namespace ZQFoundation;

namespace {

constexpr uid_t nobody = 65534;
constexpr uid_t somebody = 12345;

/// A child whose standard error is the null device until it is redirected.
template <class Body>
void inQuietChild(const Body& body) {
    const kit::Descriptor null(::open("/dev/null", O_RDWR | O_CLOEXEC));
    const kit::StandardErrorAs quiet(null.number());
    EXPECT_EQ(kit::inChild(body, 300), 0);
}

/// For a child: no way back to the user before.
void become(uid_t user) {
    EXPECT_EQ(::setgid(user), 0);
    EXPECT_EQ(::setuid(user), 0);
}

void writeLine() { ZQLog::logAlways_log(true, "a line"); }

// Home folders

/// For a child: a user without an entry in the user database, in an empty current folder, whose environment
/// names no home folder.
void becomeHomeless(const kit::ScratchFolder& folder) {
    EXPECT_EQ(::chmod(folder.path().c_str(), 0777), 0);
    EXPECT_EQ(::chdir(folder.path().c_str()), 0);
    ::unsetenv("HOME");
    become(somebody);
}

TEST(HostileLogFiles, ofAUserWithoutAHomeAreInAbsoluteFolders) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can be another user";
    }
    const kit::ScratchFolder folder;
    inQuietChild([&] {
        becomeHomeless(folder);
        folder.makeFolder("~/Library"); // is not taken for the home folder's
        EXPECT_EQ(NSProcessInfo::pathOfLibraryLogSubfolder(),
                  NSString("/Library/Logs")
                      .stringByAppendingPathComponent(NSProcessInfo::appSpecificLibrarySubpath()));
        EXPECT_TRUE(NSProcessInfo::pathOfLibraryApplicationSupportSubfolder().hasPrefix(
            "/Library/Application Support/"));
        const bool hasLibrary = ::access("/Library", F_OK) == 0;
        EXPECT_EQ(ZQLog::standardLogFolder(),
                  hasLibrary ? NSProcessInfo::pathOfLibraryLogSubfolder() : NSString("/tmp"));
    });
}

TEST(HostileLogFiles, belowAHomeThatNobodyHasAreNotMade) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can be another user";
    }
    const kit::ScratchFolder folder;
    inQuietChild([&] {
        becomeHomeless(folder);
        for (const char* const path : {"~/x.log", "~", "~nosuchuser/x.log", "~nosuchuser/a/b/x.log"}) {
            const kit::CapturedOutput output;
            EXPECT_FALSE(ZQLog::setLogFilePath_createFolder(path, false)) << path;
            EXPECT_EQ(output.bytes(), "") << path;
            EXPECT_FALSE(ZQLog::setLogFilePath_createFolder(path, true)) << path;
            EXPECT_EQ(output.texts(), logscene::Texts{"+[ZQLog setLogFilePath:createFolder:] "
                                                      "Cannot create log file at " +
                                                      std::string(path)});
        }
        folder.makeFolder("~nosuchuser");
        EXPECT_FALSE(ZQLog::setLogFilePath_createFolder("~nosuchuser/x.log", false));
        EXPECT_EQ(::rmdir((folder / "~nosuchuser").c_str()), 0) << "something was made in it";
        EXPECT_FALSE(kit::exists("~") || kit::exists("~nosuchuser"));
    });
}

TEST(HostileLogFiles, goThroughALibraryThatIsALink) {
    const kit::ScratchFolder folder;
    folder.makeFolder("elsewhere");
    folder.makeFolder("home");
    ASSERT_EQ(::symlink("../elsewhere", (folder / "home/Library").c_str()), 0);
    const kit::Variable variable("HOME", (folder / "home").c_str());
    inQuietChild([&] {
        EXPECT_TRUE(ZQLog::setLogFilePath_createFolder("x.log", true));
        writeLine();
    });
    const std::string subpath = NSProcessInfo::appSpecificLibrarySubpath().utf8();
    EXPECT_EQ(logscene::textsOf(folder / ("elsewhere/Logs/" + subpath + "/x.log")),
              logscene::Texts{"a line"});
}

TEST(HostileLogFiles, ofAHomeThatMayNotBeReadAreInTmp) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can be another user";
    }
    const kit::ScratchFolder folder;
    folder.makeFolder("home/Library");
    ASSERT_EQ(::chmod((folder / "home").c_str(), 0700), 0);
    const kit::Variable variable("HOME", (folder / "home").c_str());
    inQuietChild([] {
        become(nobody);
        EXPECT_EQ(ZQLog::standardLogFolder(), "/tmp");
    });
}

TEST(HostileLogFiles, ofProcessesThatBeginThemAtOnceHaveTheLinesOfAll) {
    constexpr int processes = 6;
    const kit::ScratchFolder folder;
    for (int round = 0; round < 60; ++round) {
        const std::string path = folder / std::to_string(round);
        int gate[2];
        ASSERT_EQ(::pipe(gate), 0);
        std::vector<pid_t> children;
        for (int number = 0; number < processes; ++number) {
            children.push_back(::fork());
            if (children.back() == 0) {
                char byte;
                ::alarm(60);
                ::close(gate[1]);
                static_cast<void>(::read(gate[0], &byte, 1)); // all go on when it is closed
                const bool isSet = ZQLog::setLogFilePath_createFolder(path, false);
                writeLine();
                kit::leave(isSet ? 0 : 1);
            }
        }
        ::close(gate[0]);
        ::close(gate[1]);
        for (const pid_t child : children) {
            EXPECT_EQ(kit::endOf(child), 0);
        }
        ASSERT_EQ(logscene::textsOf(path), logscene::Texts(processes, "a line")) << round;
    }
}

TEST(HostileLogFiles, onAFullDiskLoseLinesAndNothingElse) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can mount a small file system";
    }
    const kit::ScratchFolder folder;
    folder.makeFolder("home");
    bool mounted = false;
    inQuietChild([&] {
        mounted =
            kit::hasOwnMounts() && ::mount("none", (folder / "home").c_str(), "tmpfs", 0, "size=64k") == 0;
        if (!mounted) {
            std::printf(
                "no file system can be mounted here; a file-size limit stands in for the full disk\n");
            const rlimit limit{4096, 4096};
            EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
        }
        folder.makeFolder("home/Library");
        const kit::Variable variable("HOME", (folder / "home").c_str());
        EXPECT_TRUE(ZQLog::setLogFilePath_createFolder("x.log", true));
        const std::string text(1000, 'x');
        for (int line = 0; line < 500; ++line) {
            ZQLog::logAlways_log(true, text);
        }
        struct stat information {};
        EXPECT_EQ(::fstat(STDERR_FILENO, &information), 0);
        EXPECT_GT(information.st_size, 0);
        EXPECT_LE(information.st_size, 64 * 1024);
        // A new file still finds a place, or fails with a line that is lost; neither does harm.
        static_cast<void>(ZQLog::setLogFilePath_createFolder("y.log", true));
        writeLine();
        ZQLog::clearLogFilePath();
    });
}

/// Fills the file system and frees the room again.
void fillAndFree(const std::string& path) {
    const std::string page(4096, 'p');
    const kit::Descriptor file(kit::openToAppend(path));
    for (int pages = 0; pages < 64 && ::write(file.number(), page.data(), page.size()) > 0; ++pages) {
    }
    [[maybe_unused]] const int result = ::ftruncate(file.number(), 0);
}

/// The first line that is more than the beginning of a line of that text; empty when there is none. Counts
/// those that a full disk has cut short.
std::string firstGluedLine(const std::string& bytes, const std::string& text, int& halfLines) {
    for (const std::string_view line : kit::linesIn(bytes)) {
        const std::size_t head = line.find("] ");
        const bool isBeginning = head == line.npos ? line.find('x') == line.npos && !line.empty()
                                                   : text.starts_with(line.substr(head + 2));
        if (!isBeginning) {
            return "\"" + std::string(line) + "\"";
        }
        halfLines += line.ends_with(text) ? 0 : 1;
    }
    return {};
}

TEST(HostileLogFiles, onADiskThatIsFullNowAndThenEndHalfLinesBeforeTheNextOne) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can mount a small file system";
    }
    const kit::ScratchFolder folder;
    folder.makeFolder("disk");
    inQuietChild([&] {
        if (!kit::hasOwnMounts() || ::mount("none", (folder / "disk").c_str(), "tmpfs", 0, "size=64k") != 0) {
            return; // no mounts here, root or not
        }
        const std::string path = folder / "disk/log";
        const std::string text(900, 'x');
        ZQLog::setOptionalLogFilePath(path);
        const kit::Meanwhile room([&] { fillAndFree(folder / "disk/room"); });
        int halfLines = 0;
        // As long as it takes, however the threads are scheduled.
        for (int round = 0; round < 400 || halfLines < 5; ++round) {
            for (int line = 0; line < 30; ++line) {
                ZQLog::logAlways_log(true, text);
            }
            EXPECT_EQ(firstGluedLine(kit::contentsOf(path), text, halfLines), "");
            EXPECT_EQ(::ftruncate(STDERR_FILENO, 0), 0);
        }
    });
}

// Redirections that fail

TEST(HostileLogFiles, leaveTheNextDocumentAloneWhenTheDescriptorTableIsFull) {
    const kit::ScratchFolder folder;
    inQuietChild([&] {
        const rlimit limit{64, 64};
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
        std::vector<int> taken;
        for (int file = 0; (file = ::dup(STDOUT_FILENO)) >= 0;) {
            taken.push_back(file);
        }
        EXPECT_FALSE(taken.empty());
        ZQLog::setOptionalLogFilePath(folder / "x.log");
        ::close(taken.back());
        const std::string document = folder / "document";
        const int file = ::open(document.c_str(), O_RDWR | O_CREAT | O_APPEND, 0600);
        EXPECT_EQ(file, taken.back());
        writeLine();
        EXPECT_EQ(kit::contentsOf(document), "");
        ::close(file);
        ZQLog::clearLogFilePath();
        writeLine();
        EXPECT_EQ(kit::contentsOf(document), "");
    });
}

// Planted files

std::string guessedName(const std::string& process, int pid) {
    std::string name = process;
    return name.append(".20240305-1407.").append(std::to_string(pid)).append(".log");
}

/// A folder as /tmp is, with 10,000 links that another user has made to the victim's file.
void plantLinks(const kit::ScratchFolder& folder, const std::string& victim, uid_t planter) {
    ASSERT_EQ(::chmod(folder.path().c_str(), 01777), 0);
    for (int pid = 1; pid <= 10000; ++pid) {
        const std::string path = folder / guessedName("Viewer", pid);
        ASSERT_EQ(::symlink(victim.c_str(), path.c_str()), 0);
        ASSERT_EQ(::lchown(path.c_str(), planter, planter), 0);
    }
}

TEST(HostileLogFiles, thatAreLinksOfAnotherUserAreNeverWrittenThrough) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can act as two users";
    }
    const kit::ScratchFolder victims;
    const kit::ScratchFolder folder;
    const std::string victim = victims.write("precious", "unharmed");
    ASSERT_EQ(::chown(victim.c_str(), somebody, somebody), 0);
    plantLinks(folder, victim, nobody);
    for (const uid_t user : {uid_t{0}, somebody}) {
        inQuietChild([&] {
            if (user != 0) {
                become(user);
            }
            for (int pid = 1; pid <= 10000; ++pid) {
                const std::string path = folder / guessedName("Viewer", pid);
                EXPECT_FALSE(ZQLog::setLogFilePath_createFolder(path, true)) << path;
                ZQLog::setOptionalLogFilePath(path);
                writeLine();
            }
        });
        EXPECT_EQ(kit::contentsOf(victim), "unharmed") << "user " << user;
    }
}

TEST(HostileLogFiles, thatBelongToAnotherUserOrHaveSeveralNamesAreNotAppendedTo) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can act as two users";
    }
    const kit::ScratchFolder folder;
    ASSERT_EQ(::chmod(folder.path().c_str(), 01777), 0);
    const std::string foreign = folder.write("foreign.log", "theirs");
    ASSERT_EQ(::chown(foreign.c_str(), nobody, nobody), 0);
    ASSERT_EQ(::chmod(foreign.c_str(), 0666), 0);
    const std::string own = folder.write("own.log", "ours");
    ASSERT_EQ(::chown(own.c_str(), somebody, somebody), 0);
    ASSERT_EQ(::link(own.c_str(), (folder / "second.log").c_str()), 0);
    inQuietChild([&] {
        become(somebody);
        for (const char* const name : {"foreign.log", "second.log"}) {
            EXPECT_FALSE(ZQLog::setLogFilePath_createFolder(folder / name, false)) << name;
            ZQLog::setOptionalLogFilePath(folder / name);
            writeLine();
        }
    });
    EXPECT_EQ(kit::contentsOf(foreign), "theirs");
    EXPECT_EQ(kit::contentsOf(own), "ours");
}

TEST(HostileLogFiles, ofTheUserAreContinuedInAFolderLikeTmp) {
    const kit::ScratchFolder folder;
    ASSERT_EQ(::chmod(folder.path().c_str(), 01777), 0);
    const std::string own = folder.write("own.log", "before\n");
    inQuietChild([&] {
        EXPECT_TRUE(ZQLog::setLogFilePath_createFolder(own, false));
        writeLine();
    });
    EXPECT_EQ(logscene::textsOf(own), (logscene::Texts{"<before>", "a line"}));
}

TEST(HostileLogFiles, areForTheUserAloneInAFolderLikeTmp) {
    const kit::ScratchFolder folder;
    folder.makeFolder("shared");
    ASSERT_EQ(::chmod((folder / "shared").c_str(), 01777), 0);
    folder.makeFolder("own");
    for (const bool isShared : {true, false}) {
        const std::string place = folder / (isShared ? "shared/" : "own/");
        inQuietChild([&] {
            ::umask(022);
            EXPECT_TRUE(ZQLog::setLogFilePath_createFolder(place + "checked.log", false));
            ZQLog::setOptionalLogFilePath(place + "unchecked.log");
            EXPECT_TRUE(ZQLog::setLogFilePath_createFolder(place + "new/below.log", true));
        });
        const mode_t expected = isShared ? 0600 : 0644;
        EXPECT_EQ(kit::modeOf(place + "checked.log"), expected) << place;
        EXPECT_EQ(kit::modeOf(place + "unchecked.log"), expected) << place;
        EXPECT_EQ(kit::modeOf(place + "new/below.log"), 0644U) << "in a folder of the user's own";
    }
}

} // namespace
