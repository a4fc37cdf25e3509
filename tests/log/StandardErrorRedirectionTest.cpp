// SPDX-License-Identifier: MIT
// Standard error redirected to a log file and back. The descriptor that is kept aside belongs to the process,
// so each test runs in a process of its own.
#include "log/StandardErrorRedirection.h"

#include <algorithm>
#include <array>
#include <set>

#include <sys/stat.h>

#include "tests/kit/Items.h"
#include "tests/log/LogScene.h"

using namespace ZQFoundation;
using logscene::Texts;
using logscene::textsOf;

namespace {

namespace overrides = ZQFoundation::detail::overrides;

using Numbers = std::set<int>;

/// The descriptors that are open and not among those.
Numbers openNumbers(const Numbers& others = {}) {
    Numbers numbers;
    for (int number = 0; number < 1024; ++number) {
        if (::fcntl(number, F_GETFD) != -1 && !others.contains(number)) {
            numbers.insert(number);
        }
    }
    return numbers;
}

bool refersTo(int descriptor, const std::string& path) {
    struct stat open {};
    struct stat named {};
    return ::fstat(descriptor, &open) == 0 && ::stat(path.c_str(), &named) == 0 &&
           open.st_dev == named.st_dev && open.st_ino == named.st_ino && open.st_rdev == named.st_rdev;
}

/// Items to redirect to, a home with a Library, and descriptor 2 redirected to the file "first".
struct RedirectionScene {
    RedirectionScene()
        : base(kit::realPath(folder.path())), home("HOME", (base + "/home").c_str()),
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
        kit::moveOntoStandardError(kit::openToAppend(first()));
    }

    std::string operator/(const std::string& name) const { return base + "/" + name; }
    std::string first() const { return base + "/first"; }
    void link(const std::string& target, const std::string& name) const {
        EXPECT_EQ(::symlink(target.c_str(), (*this / name).c_str()), 0) << name;
    }

    kit::ScratchFolder folder;
    std::string base;
    kit::Variable home;
    kit::Arguments arguments;
    kit::Path program;
};

void redirect(const std::string& path) { ZQLog::setOptionalLogFilePath(NSString(path)); }

/// Redirects to the path and returns the number under which the former descriptor 2 was kept.
int redirectAndFindKept(const std::string& path) {
    const Numbers before = openNumbers();
    redirect(path);
    const Numbers added = openNumbers(before);
    EXPECT_EQ(added.size(), 1U);
    return added.empty() ? -1 : *added.begin();
}

/// A file of the host's own under that number.
void openAs(int number, const std::string& path) {
    const int file = kit::openToAppend(path);
    EXPECT_GE(file, 0);
    if (file != number) {
        EXPECT_EQ(::dup2(file, number), number);
        ::close(file);
    }
}

const char* const caller = "+[ZQLog setLogFilePath:createFolder:] ";

/// Runs the body in a process of its own.
template <class Body>
void inScene(const Body& body) {
    kit::inFreshProcess([&body] {
        const RedirectionScene scene;
        body(scene);
    });
}

} // namespace

// Without a check.

TEST(StandardErrorRedirection, restoringDoesNothingBeforeTheFirstRedirection) {
    inScene([](const RedirectionScene& scene) {
        const Numbers before = openNumbers();
        ZQLog::clearLogFilePath();
        ZQLog::clearLogFilePath();
        EXPECT_EQ(openNumbers(), before);
        EXPECT_TRUE(refersTo(STDERR_FILENO, scene.first()));
        ZQLog::logAlways_log(true, "line");
        EXPECT_EQ(textsOf(scene.first()), Texts{"line"});
        // Nothing was kept aside either: the first redirection still keeps what there is now.
        EXPECT_TRUE(refersTo(redirectAndFindKept(scene / "log"), scene.first()));
    });
}

