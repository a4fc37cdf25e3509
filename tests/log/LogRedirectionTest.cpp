// SPDX-License-Identifier: MIT
// Standard error redirected to a log file and back. The descriptor that is kept aside belongs to the process,
// so each test runs in a process of its own.
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/system/TestOverrides.h"
#include "log/ZQLog.h"
#include "tests/log/HostTesting.h"
#include "tests/log/LogTestSupport.h"
#include "tests/process/ItemFacts.h"

using namespace ZQFoundation;

namespace {

using scene::realPath;

namespace overrides = ZQFoundation::detail::overrides;

using Texts = std::vector<std::string>;
using Numbers = std::set<int>;

Texts textsOf(const std::string& path) { return hosttest::textsIn(scene::contentsOf(path)); }

/// The descriptors that are open.
Numbers openNumbers() {
    Numbers numbers;
    for (int number = 0; number < 1024; ++number) {
        if (::fcntl(number, F_GETFD) != -1) {
            numbers.insert(number);
        }
    }
    return numbers;
}

/// Those of `after` that are not in `before`.
Numbers addedTo(const Numbers& before, const Numbers& after) {
    Numbers added = after;
    for (const int number : before) {
        added.erase(number);
    }
    return added;
}

bool leadsTo(int descriptor, const std::string& path) {
    struct stat open {};
    struct stat named {};
    return ::fstat(descriptor, &open) == 0 && ::stat(path.c_str(), &named) == 0 &&
           open.st_dev == named.st_dev && open.st_ino == named.st_ino && open.st_rdev == named.st_rdev;
}

/// Items to redirect to, a home with a Library, and descriptor 2 redirected to the file "first".
struct RedirectionScene {
    RedirectionScene()
        : base(realPath(folder.path())), home("HOME", (base + "/home").c_str()),
          arguments(overrides::arguments, {"/somewhere/MyApp"}),
          program(overrides::executablePath, folder.makeFolder("program") + "/viewer") {
        folder.makeFolder("home/Library");
        folder.makeFolder("folder");
        folder.write("file", "as it was\n");
        link("file", "toFile");
        link("folder", "toFolder");
        link("nosuch", "dangling");
        link("folder/unmade.log", "toUnmade");
        EXPECT_EQ(::mkfifo((*this / "pipe").c_str(), 0600), 0);
        const int file = hosttest::openToAppend(first());
        EXPECT_GE(file, 0);
        EXPECT_EQ(::dup2(file, STDERR_FILENO), STDERR_FILENO);
        ::close(file);
    }

    std::string operator/(const std::string& name) const { return base + "/" + name; }
    std::string first() const { return base + "/first"; }
    void link(const std::string& target, const std::string& name) const {
        EXPECT_EQ(::symlink(target.c_str(), (*this / name).c_str()), 0) << name;
    }

    scene::Folder folder;
    std::string base;
    scene::Variable home;
    scene::Arguments arguments;
    scene::Path program;
};

void redirect(const std::string& path) { ZQLog::setOptionalLogFilePath(NSString(path)); }

/// Redirects to the path and returns the number under which the former descriptor 2 was kept.
int redirectAndFindKept(const std::string& path) {
    const Numbers before = openNumbers();
    redirect(path);
    const Numbers added = addedTo(before, openNumbers());
    EXPECT_EQ(added.size(), 1U);
    return added.empty() ? -1 : *added.begin();
}

/// A file of the host's own under that number.
void openAs(int number, const std::string& path) {
    const int file = hosttest::openToAppend(path);
    EXPECT_GE(file, 0);
    if (file != number) {
        EXPECT_EQ(::dup2(file, number), number);
        ::close(file);
    }
}

const char* const caller = "+[ZQLog setLogFilePath:createFolder:] ";

} // namespace

// Without a check.

TEST(LogRedirection, restoringDoesNothingBeforeTheFirstRedirection) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        const Numbers before = openNumbers();
        ZQLog::clearLogFilePath();
        ZQLog::clearLogFilePath();
        EXPECT_EQ(openNumbers(), before);
        EXPECT_TRUE(leadsTo(STDERR_FILENO, scene.first()));
        ZQLog::logAlways_log(true, "line");
        EXPECT_EQ(textsOf(scene.first()), Texts{"line"});
        // Nothing was kept aside either: the first redirection still keeps what there is now.
        EXPECT_TRUE(leadsTo(redirectAndFindKept(scene / "log"), scene.first()));
    });
}

