// SPDX-License-Identifier: MIT
// Log files in surroundings that are broken or that somebody has prepared against the host. Redirection is
// the process's, so each case runs in a child.
#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "foundation/objects/NSDate.h"
#include "foundation/process/NSProcessInfo.h"
#include "log/ZQLog.h"
#include "tests/log/LogTestSupport.h"
#include "tests/process/Scene.h"

using namespace ZQFoundation;

namespace {

constexpr uid_t nobody = 65534;
constexpr uid_t somebody = 12345;

/// Runs the body in a child, whose standard error is the null device until it is redirected. Expectations
/// that fail there are printed there and fail the test here.
template <class Body>
void inChild(const Body& body) {
    std::fflush(nullptr);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const int null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
        ::dup2(null, STDERR_FILENO);
        ::close(null);
        body();
        std::fflush(stdout);
        ::_exit(::testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
}

/// For a child: no way back to the user before.
void become(uid_t user) {
    EXPECT_EQ(::setgid(user), 0);
    EXPECT_EQ(::setuid(user), 0);
}

void writeLine() { ZQLog::logAlways_log(true, "a line"); }

// Home folders

void makeLoop(const std::string& path) { ASSERT_EQ(::symlink(path.c_str(), path.c_str()), 0); }

TEST(HostileLogFiles, ofAHomeThatIsNoUsableFolderStandInTmp) {
    const scene::Folder folder;
    folder.write("file", "not a folder");
    folder.makeFolder("bare");
    folder.write("libraryIsAFile/Library", "");
    folder.makeFolder("libraryIsALoop");
    makeLoop(folder / "loop");
    makeLoop(folder / "libraryIsALoop/Library");
    ASSERT_EQ(::symlink("/nowhere", (folder / "dangling").c_str()), 0);
    for (const char* const home :
         {"file", "bare", "libraryIsAFile", "libraryIsALoop", "loop", "dangling", "missing"}) {
        const scene::Variable variable("HOME", (folder / home).c_str());
        EXPECT_EQ(ZQLog::standardLogFolder(), "/tmp") << home;
        const std::string path = ZQLog::standardLogFilePath().utf8();
        EXPECT_EQ(path.substr(0, 5), "/tmp/") << home;
        EXPECT_EQ(path.find('/', 5), std::string::npos) << home;
    }
}

TEST(HostileLogFiles, ofAHomeThatIsNotToldOrRelativeStandWhereTheUserDatabaseSays) {
    const scene::Folder folder;
    NSString expected;
    {
        const scene::Variable unset("HOME", nullptr);
        expected = ZQLog::standardLogFolder();
        EXPECT_TRUE(expected.hasPrefix("/"));
    }
    for (const char* const home : {"", "relative", "../x", "."}) {
        const scene::Variable variable("HOME", home);
        EXPECT_EQ(ZQLog::standardLogFolder(), expected) << home;
    }
}

/// For a child: a user without an entry in the user database, in an empty current folder, whose environment
/// names no home folder.
void becomeHomeless(const scene::Folder& folder) {
    EXPECT_EQ(::chmod(folder.path().c_str(), 0777), 0);
    EXPECT_EQ(::chdir(folder.path().c_str()), 0);
    ::unsetenv("HOME");
    become(somebody);
}

TEST(HostileLogFiles, ofAUserWithoutAHomeStandInAbsoluteFolders) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can be another user";
    }
    const scene::Folder folder;
    inChild([&] {
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
    const scene::Folder folder;
    inChild([&] {
        becomeHomeless(folder);
        for (const char* const path : {"~/x.log", "~", "~nosuchuser/x.log", "~nosuchuser/a/b/x.log"}) {
            const logtest::CapturedOutput output;
            EXPECT_FALSE(ZQLog::setLogFilePath_createFolder(path, false)) << path;
            EXPECT_EQ(output.bytes(), "") << path;
            EXPECT_FALSE(ZQLog::setLogFilePath_createFolder(path, true)) << path;
            EXPECT_EQ(output.texts(), std::vector<std::string>{
                                          "+[ZQLog setLogFilePath:createFolder:] Cannot create log file at " +
                                          std::string(path)});
        }
        folder.makeFolder("~nosuchuser");
        EXPECT_FALSE(ZQLog::setLogFilePath_createFolder("~nosuchuser/x.log", false));
        EXPECT_EQ(::rmdir((folder / "~nosuchuser").c_str()), 0) << "something was made in it";
        EXPECT_EQ(::access("~", F_OK), -1);
        EXPECT_EQ(::access("~nosuchuser", F_OK), -1);
    });
}

TEST(HostileLogFiles, goThroughALibraryThatIsALink) {
    const scene::Folder folder;
    folder.makeFolder("elsewhere");
    folder.makeFolder("home");
    ASSERT_EQ(::symlink("../elsewhere", (folder / "home/Library").c_str()), 0);
    const scene::Variable variable("HOME", (folder / "home").c_str());
    inChild([&] {
        EXPECT_TRUE(ZQLog::setLogFilePath_createFolder("x.log", true));
        writeLine();
    });
    std::string path = folder / "elsewhere/Logs/";
    path.append(NSProcessInfo::appSpecificLibrarySubpath().utf8()).append("/x.log");
    EXPECT_NE(scene::contentsOf(path).find("a line"), std::string::npos) << path;
}

TEST(HostileLogFiles, ofAHomeThatMayNotBeReadStandInTmp) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can be another user";
    }
    const scene::Folder folder;
    folder.makeFolder("home/Library");
    ASSERT_EQ(::chmod((folder / "home").c_str(), 0700), 0);
    const scene::Variable variable("HOME", (folder / "home").c_str());
    inChild([] {
        become(nobody);
        EXPECT_EQ(ZQLog::standardLogFolder(), "/tmp");
    });
}