TEST(StandardErrorRedirection, sendsLinesAndStandardErrorToTheEndOfTheFile) {
    inScene([](const RedirectionScene& scene) {
        redirect(scene / "file");
        EXPECT_TRUE(refersTo(STDERR_FILENO, scene / "file"));
        EXPECT_EQ(::fileno(stderr), STDERR_FILENO);
        ZQLog::logAlways_log(true, "line");
        // At once, although the line has no end yet.
        std::fputs("by the host", stderr);
        const std::string written = kit::contentsOf(scene / "file");
        EXPECT_EQ(written.substr(0, 10), "as it was\n");
        EXPECT_EQ(written.substr(written.size() - 17), " line\nby the host");
        EXPECT_EQ(::write(STDERR_FILENO, "!\n", 2), 2);
        EXPECT_EQ(kit::contentsOf(scene / "file"), written + "!\n");
        EXPECT_EQ(kit::contentsOf(scene.first()), "");
    });
}

TEST(StandardErrorRedirection, opensTheFileForAppendingAndReading) {
    inScene([](const RedirectionScene& scene) {
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

TEST(StandardErrorRedirection, createsTheFileAndHandsItToProgramsThatTheHostStarts) {
    inScene([](const RedirectionScene& scene) {
        redirect(scene / "new");
        EXPECT_TRUE(refersTo(STDERR_FILENO, scene / "new"));
        EXPECT_EQ(::fcntl(STDERR_FILENO, F_GETFD), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            ::execl("/bin/sh", "sh", "-c", "echo from a program >&2", nullptr);
            ::_exit(127);
        }
        EXPECT_EQ(kit::endOf(child), 0);
        EXPECT_EQ(kit::contentsOf(scene / "new"), "from a program\n");
    });
}

TEST(StandardErrorRedirection, keepsTheFirstStandardErrorAside) {
    inScene([](const RedirectionScene& scene) {
        const int kept = redirectAndFindKept(scene / "one");
        EXPECT_TRUE(refersTo(kept, scene.first()));
        EXPECT_NE(::fcntl(kept, F_GETFD) & FD_CLOEXEC, 0) << "programs that the host starts would inherit it";
        const Numbers before = openNumbers();
        redirect(scene / "two");
        EXPECT_EQ(openNumbers(), before) << "a second one was kept";
        EXPECT_TRUE(refersTo(kept, scene.first()));
        EXPECT_TRUE(refersTo(STDERR_FILENO, scene / "two"));
        ZQLog::clearLogFilePath();
        EXPECT_TRUE(refersTo(STDERR_FILENO, scene.first()));
    });
}

TEST(StandardErrorRedirection, isUndoneByRestoring) {
    inScene([](const RedirectionScene& scene) {
        const Numbers before = openNumbers();
        const int kept = redirectAndFindKept(scene / "log");
        ZQLog::logAlways_log(true, "into the file");
        ZQLog::clearLogFilePath();
        EXPECT_EQ(openNumbers(), before);
        EXPECT_EQ(::fcntl(kept, F_GETFD), -1) << "it is closed";
        EXPECT_TRUE(refersTo(STDERR_FILENO, scene.first()));
        ZQLog::logAlways_log(true, "back");
        std::fputs("<by the host>\n", stderr);
        EXPECT_EQ(textsOf(scene / "log"), Texts{"into the file"});
        EXPECT_EQ(textsOf(scene.first()), (Texts{"back", "<<by the host>>"}));
    });
}

// The number of the descriptor that was kept is never forgotten.

TEST(StandardErrorRedirection, keepsNothingTheSecondTimeAndRestoresFromWhatHasTheNumberByThen) {
    inScene([](const RedirectionScene& scene) {
        const int stale = redirectAndFindKept(scene / "one");
        ZQLog::clearLogFilePath();
        openAs(stale, scene / "hosts");
        const Numbers before = openNumbers();
        redirect(scene / "two");
        EXPECT_EQ(openNumbers(), before) << "something was kept";
        EXPECT_TRUE(refersTo(stale, scene / "hosts"));
        EXPECT_TRUE(refersTo(STDERR_FILENO, scene / "two"));
        ZQLog::clearLogFilePath();
        EXPECT_TRUE(refersTo(STDERR_FILENO, scene / "hosts"));
        EXPECT_EQ(::fcntl(stale, F_GETFD), -1) << "the host's descriptor is closed";
        ZQLog::logAlways_log(true, "astray");
        EXPECT_EQ(textsOf(scene / "hosts"), Texts{"astray"});
        EXPECT_EQ(kit::contentsOf(scene.first()), "");
    });
}

TEST(StandardErrorRedirection, staysInTheSecondFileWhenNobodyHasTheNumber) {
    inScene([](const RedirectionScene& scene) {
        redirect(scene / "one");
        ZQLog::clearLogFilePath();
        const Numbers before = openNumbers();
        redirect(scene / "two");
        EXPECT_EQ(openNumbers(), before) << "something was kept";
        ZQLog::clearLogFilePath();
        EXPECT_EQ(openNumbers(), before);
        EXPECT_TRUE(refersTo(STDERR_FILENO, scene / "two"));
        ZQLog::logAlways_log(true, "line");
        EXPECT_EQ(textsOf(scene / "two"), Texts{"line"});
        EXPECT_EQ(kit::contentsOf(scene.first()), "");
    });
}

TEST(StandardErrorRedirection, restoresAgainWithoutARedirectionBetween) {
    inScene([](const RedirectionScene& scene) {
        const int stale = redirectAndFindKept(scene / "one");
        ZQLog::clearLogFilePath();
        ZQLog::clearLogFilePath();
        EXPECT_TRUE(refersTo(STDERR_FILENO, scene.first())) << "nobody had the number";
        for (const char* const name : {"hosts", "hosts other"}) {
            openAs(stale, scene / name);
            ZQLog::clearLogFilePath();
            EXPECT_TRUE(refersTo(STDERR_FILENO, scene / name));
            EXPECT_EQ(::fcntl(stale, F_GETFD), -1);
        }
    });
}

TEST(StandardErrorRedirection, keepsNothingOfAClosedStandardError) {
    inScene([](const RedirectionScene& scene) {
        ::close(STDERR_FILENO);
        redirect(scene / "one");
        EXPECT_TRUE(refersTo(STDERR_FILENO, scene / "one"));
        EXPECT_EQ(::fcntl(STDERR_FILENO, F_GETFD), 0) << "must stay open in child programs";
        ZQLog::clearLogFilePath();
        EXPECT_TRUE(refersTo(STDERR_FILENO, scene / "one")) << "there was nothing to go back to";
        EXPECT_TRUE(refersTo(redirectAndFindKept(scene / "two"), scene / "one")) << "kept at the next chance";
        ZQLog::clearLogFilePath();
        EXPECT_TRUE(refersTo(STDERR_FILENO, scene / "one"));
    });
}

// Paths are not looked at.

TEST(StandardErrorRedirection, takesThePathAsItStands) {
    inScene([](const RedirectionScene& scene) {
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
            EXPECT_TRUE(refersTo(STDERR_FILENO, row.file)) << row.file;
        }
        EXPECT_EQ(::access((scene / "home/Library/Logs").c_str(), F_OK), -1);
        EXPECT_EQ(kit::contentsOf(scene.first()), "");
    });
}

/// Redirects to what cannot be opened: lines are lost until standard error is restored, and none goes into a
/// document that the host opens next.
void expectLinesToBeLost(const RedirectionScene& scene, const std::string& path) {
    redirectAndFindKept(path);
    EXPECT_TRUE(refersTo(STDERR_FILENO, "/dev/null"));
    ZQLog::logAlways_log(true, "lost");
    std::fputs("lost", stderr);
    const kit::Descriptor document(kit::openToAppend(scene / "hosts"));
    EXPECT_GT(document.number(), STDERR_FILENO);
    ZQLog::logAlways_log(true, "lost");
    EXPECT_EQ(kit::contentsOf(scene / "hosts"), "");
    ZQLog::clearLogFilePath();
    ZQLog::logAlways_log(true, "back");
    EXPECT_TRUE(refersTo(STDERR_FILENO, scene.first()));
}

TEST(StandardErrorRedirection, losesLinesWhenTheFileCannotBeOpenedUntilItIsRestored) {
    inScene([](const RedirectionScene& scene) {
        scene.link("loop", "loop");
        const Texts paths{scene / "folder", scene / "missing/x.log",      scene / "file/x.log", "",
                          scene / "loop",   scene / std::string(300, 'n')};
        for (const std::string& path : paths) {
            EXPECT_EQ(kit::inChild([&] { expectLinesToBeLost(scene, path); }), 0) << path;
        }
        EXPECT_EQ(::chmod(scene.folder.makeFolder("closed").c_str(), 0), 0);
        EXPECT_EQ(::chmod((scene / "hosts").c_str(), 0666), 0);
        kit::expectAsUser([&] { expectLinesToBeLost(scene, scene / "closed/x.log"); });
        EXPECT_EQ(textsOf(scene.first()), Texts(paths.size() + 1, "back"));
        EXPECT_FALSE(kit::exists(scene / "missing"));
    });
}

TEST(StandardErrorRedirection, findsItsWayOutOfAFailure) {
    inScene([](const RedirectionScene& scene) {
        redirect(scene / "folder");
        redirect(scene / "log");
        ZQLog::logAlways_log(true, "line");
        std::fputs("<host>\n", stderr);
        EXPECT_EQ(textsOf(scene / "log"), (Texts{"line", "<<host>>"}));
        ZQLog::clearLogFilePath();
        EXPECT_TRUE(refersTo(STDERR_FILENO, scene.first()));
    });
}

TEST(StandardErrorRedirection, leavesErrnoAlone) {
    inScene([](const RedirectionScene& scene) {
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

void expectToRedirect(const RedirectionScene& scene, const Success& row) {
    const std::string file = scene / row.file;
    const std::string before = kit::contentsOf(file);
    const Numbers numbers = openNumbers();
    EXPECT_TRUE(ZQLog::setLogFilePath_createFolder(NSString(placed(row.path, scene)), row.createFolder));
    EXPECT_TRUE(refersTo(STDERR_FILENO, file));
    EXPECT_EQ(kit::contentsOf(file), before) << "something was written or lost";
    EXPECT_EQ(openNumbers(numbers).size(), 1U) << "not just one descriptor was kept";
    ZQLog::logAlways_log(true, "line");
    const std::string after = kit::contentsOf(file);
    EXPECT_TRUE(after.starts_with(before));
    EXPECT_EQ(kit::textsIn(after.substr(before.size())), Texts{"line"});
    ZQLog::clearLogFilePath();
    EXPECT_TRUE(refersTo(STDERR_FILENO, scene.first()));
}

TEST(StandardErrorRedirection, worksForFilesThatAreThereAndForNewOnes) {
    kit::inFreshProcess([] {
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
            const RedirectionScene own;
            EXPECT_EQ(kit::inChild([&] { expectToRedirect(own, row); }), 0)
                << row.path << " " << row.createFolder;
            EXPECT_EQ(kit::contentsOf(own.first()), "") << row.path;
            EXPECT_TRUE(kit::isFile(own / row.file)) << row.path;
            EXPECT_TRUE(kit::isLink(own / "toFile")) << "a link that is not dangling is followed";
            EXPECT_FALSE(kit::exists(own / "nosuch") || kit::exists(own / "folder/unmade.log"));
        }
    });
}

TEST(StandardErrorRedirection, takesARelativePathFromTheStandardFolderWhenThatIsThere) {
    inScene([](const RedirectionScene& scene) {
        scene.folder.makeFolder("home/Library/Logs/MyApp");
        ASSERT_EQ(::chdir((scene / "folder").c_str()), 0);
        expectToRedirect(scene, {"x.log", false, "home/Library/Logs/MyApp/x.log"});
        EXPECT_EQ(::access((scene / "folder/x.log").c_str(), F_OK), -1);
    });
}

TEST(StandardErrorRedirection, takesARelativePathFromTheTemporaryFolderWithoutALibrary) {
    inScene([](const RedirectionScene& scene) {
        ASSERT_EQ(::rmdir((scene / "home/Library").c_str()), 0);
        // A name that nobody else has.
        const std::string name = scene.base.substr(scene.base.find_last_of('/') + 1) + ".log";
        ASSERT_EQ(::access(("/tmp/" + name).c_str(), F_OK), -1);
        EXPECT_TRUE(ZQLog::setLogFilePath_createFolder(NSString(name), false));
        EXPECT_TRUE(refersTo(STDERR_FILENO, "/tmp/" + name));
        ZQLog::clearLogFilePath();
        EXPECT_EQ(::unlink(("/tmp/" + name).c_str()), 0);
        EXPECT_EQ(kit::contentsOf(scene.first()), "");
    });
}

TEST(StandardErrorRedirection, givesNewFilesAndFoldersTheModesOfTheUmask) {
    inScene([](const RedirectionScene& scene) {
        ::umask(027);
        EXPECT_TRUE(ZQLog::setLogFilePath_createFolder(NSString(scene / "a/b/x.log"), true));
        const struct {
            const char* name;
            mode_t mode;
        } rows[] = {{"a", 0750}, {"a/b", 0750}, {"a/b/x.log", 0640}};
        for (const auto& row : rows) {
            EXPECT_EQ(kit::modeOf(scene / row.name), row.mode) << row.name;
        }
    });
}

// With checks: what does not.

struct Failure {
    std::string path; ///< "@" stands for the scene's folder
    bool createFolder;
    std::string message; ///< after the caller; "@" as above; empty for silence
};

std::string messageOf(const RedirectionScene& scene, std::string message) {
    if (const std::size_t at = message.find('@'); at != message.npos) {
        message.replace(at, 1, scene.base);
    }
    return message;
}

void expectFailure(const RedirectionScene& scene, const Failure& row) {
    SCOPED_TRACE(row.path + (row.createFolder ? ", with its folder" : ""));
    const Numbers numbers = openNumbers();
    EXPECT_EQ(::truncate(scene.first().c_str(), 0), 0);
    EXPECT_FALSE(ZQLog::setLogFilePath_createFolder(NSString(placed(row.path, scene)), row.createFolder));
    const std::string message = messageOf(scene, row.message);
    EXPECT_EQ(textsOf(scene.first()), message.empty() ? Texts{} : Texts{caller + message});
    EXPECT_TRUE(refersTo(STDERR_FILENO, scene.first()));
    EXPECT_EQ(openNumbers(), numbers);
}

TEST(StandardErrorRedirection, isRefusedWithAMessageForWhatIsNoRegularFileOrBelowOne) {
    inScene([](const RedirectionScene& scene) {
        scene.folder.makeFolder("home/Library/Logs/MyApp");
        scene.folder.makeFolder("100%d %s");
        const std::pair<const char*, const char*> rows[] = {
            {"@/folder", "@/folder is not a regular file"},
            {"@/folder/", "@/folder is not a regular file"},
            {"@/toFolder", "@/folder is not a regular file"},
            {"@/toFolder/..", "@ is not a regular file"},
            {"@/pipe", "@/pipe is not a regular file"},
            {"@/100%d %s", "@/100%d %s is not a regular file"},
            {"/", "/ is not a regular file"},
            {"/dev/null", "/dev/null is not a regular file"},
            {"~", "@/home is not a regular file"},
            {".", "@/home/Library/Logs/MyApp is not a regular file"},
            {"..", "@/home/Library/Logs is not a regular file"},
            // The message is about the folder and names the file all the same.
            {"@/file/x.log", "@/file/x.log is not a folder"},
            {"@/toFile/x.log", "@/file/x.log is not a folder"},
            {"@/folder/../file/x.log", "@/file/x.log is not a folder"},
            {"@/pipe/x.log", "@/pipe/x.log is not a folder"},
        };
        for (const auto& [path, message] : rows) {
            expectFailure(scene, {path, false, message});
            expectFailure(scene, {path, true, message});
        }
        EXPECT_EQ(kit::contentsOf(scene / "file"), "as it was\n");
    });
}

TEST(StandardErrorRedirection, isRefusedInSilenceWithoutAPathAndForAFolderThatIsNotToBeMade) {
    inScene([](const RedirectionScene& scene) {
        for (const bool createFolder : {false, true}) {
            expectFailure(scene, {"", createFolder, ""});
            EXPECT_FALSE(ZQLog::setLogFilePath_createFolder(nullptr, createFolder));
            EXPECT_EQ(kit::contentsOf(scene.first()), "");
        }
        for (const char* const path :
             {"@/missing/x.log", "@/missing/a/x.log", "@/file/a/x.log", "@/dangling/x.log", "x.log",
              "a/x.log", "~/missing/x.log", "~nosuchaccount-zq/x.log"}) {
            expectFailure(scene, {path, false, ""});
        }
        EXPECT_FALSE(kit::exists(scene / "missing") || kit::exists(scene / "home/Library/Logs"));
    });
}

TEST(StandardErrorRedirection, isRefusedWithAMessageWhenTheFileCannotBeMade) {
    inScene([](const RedirectionScene& scene) {
        const std::string inFolder = "@/folder/" + std::string(300, 'x');
        const std::string inMissing = "@/missing/" + std::string(300, 'x');
        expectFailure(scene, {inFolder, false, "Cannot create log file at " + inFolder});
        for (const std::string& path :
             {inFolder, std::string("@/file/a/x.log"), std::string("@/dangling/x.log"), inMissing}) {
            expectFailure(scene, {path, true, "Cannot create log file at " + path});
        }
        EXPECT_TRUE(kit::exists(scene / "missing")) << "made before the failure";
        // After all these nothing has been kept aside.
        EXPECT_TRUE(refersTo(redirectAndFindKept(scene / "log"), scene.first()));
    });
}

TEST(StandardErrorRedirection, isRefusedWithAMessageWhereTheUserMayNotWrite) {
    inScene([](const RedirectionScene& scene) {
        scene.link("file", "other");
        ASSERT_EQ(::chmod((scene / "file").c_str(), 0444), 0);
        ASSERT_EQ(::chmod((scene / "folder").c_str(), 0555), 0);
        for (const Failure& row : std::initializer_list<Failure>{
                 {"@/file", false, "Cannot write log file at @/file"},
                 {"@/file", true, "Cannot write log file at @/file"},
                 {"@/other", false, "Cannot write log file at @/file"},
                 {"@/folder/x.log", false, "Cannot create log file at @/folder/x.log"},
                 {"@/folder/x.log", true, "Cannot create log file at @/folder/x.log"},
                 {"@/folder/a/x.log", true, "Cannot create log file at @/folder/a/x.log"},
                 {"@/folder/a/x.log", false, ""},
             }) {
            ASSERT_EQ(::chmod(scene.first().c_str(), 0666), 0);
            kit::expectAsUser([&] { expectFailure(scene, row); });
        }
        ::chmod((scene / "folder").c_str(), 0755);
    });
}

TEST(StandardErrorRedirection, writesItsMessagesWhereLinesGoAtThatTime) {
    inScene([](const RedirectionScene& scene) {
        EXPECT_TRUE(ZQLog::setLogFilePath_createFolder(NSString(scene / "log"), false));
        EXPECT_FALSE(ZQLog::setLogFilePath_createFolder(NSString(scene / "folder"), false));
        EXPECT_TRUE(refersTo(STDERR_FILENO, scene / "log")) << "a refusal changes nothing";
        EXPECT_EQ(textsOf(scene / "log"), Texts{caller + (scene / "folder") + " is not a regular file"});
        EXPECT_TRUE(ZQLog::setLogFilePath_createFolder(NSString(scene / "other"), false));
        EXPECT_TRUE(refersTo(STDERR_FILENO, scene / "other"));
        EXPECT_EQ(kit::contentsOf(scene.first()), "");
        ZQLog::clearLogFilePath();
        EXPECT_TRUE(refersTo(STDERR_FILENO, scene.first()));
    });
}

// While other threads log and open files of their own; the runner gives each of these tests a process.

namespace {

/// What thread `thread` writes as its line `number`: longer and shorter ones, so that a torn line shows.
std::string lineText(int thread, int number) {
    std::string text = "thread ";
    text.append(std::to_string(thread)).append(" line ").append(std::to_string(number)).append(" ");
    text.append(static_cast<std::size_t>(number % 97), static_cast<char>('a' + thread));
    return text.append(" end");
}

constexpr int loggingThreads = 8;

/// Threads that log until they are asked to stop, and how many lines each has written.
class LoggingThreads {
public:
    const std::array<int, loggingThreads>& finish() {
        threads_.end();
        return counts_;
    }

private:
    void work(std::size_t thread) {
        int& number = counts_[thread];
        if (number < 20000) {
            ZQLog::logAlways_log(true, lineText(static_cast<int>(thread), number++));
        } else {
            ::usleep(100);
        }
    }

    std::array<int, loggingThreads> counts_{};
    kit::Meanwhile threads_{[this](std::size_t thread) { work(thread); }, loggingThreads};
};

TEST(ConcurrentStandardErrorRedirection, putsEveryLineWholeIntoExactlyOnePlace) {
    const kit::ScratchFolder folder;
    std::vector<std::string> paths{folder / "origin"};
    std::array<int, loggingThreads> counts{};
    {
        const kit::StandardErrorIn standardError(paths[0]);
        LoggingThreads threads;
        for (int change = 0; change < 1000; ++change) {
            std::string path = folder / "target";
            path.append(std::to_string(change % 10)).append(".log");
            if (change < 10) {
                paths.push_back(path);
            }
            ZQLog::setOptionalLogFilePath(path);
            std::this_thread::yield();
        }
        ZQLog::clearLogFilePath();
        counts = threads.finish();
    }
    Texts written;
    for (const std::string& path : paths) {
        const Texts texts = textsOf(path);
        written.insert(written.end(), texts.begin(), texts.end());
    }
    Texts expected;
    for (int thread = 0; thread < loggingThreads; ++thread) {
        const int count = counts[static_cast<std::size_t>(thread)];
        EXPECT_GT(count, 0) << "thread " << thread;
        for (int number = 0; number < count; ++number) {
            expected.push_back(lineText(thread, number));
        }
    }
    std::sort(written.begin(), written.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_TRUE(written == expected) << written.size() << " lines instead of " << expected.size();
}

TEST(ConcurrentStandardErrorRedirection, leavesTheDocumentsOfOtherThreadsAlone) {
    const kit::ScratchFolder folder;
    const std::string loop = folder / "loop";
    ASSERT_EQ(::symlink(loop.c_str(), loop.c_str()), 0);
    const std::array<std::string, 4> targets{folder / "missing/x.log", loop, folder / "good.log",
                                             folder.path()};
    const kit::StandardErrorIn standardError(folder / "origin");
    LoggingThreads threads;
    std::atomic<bool> stop = false;
    const std::string content(100, 'd');
    int documents = 0;
    std::thread host([&] {
        for (; !stop || documents < 50; ++documents) {
            std::string path = folder / "document";
            path.append(std::to_string(documents % 50));
            const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600);
            if (file < 0 || ::write(file, content.data(), content.size()) != 100 || ::close(file) != 0) {
                ADD_FAILURE() << path;
                return;
            }
        }
    });
    for (int change = 0; change < 1000; ++change) {
        ZQLog::setOptionalLogFilePath(targets[static_cast<std::size_t>(change) % targets.size()]);
    }
    stop = true;
    host.join();
    threads.finish();
    for (int number = 0; number < 50; ++number) {
        std::string path = folder / "document";
        path.append(std::to_string(number));
        EXPECT_EQ(kit::contentsOf(path), content) << path;
    }
    for (const std::string& text : textsOf(folder / "good.log")) {
        EXPECT_NE(text[0], '<') << text;
    }
}

} // namespace