TEST(LogRedirection, sendsLinesAndStandardErrorToTheEndOfTheFile) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        redirect(scene / "file");
        EXPECT_TRUE(leadsTo(STDERR_FILENO, scene / "file"));
        EXPECT_EQ(::fileno(stderr), STDERR_FILENO);
        ZQLog::logAlways_log(true, "line");
        // At once, although the line has no end yet.
        std::fputs("by the host", stderr);
        const std::string written = scene::contentsOf(scene / "file");
        EXPECT_EQ(written.substr(0, 10), "as it was\n");
        EXPECT_EQ(written.substr(written.size() - 17), " line\nby the host");
        EXPECT_EQ(::write(STDERR_FILENO, "!\n", 2), 2);
        EXPECT_EQ(scene::contentsOf(scene / "file"), written + "!\n");
        EXPECT_EQ(scene::contentsOf(scene.first()), "");
    });
}

TEST(LogRedirection, opensTheFileForAppendingAndReading) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        redirect(scene / "file");
        const int flags = ::fcntl(STDERR_FILENO, F_GETFL);
        EXPECT_EQ(flags & O_ACCMODE, O_RDWR);
        EXPECT_NE(flags & O_APPEND, 0);
        char buffer[4] = {};
        EXPECT_EQ(::pread(STDERR_FILENO, buffer, 2, 0), 2);
        EXPECT_STREQ(buffer, "as");
        // Somebody else empties the file: the next line begins it, without a hole.
        ZQLog::logAlways_log(true, "gone");
        EXPECT_EQ(::truncate((scene / "file").c_str(), 0), 0);
        ZQLog::logAlways_log(true, "first of all");
        EXPECT_EQ(textsOf(scene / "file"), Texts{"first of all"});
    });
}

TEST(LogRedirection, createsTheFileAndHandsItToProgramsThatTheHostStarts) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        redirect(scene / "new");
        EXPECT_TRUE(leadsTo(STDERR_FILENO, scene / "new"));
        EXPECT_EQ(::fcntl(STDERR_FILENO, F_GETFD), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            ::execl("/bin/sh", "sh", "-c", "echo from a program >&2", nullptr);
            ::_exit(127);
        }
        EXPECT_EQ(hosttest::endOf(child), "");
        EXPECT_EQ(scene::contentsOf(scene / "new"), "from a program\n");
    });
}

TEST(LogRedirection, keepsTheFirstStandardErrorAside) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        const int kept = redirectAndFindKept(scene / "one");
        EXPECT_TRUE(leadsTo(kept, scene.first()));
        EXPECT_NE(::fcntl(kept, F_GETFD) & FD_CLOEXEC, 0) << "programs that the host starts would inherit it";
        const Numbers before = openNumbers();
        redirect(scene / "two");
        EXPECT_EQ(openNumbers(), before) << "a second one was kept";
        EXPECT_TRUE(leadsTo(kept, scene.first()));
        EXPECT_TRUE(leadsTo(STDERR_FILENO, scene / "two"));
        ZQLog::clearLogFilePath();
        EXPECT_TRUE(leadsTo(STDERR_FILENO, scene.first()));
    });
}

TEST(LogRedirection, isUndoneByRestoring) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        const Numbers before = openNumbers();
        const int kept = redirectAndFindKept(scene / "log");
        ZQLog::logAlways_log(true, "into the file");
        ZQLog::clearLogFilePath();
        EXPECT_EQ(openNumbers(), before);
        EXPECT_EQ(::fcntl(kept, F_GETFD), -1) << "it is closed";
        EXPECT_TRUE(leadsTo(STDERR_FILENO, scene.first()));
        ZQLog::logAlways_log(true, "back");
        std::fputs("<by the host>\n", stderr);
        EXPECT_EQ(textsOf(scene / "log"), Texts{"into the file"});
        EXPECT_EQ(textsOf(scene.first()), (Texts{"back", "<<by the host>>"}));
    });
}

