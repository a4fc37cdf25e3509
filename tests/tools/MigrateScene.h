// SPDX-License-Identifier: MIT
// What the tests of `zqmigrate` share: the tool at work in a scratch folder of its own.
#ifndef ZQFOUNDATION_TESTS_TOOLS_MIGRATESCENE_H
#define ZQFOUNDATION_TESTS_TOOLS_MIGRATESCENE_H

#include <csignal>

#include "tests/migration/MigrationScene.h"
#include "tests/tools/ToolScene.h"

namespace scene {

/// Opened once, so that a child which has given its privileges up can still start it.
inline int migrateProgram() {
    static const int program = ::open(ZQ_MIGRATE_TOOL, O_RDONLY | O_CLOEXEC);
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

/// Replaces this process, a child, by the tool, with English descriptions.
[[noreturn]] inline void becomeMigrate(const Words& words, const char* language = "en") {
    ::setenv("LANGUAGE", language, 1);
    ::setenv("LC_ALL", "C.UTF-8", 1);
    Words arguments = words;
    arguments.insert(arguments.begin(), "zqmigrate");
    ::fexecve(migrateProgram(), pointersTo(arguments).data(), environ);
    ::_exit(126);
}

inline void signalsAsUsual() {
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        struct sigaction usual {};
        usual.sa_handler = SIG_DFL;
        ::sigaction(number, &usual, nullptr);
    }
}

inline int statusOf(pid_t child) {
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

/// Paths on the command line are relative to the folder.
class MigrateTool {
public:
    MigrateTool() {
        migrateProgram();
        ::chmod(reports_.path().c_str(), 0777);
    }

    const MigrationFolder& folder() const { return folder_; }
    std::string operator/(const std::string& name) const { return folder_ / name; }
    void file(const std::string& name, const std::string& bytes = "x") const { folder_.file(name, bytes); }

    /// Starts the tool with these as its outputs.
    pid_t start(const Words& words, int output, int errors, const char* language = "en") const {
        std::fflush(nullptr);
        const pid_t child = ::fork();
        if (child == 0) {
            signalsAsUsual();
            ::alarm(60);
            if (::chdir(folder_.path().c_str()) != 0 || ::dup2(output, STDOUT_FILENO) < 0 ||
                ::dup2(errors, STDERR_FILENO) < 0) {
                ::_exit(125);
            }
            becomeMigrate(words, language);
        }
        return child;
    }

    Outcome run(const Words& words, const char* language = "en") const {
        const int output = opened("output");
        const int errors = opened("errors");
        Outcome outcome;
        outcome.status = statusOf(start(words, output, errors, language));
        ::close(output);
        ::close(errors);
        outcome.output = contentsOf(reports_ / "output");
        outcome.errors = contentsOf(reports_ / "errors");
        for (const std::string& text : {outcome.output, outcome.errors}) {
            EXPECT_EQ(text.find_first_of("\r\x1B"), std::string::npos) << "no terminal is there: " << text;
        }
        return outcome;
    }

    /// Expects success, and returns what was printed.
    std::string done(const Words& words) const {
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.status, 0) << ::testing::PrintToString(words) << outcome.errors;
        return outcome.output;
    }

    int opened(const char* name) const {
        return ::open((reports_ / name).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    }
    std::string report(const char* name) const { return contentsOf(reports_ / name); }
    const Folder& reports() const { return reports_; }

private:
    MigrationFolder folder_;
    Folder reports_;
};

/// What another program, found by name, prints in the tool's folder.
inline std::string outputOf(const MigrateTool& tool, Words command) {
    const int output = tool.opened("other");
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        if (::chdir(tool.folder().path().c_str()) == 0 && ::dup2(output, STDOUT_FILENO) >= 0) {
            ::execvp(command[0].c_str(), pointersTo(command).data());
        }
        ::_exit(126);
    }
    ::close(output);
    EXPECT_EQ(statusOf(child), 0) << ::testing::PrintToString(command);
    return tool.report("other");
}

inline bool holds(const std::string& text, const std::string& piece) {
    return text.find(piece) != std::string::npos;
}

} // namespace scene

#endif