TEST(HostileLogFiles, onAFullDiskLoseLinesAndNothingElse) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can mount a small file system";
    }
    const scene::Folder folder;
    folder.makeFolder("home");
    bool mounted = false;
    inChild([&] {
        mounted = ::unshare(CLONE_NEWNS) == 0 &&
                  ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                  ::mount("none", (folder / "home").c_str(), "tmpfs", 0, "size=64k") == 0;
        if (!mounted) {
            std::printf(
                "no file system can be mounted here; a file-size limit stands in for the full disk\n");
            const rlimit limit{4096, 4096};
            EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
        }
        folder.makeFolder("home/Library");
        const scene::Variable variable("HOME", (folder / "home").c_str());
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

/// Fills the file system and frees the room again, all the time.
class RoomThatComesAndGoes {
public:
    explicit RoomThatComesAndGoes(const std::string& path) : thread_([this, path] { run(path); }) {}
    RoomThatComesAndGoes(const RoomThatComesAndGoes&) = delete;
    RoomThatComesAndGoes& operator=(const RoomThatComesAndGoes&) = delete;
    ~RoomThatComesAndGoes() {
        ends_ = true;
        thread_.join();
    }

private:
    void run(const std::string& path) const {
        const std::string page(4096, 'p');
        while (!ends_) {
            const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
            for (int pages = 0; pages < 64 && ::write(file, page.data(), page.size()) > 0; ++pages) {
            }
            [[maybe_unused]] const int result = ::ftruncate(file, 0);
            ::close(file);
        }
    }

    std::atomic<bool> ends_ = false;
    std::thread thread_;
};

/// The first line that is more than the beginning of a line of that text, or empty; none when all are right.
/// Counts those that a full disk has cut short.
std::string firstGluedLine(const std::string& bytes, const std::string& text, int& halfLines) {
    for (std::size_t start = 0, end = 0; (end = bytes.find('\n', start)) != bytes.npos; start = end + 1) {
        const std::string line = bytes.substr(start, end - start);
        const std::size_t head = line.find("] ");
        const bool isBeginning = head == line.npos ? line.find('x') == line.npos && !line.empty()
                                                   : text.starts_with(line.substr(head + 2));
        if (!isBeginning) {
            return "\"" + line + "\"";
        }
        halfLines += line.ends_with(text) ? 0 : 1;
    }
    return {};
}

TEST(HostileLogFiles, onADiskThatIsFullNowAndThenEndHalfLinesBeforeTheNextOne) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can mount a small file system";
    }
    const scene::Folder folder;
    folder.makeFolder("disk");
    inChild([&] {
        if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            ::mount("none", (folder / "disk").c_str(), "tmpfs", 0, "size=64k") != 0) {
            return; // no mounts here, root or not
        }
        const std::string path = folder / "disk/log";
        const std::string text(900, 'x');
        ZQLog::setOptionalLogFilePath(path);
        const RoomThatComesAndGoes room(folder / "disk/room");
        int halfLines = 0;
        // As long as it takes, however the threads are scheduled.
        for (int round = 0; round < 400 || halfLines < 5; ++round) {
            for (int line = 0; line < 30; ++line) {
                ZQLog::logAlways_log(true, text);
            }
            ASSERT_EQ(firstGluedLine(scene::contentsOf(path), text, halfLines), "");
            EXPECT_EQ(::ftruncate(STDERR_FILENO, 0), 0);
        }
    });
}