// The number of the descriptor that was kept is never forgotten.

TEST(LogRedirection, keepsNothingTheSecondTimeAndRestoresFromWhatHasTheNumberByThen) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        const int stale = redirectAndFindKept(scene / "one");
        ZQLog::clearLogFilePath();
        openAs(stale, scene / "hosts");
        const Numbers before = openNumbers();
        redirect(scene / "two");
        EXPECT_EQ(openNumbers(), before) << "something was kept";
        EXPECT_TRUE(leadsTo(stale, scene / "hosts"));
        EXPECT_TRUE(leadsTo(STDERR_FILENO, scene / "two"));
        ZQLog::clearLogFilePath();
        EXPECT_TRUE(leadsTo(STDERR_FILENO, scene / "hosts"));
        EXPECT_EQ(::fcntl(stale, F_GETFD), -1) << "the host's descriptor is closed";
        ZQLog::logAlways_log(true, "astray");
        EXPECT_EQ(textsOf(scene / "hosts"), Texts{"astray"});
        EXPECT_EQ(scene::contentsOf(scene.first()), "");
    });
}

TEST(LogRedirection, staysInTheSecondFileWhenNobodyHasTheNumber) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        redirect(scene / "one");
        ZQLog::clearLogFilePath();
        const Numbers before = openNumbers();
        redirect(scene / "two");
        EXPECT_EQ(openNumbers(), before) << "something was kept";
        ZQLog::clearLogFilePath();
        EXPECT_EQ(openNumbers(), before);
        EXPECT_TRUE(leadsTo(STDERR_FILENO, scene / "two"));
        ZQLog::logAlways_log(true, "line");
        EXPECT_EQ(textsOf(scene / "two"), Texts{"line"});
        EXPECT_EQ(scene::contentsOf(scene.first()), "");
    });
}

TEST(LogRedirection, restoresAgainWithoutARedirectionBetween) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        const int stale = redirectAndFindKept(scene / "one");
        ZQLog::clearLogFilePath();
        ZQLog::clearLogFilePath();
        EXPECT_TRUE(leadsTo(STDERR_FILENO, scene.first())) << "nobody had the number";
        for (const char* const name : {"hosts", "hosts other"}) {
            openAs(stale, scene / name);
            ZQLog::clearLogFilePath();
            EXPECT_TRUE(leadsTo(STDERR_FILENO, scene / name));
            EXPECT_EQ(::fcntl(stale, F_GETFD), -1);
        }
    });
}

TEST(LogRedirection, keepsNothingOfAClosedStandardError) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        ::close(STDERR_FILENO);
        redirect(scene / "one");
        EXPECT_TRUE(leadsTo(STDERR_FILENO, scene / "one"));
        ZQLog::clearLogFilePath();
        EXPECT_TRUE(leadsTo(STDERR_FILENO, scene / "one")) << "there was nothing to go back to";
        EXPECT_TRUE(leadsTo(redirectAndFindKept(scene / "two"), scene / "one")) << "kept at the next chance";
        ZQLog::clearLogFilePath();
        EXPECT_TRUE(leadsTo(STDERR_FILENO, scene / "one"));
    });
}

// Paths are not looked at.

TEST(LogRedirection, takesThePathAsItStands) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        scene.folder.makeFolder("current/~");
        ASSERT_EQ(::chdir((scene / "current").c_str()), 0);
        const std::string foreign = scene / "caf\xC3\xA9 \xFF%d";
        const struct {
            NSString path;
            std::string file;
        } rows[] = {
            {"x.log", scene / "current/x.log"},
            {"~/x.log", scene / "current/~/x.log"},
            {"../folder/./y.log", scene / "folder/y.log"},
            {NSString(scene / "toFile"), scene / "file"},
            {NSString(scene / "dangling"), scene / "nosuch"},
            {NSString(scene / "caf\u00E9 \U0001F600.log"), scene / "caf\u00E9 \U0001F600.log"},
            {NSString::stringWithFileSystemBytes(foreign.data(), foreign.size()), foreign},
        };
        for (const auto& row : rows) {
            ZQLog::setOptionalLogFilePath(row.path);
            EXPECT_TRUE(leadsTo(STDERR_FILENO, row.file)) << row.file;
        }
        EXPECT_EQ(::access((scene / "home/Library/Logs").c_str(), F_OK), -1);
        EXPECT_EQ(scene::contentsOf(scene.first()), "");
    });
}

