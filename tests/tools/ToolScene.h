// SPDX-License-Identifier: MIT
// What the tests of this folder share: the tools at work, in scratch folders, at terminals, and what bash
// offers for their command lines.
#ifndef ZQFOUNDATION_TESTS_TOOLS_TOOLSCENE_H
#define ZQFOUNDATION_TESTS_TOOLS_TOOLSCENE_H

#include <csignal>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include "foundation/process/NSUserDefaults.h"
#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/migration/MigrationScene.h"

namespace ZQFoundation::scene {

struct Program {
    const char* name;
    const char* path;
    int file = -1; ///< the open program, which a child that has given its privileges up can still start
};

/// The exit status of a child that could not be prepared.
inline constexpr int notPrepared = 125;

inline const Program& defaultsProgram() {
    static const Program program{"defaults", ZQ_DEFAULTS_TOOL};
    return program;
}
inline const Program& migrateProgram() {
    static const Program program{"zqmigrate", ZQ_MIGRATE_TOOL, ::open(ZQ_MIGRATE_TOOL, O_RDONLY | O_CLOEXEC)};
    return program;
}

/// What the exec family takes; valid as long as the words.
inline std::vector<char*> pointersTo(Words& words) {
    std::vector<char*> pointers;
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// Replaces this process, a child, by the program.
[[noreturn]] inline void become(const Program& program, Words words) {
    words.insert(words.begin(), program.name);
    if (program.file >= 0) {
        ::fexecve(program.file, pointersTo(words).data(), environ);
    } else {
        ::execv(program.path, pointersTo(words).data());
    }
    ::_exit(126);
}

struct Outcome {
    int status = -1; ///< or the number of the signal that ended the program, negated
    std::string output;
    std::string errors;
};

inline bool contains(const std::string& text, const std::string& piece) {
    return text.find(piece) != std::string::npos;
}

/// A terminal whose screen the test is.
class Terminal {
public:
    explicit Terminal(unsigned short columns = 80) : screen_(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        EXPECT_TRUE(::grantpt(screen_) == 0 && ::unlockpt(screen_) == 0);
        end_ = ::open(::ptsname(screen_), O_RDWR | O_NOCTTY | O_CLOEXEC);
        EXPECT_GE(end_, 0);
        resize(columns);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    ~Terminal() {
        hangUp();
        ::close(screen_);
    }

    int end() const { return end_; }

    /// So that reading comes to an end when the tool does.
    void hangUp() {
        if (end_ >= 0) {
            ::close(end_);
        }
        end_ = -1;
    }

    void resize(unsigned short columns) const {
        winsize size{};
        size.ws_row = 24;
        size.ws_col = columns;
        EXPECT_EQ(::ioctl(screen_, TIOCSWINSZ, &size), 0);
    }

    /// Reads until what was seen since the mark contains the piece.
    void waitFor(const std::string& piece, std::size_t mark = 0) {
        while (seen_.find(piece, mark) == std::string::npos && readMore()) {
        }
        EXPECT_NE(seen_.find(piece, mark), std::string::npos) << seen_;
    }

    const std::string& readToEnd() {
        hangUp();
        while (readMore()) {
        }
        return seen_;
    }

    const std::string& seen() const { return seen_; }

private:
    bool readMore() {
        char buffer[4096];
        const ssize_t count = ::read(screen_, buffer, sizeof buffer);
        seen_.append(buffer, count > 0 ? static_cast<std::size_t>(count) : 0);
        return count > 0;
    }

    int screen_;
    int end_ = -1;
    std::string seen_;
};

inline constexpr auto nothingToPrepare = [] {
    return true;
};

/// Runs of a program in a folder, with its standard streams in files of another folder.
class ToolRuns {
public:
    ToolRuns(const Program& program, const std::string& folder) : program_(program), path_(folder) {
        ::chmod(reports_.path().c_str(), 0777);
        reports_.write("input", "");
    }

    /// Starts the program in a child in which `prepare` has succeeded, and which is killed when it hangs.
    template <class Prepare>
    pid_t startPrepared(const Words& words, int output, int errors, const Prepare& prepare) const {
        std::fflush(nullptr);
        const pid_t child = ::fork();
        if (child == 0) {
            for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
                struct sigaction usual {};
                usual.sa_handler = SIG_DFL;
                ::sigaction(number, &usual, nullptr);
            }
            ::alarm(60);
            const int input = ::open((reports_ / "input").c_str(), O_RDONLY | O_CLOEXEC);
            if (::chdir(path_.c_str()) != 0 || ::dup2(input, STDIN_FILENO) < 0 ||
                ::dup2(output, STDOUT_FILENO) < 0 || ::dup2(errors, STDERR_FILENO) < 0 || !prepare()) {
                ::_exit(notPrepared);
            }
            become(program_, words);
        }
        return child;
    }
    pid_t start(const Words& words, int output, int errors) const {
        return startPrepared(words, output, errors, nothingToPrepare);
    }

    template <class Prepare>
    Outcome runPrepared(const Words& words, const Prepare& prepare, const std::string& input = {}) const {
        reports_.write("input", input);
        const int output = opened("output");
        const int errors = opened("errors");
        const pid_t child = startPrepared(words, output, errors, prepare);
        ::close(output);
        ::close(errors);
        const int status = kit::endOf(child);
        return {status, report("output"), report("errors")};
    }
    Outcome run(const Words& words, const std::string& input = {}) const {
        return runPrepared(words, nothingToPrepare, input);
    }

    /// What another program, found by name, prints in the folder.
    std::string outputOf(Words command) const {
        const int output = opened("other");
        std::fflush(nullptr);
        const pid_t child = ::fork();
        if (child == 0) {
            if (::chdir(path_.c_str()) == 0 && ::dup2(output, STDOUT_FILENO) >= 0) {
                ::execvp(command[0].c_str(), pointersTo(command).data());
            }
            ::_exit(126);
        }
        ::close(output);
        EXPECT_EQ(kit::endOf(child), 0) << ::testing::PrintToString(command);
        return report("other");
    }

    int opened(const char* name) const {
        return ::open((reports_ / name).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    }
    std::string report(const char* name) const { return kit::contentsOf(reports_ / name); }
    const kit::ScratchFolder& reports() const { return reports_; }

private:
    const Program& program_;
    std::string path_;
    kit::ScratchFolder reports_;
};

/// The tool `defaults` with a config home of its own.
class Tool {
public:
    Tool()
        : configuration_("XDG_CONFIG_HOME", folder_.path().c_str()),
          runs_(defaultsProgram(), folder_.path()) {}

    const ToolRuns& runs() const { return runs_; }
    Outcome run(const Words& words, const std::string& input = {}) const { return runs_.run(words, input); }

    /// Expects success, and returns what was printed.
    std::string done(const Words& words, const std::string& input = {}) const {
        const Outcome outcome = run(words, input);
        EXPECT_EQ(outcome.status, 0) << outcome.errors;
        EXPECT_EQ(outcome.errors, "");
        return outcome.output;
    }

    /// Expects failure with that status and one line, and returns it.
    std::string refused(const Words& words, int status = 1) const {
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.status, status)
            << ::testing::PrintToString(words) << outcome.output << outcome.errors;
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.errors.substr(0, 10), "defaults: ");
        EXPECT_EQ(outcome.errors.find('\n'), outcome.errors.size() - 1) << outcome.errors;
        return outcome.errors;
    }

    std::string file(const std::string& domain) const {
        return (folder_ / "ZQFoundation/").append(domain).append(".plist");
    }
    std::string write(const std::string& domain, const std::string& bytes) const {
        return folder_.write(std::string("ZQFoundation/").append(domain).append(".plist"), bytes);
    }
    /// Of the domain's file; empty when there is none.
    std::string contents(const std::string& domain) const { return kit::contentsOf(file(domain)); }
    bool exists(const std::string& domain) const { return ::access(file(domain).c_str(), F_OK) == 0; }

    /// What the library finds, in the global domain.
    NSObject global(const char* key) const {
        return NSUserDefaults::standardUserDefaults().objectForKey(key);
    }

    const kit::ScratchFolder& folder() const { return folder_; }
    std::size_t entriesInFolder() const { return digestOf(folder_ / "ZQFoundation").size() - 1; }

private:
    kit::ScratchFolder folder_;
    kit::Variable configuration_;
    ToolRuns runs_;
};

/// The tool `zqmigrate` in a folder, to which paths on the command line are relative; it describes in
/// English.
class MigrateTool : public ToolRuns {
public:
    MigrateTool() : MigrateTool(folderInMemory()) {}