// Redirections that fail

struct Failure {
    const char* description;
    std::string path;
};

/// Leads standard error to the path, opens a document as a host would next, logs, and looks into it.
void expectDocumentUntouched(const scene::Folder& folder, const Failure& failure) {
    SCOPED_TRACE(failure.description);
    const std::string document = folder / "document";
    ZQLog::setOptionalLogFilePath(failure.path);
    const int file = ::open(document.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_APPEND, 0600);
    EXPECT_GT(file, STDERR_FILENO) << "the document must not become standard error";
    EXPECT_EQ(::write(file, "text", 4), 4);
    writeLine();
    std::fprintf(stderr, "the host's own\n");
    ::close(file);
    writeLine();
    EXPECT_EQ(scene::contentsOf(document), "text");
}

TEST(HostileLogFiles, thatCannotBeOpenedLeaveTheNextDocumentAlone) {
    const scene::Folder folder;
    makeLoop(folder / "loop");
    folder.write("file", "");
    folder.makeFolder("closed");
    const std::vector<Failure> failures{
        {"a missing folder", folder / "missing/x.log"},
        {"a loop of links", folder / "loop"},
        {"a folder", folder.path()},
        {"a file for a folder", folder / "file/x.log"},
        {"a name that is too long", folder / std::string(300, 'n')},
        {"the empty path", ""},
    };
    for (const Failure& failure : failures) {
        inChild([&] {
            expectDocumentUntouched(folder, failure);
            struct stat parked {};
            struct stat null {};
            EXPECT_EQ(::fstat(STDERR_FILENO, &parked), 0);
            EXPECT_EQ(::stat("/dev/null", &null), 0);
            EXPECT_EQ(parked.st_rdev, null.st_rdev);
            EXPECT_TRUE(S_ISCHR(parked.st_mode));
        });
    }
    if (::geteuid() == 0) {
        ASSERT_EQ(::chmod((folder / "closed").c_str(), 0700), 0);
        ASSERT_EQ(::chmod(folder.path().c_str(), 0777), 0);
        ASSERT_EQ(::unlink((folder / "document").c_str()), 0);
        inChild([&] {
            become(nobody);
            expectDocumentUntouched(folder, {"a folder that is not permitted", folder / "closed/x.log"});
        });
    }
}

TEST(HostileLogFiles, leaveTheNextDocumentAloneWhenTheDescriptorTableIsFull) {
    const scene::Folder folder;
    inChild([&] {
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
        EXPECT_EQ(scene::contentsOf(document), "");
        ::close(file);
        ZQLog::clearLogFilePath();
        writeLine();
        EXPECT_EQ(scene::contentsOf(document), "");
    });
}

TEST(HostileLogFiles, areOpenedOnDescriptor2AlsoWhenTheHostHasClosedIt) {
    const scene::Folder folder;
    inChild([&] {
        ::close(STDERR_FILENO);
        ZQLog::setOptionalLogFilePath(folder / "x.log");
        writeLine();
        EXPECT_EQ(::fcntl(STDERR_FILENO, F_GETFD), 0) << "must stay open in child programs";
    });
    EXPECT_NE(scene::contentsOf(folder / "x.log").find("a line"), std::string::npos);
}

// Planted files

std::string guessedName(const std::string& process, int pid) {
    std::string name = process;
    return name.append(".20240305-1407.").append(std::to_string(pid)).append(".log");
}