TEST(LogRedirection, losesLinesWhenTheFileCannotBeOpenedUntilItIsRestored) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        for (const char* const name : {"folder", "missing/x.log", "file/x.log", ""}) {
            EXPECT_TRUE(logtest::inChild([&] {
                const Numbers before = openNumbers();
                ZQLog::setOptionalLogFilePath(NSString(*name != '\0' ? scene / name : std::string()));
                const Numbers added = addedTo(before, openNumbers());
                const bool isParked = leadsTo(STDERR_FILENO, "/dev/null");
                ZQLog::logAlways_log(true, "lost");
                std::fputs("lost", stderr);
                const int next = ::open((scene / "hosts").c_str(), O_RDWR | O_CREAT, 0600);
                const bool isFree = next == STDERR_FILENO;
                ZQLog::logAlways_log(true, "lost");
                ZQLog::clearLogFilePath();
                ZQLog::logAlways_log(true, "back");
                return isParked && !isFree && added.size() == 1 && leadsTo(STDERR_FILENO, scene.first());
            })) << name;
        }
        EXPECT_EQ(textsOf(scene.first()), (Texts{"back", "back", "back", "back"}));
        EXPECT_EQ(scene::contentsOf(scene / "hosts"), "");
        EXPECT_EQ(::access((scene / "missing").c_str(), F_OK), -1);
    });
}

TEST(LogRedirection, findsItsWayOutOfAFailure) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        redirect(scene / "folder");
        redirect(scene / "log");
        ZQLog::logAlways_log(true, "line");
        std::fputs("<host>\n", stderr);
        EXPECT_EQ(textsOf(scene / "log"), (Texts{"line", "<<host>>"}));
        ZQLog::clearLogFilePath();
        EXPECT_TRUE(leadsTo(STDERR_FILENO, scene.first()));
    });
}

TEST(LogRedirection, leavesErrnoAlone) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        errno = EDOM;
        redirect(scene / "log");
        EXPECT_EQ(errno, EDOM);
        redirect(scene / "folder");
        EXPECT_EQ(errno, EDOM);
        ZQLog::clearLogFilePath();
        EXPECT_EQ(errno, EDOM);
        ZQLog::clearLogFilePath();
        EXPECT_EQ(errno, EDOM);
        EXPECT_FALSE(ZQLog::setLogFilePath_createFolder(NSString(scene / "missing/x"), false));
        EXPECT_EQ(errno, EDOM);
        EXPECT_TRUE(ZQLog::setLogFilePath_createFolder(NSString(scene / "missing/x"), true));
        EXPECT_EQ(errno, EDOM);
    });
}

// With checks: what works.

struct Success {
    const char* path; ///< "@" stands for the scene's folder
    bool createFolder;
    const char* file; ///< where the lines go, in the scene's folder
};

std::string placed(const std::string& path, const RedirectionScene& scene) {
    return !path.empty() && path[0] == '@' ? scene.base + path.substr(1) : path;
}

/// In a forked child; says what went wrong.
std::string tryToRedirect(const RedirectionScene& scene, const Success& row) {
    return hosttest::inChild([&](const hosttest::Findings& findings) {
        const std::string file = scene / row.file;
        const std::string before = scene::contentsOf(file);
        const Numbers numbers = openNumbers();
        findings.expect(
            ZQLog::setLogFilePath_createFolder(NSString(placed(row.path, scene)), row.createFolder),
            "the answer is no");
        findings.expect(leadsTo(STDERR_FILENO, file), "descriptor 2 leads elsewhere");
        findings.expect(scene::contentsOf(file) == before, "something was written or lost");
        findings.expect(addedTo(numbers, openNumbers()).size() == 1, "not just one descriptor was kept");
        ZQLog::logAlways_log(true, "line");
        const std::string after = scene::contentsOf(file);
        findings.expect(after.size() > before.size() && after.substr(0, before.size()) == before &&
                            hosttest::textsIn(after.substr(before.size())) == Texts{"line"},
                        "the line is missing");
        ZQLog::clearLogFilePath();
        findings.expect(leadsTo(STDERR_FILENO, scene.first()), "not restored");
    });
}