    const MigrationFolder& folder() const { return *folder_; }
    std::string operator/(const std::string& name) const { return *folder_ / name; }
    void file(const std::string& name, const std::string& bytes = "x") const { folder_->write(name, bytes); }
    /// Files called "0", "1", ... in the folder.
    void files(const std::string& place, int count) const {
        for (int number = 0; number < count; ++number) {
            file(place + "/" + std::to_string(number));
        }
    }

    Outcome run(const Words& words) const {
        const Outcome outcome = ToolRuns::run(words);
        for (const std::string& text : {outcome.output, outcome.errors}) {
            EXPECT_EQ(text.find_first_of("\r\x1B"), std::string::npos) << "this is no terminal: " << text;
        }
        return outcome;
    }
    /// Expects success, and returns what was printed.
    std::string done(const Words& words) const {
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.status, 0) << ::testing::PrintToString(words) << outcome.errors;
        return outcome.output;
    }

private:
    /// Each run waits until what it has copied is on the disk.
    static std::unique_ptr<MigrationFolder> folderInMemory() {
        const kit::ScratchInMemory memory;
        return std::make_unique<MigrationFolder>();
    }
    explicit MigrateTool(std::unique_ptr<MigrationFolder> folder)
        : ToolRuns(migrateProgram(), folder->path()), folder_(std::move(folder)) {}

    std::unique_ptr<MigrationFolder> folder_;
    kit::Variable language_{"LANGUAGE", "en"};
    kit::Variable encoding_{"LC_ALL", "C.UTF-8"};
};

/// What the completion script offers for the last of the words, each on a line of its own, sorted.
inline std::string offered(const ToolRuns& runs, const char* script, const std::string& name,
                           const Words& words) {
    const std::string tools = ZQ_DEFAULTS_TOOL;
    Words command{"env",
                  "LC_ALL=C.UTF-8",
                  "PATH=" + tools.substr(0, tools.rfind('/')) + ":/usr/local/bin:/usr/bin:/bin",
                  "bash",
                  "-c",
                  ". " + std::string(script) + "\nCOMP_WORDS=(" + name + " \"$@\") COMP_CWORD=$#\n_" + name +
                      "\nprintf '%s\\n' \"${COMPREPLY[@]}\" | LC_ALL=C sort\n",
                  "bash"};
    command.insert(command.end(), words.begin(), words.end());
    return runs.outputOf(command);
}

} // namespace ZQFoundation::scene

#endif