/// A folder as /tmp is, with 10,000 links that another user has made to the victim's file.
void plantLinks(const scene::Folder& folder, const std::string& victim, uid_t planter) {
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
    const scene::Folder victims;
    const scene::Folder folder;
    const std::string victim = victims.write("precious", "unharmed");
    ASSERT_EQ(::chown(victim.c_str(), somebody, somebody), 0);
    plantLinks(folder, victim, nobody);
    for (const uid_t user : {uid_t{0}, somebody}) {
        inChild([&] {
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
        EXPECT_EQ(scene::contentsOf(victim), "unharmed") << "user " << user;
    }
}

TEST(HostileLogFiles, thatBelongToAnotherUserOrHaveSeveralNamesAreNotAppendedTo) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can act as two users";
    }
    const scene::Folder folder;
    ASSERT_EQ(::chmod(folder.path().c_str(), 01777), 0);
    const std::string foreign = folder.write("foreign.log", "theirs");
    ASSERT_EQ(::chown(foreign.c_str(), nobody, nobody), 0);
    ASSERT_EQ(::chmod(foreign.c_str(), 0666), 0);
    const std::string own = folder.write("own.log", "ours");
    ASSERT_EQ(::chown(own.c_str(), somebody, somebody), 0);
    ASSERT_EQ(::link(own.c_str(), (folder / "second.log").c_str()), 0);
    inChild([&] {
        become(somebody);
        for (const char* const name : {"foreign.log", "second.log"}) {
            EXPECT_FALSE(ZQLog::setLogFilePath_createFolder(folder / name, false)) << name;
            ZQLog::setOptionalLogFilePath(folder / name);
            writeLine();
        }
    });
    EXPECT_EQ(scene::contentsOf(foreign), "theirs");
    EXPECT_EQ(scene::contentsOf(own), "ours");
}

TEST(HostileLogFiles, ofTheUserHimselfAreContinuedInAFolderLikeTmp) {
    const scene::Folder folder;
    ASSERT_EQ(::chmod(folder.path().c_str(), 01777), 0);
    const std::string own = folder.write("own.log", "before\n");
    inChild([&] {
        EXPECT_TRUE(ZQLog::setLogFilePath_createFolder(own, false));
        writeLine();
    });
    EXPECT_EQ(scene::contentsOf(own).substr(0, 7), "before\n");
    EXPECT_NE(scene::contentsOf(own).find("a line"), std::string::npos);
}

mode_t modeOfNewFile(const std::string& path) {
    struct stat information {};
    EXPECT_EQ(::stat(path.c_str(), &information), 0) << path;
    return information.st_mode & 07777;
}

TEST(HostileLogFiles, areForTheUserAloneInAFolderLikeTmp) {
    const scene::Folder folder;
    folder.makeFolder("shared");
    ASSERT_EQ(::chmod((folder / "shared").c_str(), 01777), 0);
    folder.makeFolder("own");
    for (const bool isShared : {true, false}) {
        const std::string place = folder / (isShared ? "shared/" : "own/");
        inChild([&] {
            ::umask(022);
            EXPECT_TRUE(ZQLog::setLogFilePath_createFolder(place + "checked.log", false));
            ZQLog::setOptionalLogFilePath(place + "unchecked.log");
            EXPECT_TRUE(ZQLog::setLogFilePath_createFolder(place + "new/below.log", true));
        });
        const mode_t expected = isShared ? 0600 : 0644;
        EXPECT_EQ(modeOfNewFile(place + "checked.log"), expected) << place;
        EXPECT_EQ(modeOfNewFile(place + "unchecked.log"), expected) << place;
        EXPECT_EQ(modeOfNewFile(place + "new/below.log"), 0644U) << "in a folder of the user's own";
    }
}

// Retention

const NSDate farFuture = NSDate::dateWithTimeIntervalSinceReferenceDate(1e10);

void setProcessName(const std::string& bytes) {
    NSProcessInfo::processInfo().setProcessName(
        NSString::stringWithFileSystemBytes(bytes.data(), bytes.size()));
}