TEST(LogRedirection, worksForFilesThatAreThereAndForNewOnes) {
    logtest::inFreshProcess([] {
        const Success rows[] = {
            {"@/new.log", false, "new.log"},
            {"@/new.log", true, "new.log"},
            {"@/file", false, "file"},
            {"@/file", true, "file"},
            {"@/toFile", false, "file"},
            {"@/folder/new.log", false, "folder/new.log"},
            {"@/toFolder/new.log", false, "folder/new.log"},
            {"@/new.log/", false, "new.log"},
            {"@//folder/.//new.log", false, "folder/new.log"},
            {"@/folder/../new.log", false, "new.log"},
            {"@/missing/../new.log", false, "new.log"},
            {"@/missing/a/new.log", true, "missing/a/new.log"},
            {"@/toFolder/a/new.log", true, "folder/a/new.log"},
            {"~/new.log", false, "home/new.log"},
            {"~/a/b/new.log", true, "home/a/b/new.log"},
            {"@/100%d %@.log", false, "100%d %@.log"},
            {"x.log", true, "home/Library/Logs/MyApp/x.log"},
            {"a/x.log", true, "home/Library/Logs/MyApp/a/x.log"},
            {"../x.log", true, "home/Library/Logs/x.log"},
            // A dangling link stays as it is in the path, and the new file takes its place.
            {"@/dangling", false, "dangling"},
            {"@/toUnmade", true, "toUnmade"},
        };
        for (const Success& row : rows) {
            const RedirectionScene scene;
            EXPECT_EQ(tryToRedirect(scene, row), "") << row.path << " " << row.createFolder;
            EXPECT_EQ(scene::contentsOf(scene.first()), "") << row.path;
            struct stat information {};
            EXPECT_EQ(::lstat((scene / row.file).c_str(), &information), 0);
            EXPECT_TRUE(S_ISREG(information.st_mode)) << row.path;
            EXPECT_EQ(::lstat((scene / "toFile").c_str(), &information), 0);
            EXPECT_TRUE(S_ISLNK(information.st_mode)) << "a link that leads somewhere is followed";
            EXPECT_EQ(::access((scene / "nosuch").c_str(), F_OK), -1);
            EXPECT_EQ(::access((scene / "folder/unmade.log").c_str(), F_OK), -1);
        }
    });
}

TEST(LogRedirection, takesARelativePathFromTheStandardFolderWhenThatIsThere) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        scene.folder.makeFolder("home/Library/Logs/MyApp");
        ASSERT_EQ(::chdir((scene / "folder").c_str()), 0);
        EXPECT_EQ(tryToRedirect(scene, {"x.log", false, "home/Library/Logs/MyApp/x.log"}), "");
        EXPECT_EQ(::access((scene / "folder/x.log").c_str(), F_OK), -1);
    });
}

TEST(LogRedirection, takesARelativePathFromTheTemporaryFolderWithoutALibrary) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        ASSERT_EQ(::rmdir((scene / "home/Library").c_str()), 0);
        // A name that nobody else has.
        const std::string name = scene.base.substr(scene.base.find_last_of('/') + 1) + ".log";
        ASSERT_EQ(::access(("/tmp/" + name).c_str(), F_OK), -1);
        EXPECT_TRUE(ZQLog::setLogFilePath_createFolder(NSString(name), false));
        EXPECT_TRUE(leadsTo(STDERR_FILENO, "/tmp/" + name));
        ZQLog::clearLogFilePath();
        EXPECT_EQ(::unlink(("/tmp/" + name).c_str()), 0);
        EXPECT_EQ(scene::contentsOf(scene.first()), "");
    });
}