TEST(HostileLogFiles, areFoundAmong200000OtherEntries) {
    // Making this many files takes long on a disk.
    const bool hasMemoryFolder = ::access("/dev/shm", W_OK | X_OK) == 0;
    const scene::Variable variable("TMPDIR", hasMemoryFolder ? "/dev/shm" : std::getenv("TMPDIR"));
    const scene::Folder folder;
    for (int number = 0; number < 200000; ++number) {
        std::string path = folder / "Viewer.";
        path.append(std::to_string(number)).append(number % 20000 == 0 ? ".log" : ".txt");
        const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        ASSERT_GE(file, 0) << path;
        ::close(file);
    }
    inChild([&] {
        setProcessName("Viewer");
        ZQLog::removeLogfilesOlderThan_fromFolder(farFuture, folder.path());
    });
    for (int number = 0; number < 200000; number += 10000) {
        std::string path = folder / "Viewer.";
        path.append(std::to_string(number)).append(number % 20000 == 0 ? ".log" : ".txt");
        EXPECT_EQ(::access(path.c_str(), F_OK) != 0, number % 20000 == 0) << path;
    }
}

TEST(HostileLogFiles, areToldFromOthersByNamesOfAnyBytes) {
    const scene::Folder folder;
    const std::string process = "V\xff\n\xc3\xa9";
    const std::vector<std::string> logs{process + ".log", process + "1.2.log", process + ".20240305.7.log"};
    const std::vector<std::string> others{
        process + "\n.log", process + "\xfe.log",          "V\xfe\n\xc3\xa9.log",
        process + ".log\n", "V\xef\xbf\xbd\n\xc3\xa9.log", process + ".LOG"};
    for (const std::string& name : logs) {
        folder.write(name, "");
    }
    for (const std::string& name : others) {
        folder.write(name, "");
    }
    inChild([&] {
        setProcessName(process);
        ZQLog::removeOldLogfilesFromFolder_keepingTheNewest(folder.path(), 0);
        ZQLog::removeLogfilesOlderThan_fromFolder(farFuture, folder.path());
    });
    for (const std::string& name : logs) {
        EXPECT_NE(::access((folder / name).c_str(), F_OK), 0) << name;
    }
    for (const std::string& name : others) {
        EXPECT_EQ(::access((folder / name).c_str(), F_OK), 0) << name;
    }
}

TEST(HostileLogFiles, thatAreLinksAreDatedByTheirTargetsAndOnlyTheLinksGo) {
    const scene::Folder folder;
    const scene::Folder targets;
    const std::string old = targets.write("old", "kept");
    targets.makeFolder("tree");
    targets.write("tree/inside", "kept");
    const timeval longAgo[2]{{1000000000, 0}, {1000000000, 0}};
    ASSERT_EQ(::utimes(old.c_str(), longAgo), 0);
    ASSERT_EQ(::symlink(old.c_str(), (folder / "Viewer.1.log").c_str()), 0);
    ASSERT_EQ(::symlink((targets / "tree").c_str(), (folder / "Viewer.2.log").c_str()), 0);
    ASSERT_EQ(::symlink("/nowhere", (folder / "Viewer.3.log").c_str()), 0);
    folder.write("Viewer.4.log/inside", "a folder named like a log file");
    ASSERT_EQ(::utimes((folder / "Viewer.4.log").c_str(), longAgo), 0);
    inChild([&] {
        setProcessName("Viewer");
        ZQLog::removeLogfilesOlderThan_fromFolder(NSDate::dateWithTimeIntervalSince1970(1100000000),
                                                  folder.path());
    });
    struct stat information {};
    EXPECT_NE(::lstat((folder / "Viewer.1.log").c_str(), &information), 0) << "its target is old";
    EXPECT_EQ(::lstat((folder / "Viewer.2.log").c_str(), &information), 0) << "its target is new";
    EXPECT_EQ(::lstat((folder / "Viewer.3.log").c_str(), &information), 0) << "dangling: dated by itself";
    EXPECT_NE(::lstat((folder / "Viewer.4.log").c_str(), &information), 0)
        << "a folder goes with all it holds";
    EXPECT_EQ(scene::contentsOf(old), "kept");
    inChild([&] {
        setProcessName("Viewer");
        ZQLog::removeLogfilesOlderThan_fromFolder(farFuture, folder.path());
    });
    EXPECT_NE(::lstat((folder / "Viewer.2.log").c_str(), &information), 0);
    EXPECT_EQ(scene::contentsOf(targets / "tree/inside"), "kept");
}

} // namespace