TEST(LogRedirection, givesNewFilesAndFoldersTheModesOfTheUmask) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        ::umask(027);
        EXPECT_TRUE(ZQLog::setLogFilePath_createFolder(NSString(scene / "a/b/x.log"), true));
        const struct {
            const char* name;
            mode_t mode;
        } rows[] = {{"a", 0750}, {"a/b", 0750}, {"a/b/x.log", 0640}};
        for (const auto& row : rows) {
            struct stat information {};
            EXPECT_EQ(::stat((scene / row.name).c_str(), &information), 0);
            EXPECT_EQ(information.st_mode & 07777U, row.mode) << row.name;
        }
    });
}

// With checks: what does not.

struct Failure {
    std::string path; ///< "@" stands for the scene's folder
    bool createFolder;
    std::string message; ///< after the caller; "@" as above; empty for silence
};

void expectFailure(const RedirectionScene& scene, const Failure& row) {
    const Numbers numbers = openNumbers();
    ASSERT_EQ(::truncate(scene.first().c_str(), 0), 0);
    EXPECT_FALSE(ZQLog::setLogFilePath_createFolder(NSString(placed(row.path, scene)), row.createFolder))
        << row.path;
    const std::size_t at = row.message.find('@');
    const std::string message = at == std::string::npos
                                    ? row.message
                                    : row.message.substr(0, at) + scene.base + row.message.substr(at + 1);
    EXPECT_EQ(textsOf(scene.first()), message.empty() ? Texts{} : Texts{caller + message})
        << row.path << " " << row.createFolder;
    EXPECT_TRUE(leadsTo(STDERR_FILENO, scene.first())) << row.path;
    EXPECT_EQ(openNumbers(), numbers) << row.path;
}

TEST(LogRedirection, isRefusedWithAMessageForWhatIsNoRegularFile) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        scene.folder.makeFolder("home/Library/Logs/MyApp");
        scene.folder.makeFolder("100%d %s");
        for (const bool createFolder : {false, true}) {
            for (const Failure& row : std::initializer_list<Failure>{
                     {"@/folder", createFolder, "@/folder is not a regular file"},
                     {"@/folder/", createFolder, "@/folder is not a regular file"},
                     {"@/toFolder", createFolder, "@/folder is not a regular file"},
                     {"@/toFolder/..", createFolder, "@ is not a regular file"},
                     {"@/pipe", createFolder, "@/pipe is not a regular file"},
                     {"@/100%d %s", createFolder, "@/100%d %s is not a regular file"},
                     {"/", createFolder, "/ is not a regular file"},
                     {"/dev/null", createFolder, "/dev/null is not a regular file"},
                     {"~", createFolder, "@/home is not a regular file"},
                     {".", createFolder, "@/home/Library/Logs/MyApp is not a regular file"},
                     {"..", createFolder, "@/home/Library/Logs is not a regular file"},
                 }) {
                expectFailure(scene, row);
            }
        }
    });
}

TEST(LogRedirection, isRefusedWithAMessageBelowAFile) {
    // The message is about the folder and names the file all the same.
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        for (const bool createFolder : {false, true}) {
            expectFailure(scene, {"@/file/x.log", createFolder, "@/file/x.log is not a folder"});
            expectFailure(scene, {"@/toFile/x.log", createFolder, "@/file/x.log is not a folder"});
            expectFailure(scene, {"@/folder/../file/x.log", createFolder, "@/file/x.log is not a folder"});
            expectFailure(scene, {"@/pipe/x.log", createFolder, "@/pipe/x.log is not a folder"});
        }
        EXPECT_EQ(scene::contentsOf(scene / "file"), "as it was\n");
    });
}

TEST(LogRedirection, isRefusedInSilenceWithoutAPathAndForAFolderThatIsNotToBeMade) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        for (const bool createFolder : {false, true}) {
            expectFailure(scene, {"", createFolder, ""});
            EXPECT_FALSE(ZQLog::setLogFilePath_createFolder(nullptr, createFolder));
            EXPECT_EQ(scene::contentsOf(scene.first()), "");
        }
        for (const char* const path :
             {"@/missing/x.log", "@/missing/a/x.log", "@/file/a/x.log", "@/dangling/x.log", "x.log",
              "a/x.log", "~/missing/x.log", "~nosuchaccount-zq/x.log"}) {
            expectFailure(scene, {path, false, ""});
        }
        EXPECT_EQ(::access((scene / "missing").c_str(), F_OK), -1);
        EXPECT_EQ(::access((scene / "home/Library/Logs").c_str(), F_OK), -1);
    });
}

TEST(LogRedirection, isRefusedWithAMessageWhenTheFileCannotBeMade) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        const std::string longName(300, 'x');
        for (const bool createFolder : {false, true}) {
            expectFailure(scene, {"@/folder/" + longName, createFolder,
                                  "Cannot create log file at @/folder/" + longName});
        }
        expectFailure(scene, {"@/file/a/x.log", true, "Cannot create log file at @/file/a/x.log"});
        expectFailure(scene, {"@/dangling/x.log", true, "Cannot create log file at @/dangling/x.log"});
        expectFailure(scene,
                      {"@/missing/" + longName, true, "Cannot create log file at @/missing/" + longName});
        EXPECT_TRUE(leadsTo(STDERR_FILENO, scene.first()));
        EXPECT_EQ(::access((scene / "missing").c_str(), F_OK), 0) << "made before the failure";
        // After all these nothing has been kept aside.
        EXPECT_TRUE(leadsTo(redirectAndFindKept(scene / "log"), scene.first()));
    });
}

TEST(LogRedirection, isRefusedWithAMessageWhereTheUserMayNotWrite) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        scene.link("file", "other");
        ASSERT_EQ(::chmod((scene / "file").c_str(), 0444), 0);
        ASSERT_EQ(::chmod((scene / "folder").c_str(), 0555), 0);
        const struct {
            const char* path;
            bool createFolder;
            const char* message;
        } rows[] = {
            {"@/file", false, "Cannot write log file at @/file"},
            {"@/file", true, "Cannot write log file at @/file"},
            {"@/other", false, "Cannot write log file at @/file"},
            {"@/folder/x.log", false, "Cannot create log file at @/folder/x.log"},
            {"@/folder/x.log", true, "Cannot create log file at @/folder/x.log"},
            {"@/folder/a/x.log", true, "Cannot create log file at @/folder/a/x.log"},
            {"@/folder/a/x.log", false, ""},
        };
        for (const auto& row : rows) {
            ASSERT_EQ(::truncate(scene.first().c_str(), 0), 0);
            EXPECT_EQ(scene::inUnprivilegedChild([&] {
                          const std::string path = placed(row.path, scene);
                          const bool done =
                              ZQLog::setLogFilePath_createFolder(NSString(path), row.createFolder);
                          return done || leadsTo(STDERR_FILENO, path) ? 1 : 0;
                      }),
                      0)
                << row.path;
            std::string message = row.message;
            if (!message.empty()) {
                message.replace(message.find('@'), 1, scene.base);
            }
            EXPECT_EQ(textsOf(scene.first()), message.empty() ? Texts{} : Texts{caller + message})
                << row.path;
        }
        ::chmod((scene / "folder").c_str(), 0755);
    });
}

TEST(LogRedirection, writesItsMessagesWhereLinesGoAtThatTime) {
    logtest::inFreshProcess([] {
        const RedirectionScene scene;
        EXPECT_TRUE(ZQLog::setLogFilePath_createFolder(NSString(scene / "log"), false));
        EXPECT_FALSE(ZQLog::setLogFilePath_createFolder(NSString(scene / "folder"), false));
        EXPECT_TRUE(leadsTo(STDERR_FILENO, scene / "log")) << "a refusal changes nothing";
        EXPECT_EQ(textsOf(scene / "log"), Texts{caller + (scene / "folder") + " is not a regular file"});
        EXPECT_TRUE(ZQLog::setLogFilePath_createFolder(NSString(scene / "other"), false));
        EXPECT_TRUE(leadsTo(STDERR_FILENO, scene / "other"));
        EXPECT_EQ(scene::contentsOf(scene.first()), "");
        ZQLog::clearLogFilePath();
        EXPECT_TRUE(leadsTo(STDERR_FILENO, scene.first()));
    });
}
