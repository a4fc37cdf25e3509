// SPDX-License-Identifier: MIT
// What the tests of this folder share: the tool `defaults`, run in a config home of its own.
#ifndef ZQFOUNDATION_TESTS_TOOLS_TOOLSCENE_H
#define ZQFOUNDATION_TESTS_TOOLS_TOOLSCENE_H

#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "foundation/process/NSUserDefaults.h"
#include "tests/process/Scene.h"

namespace scene {

using Words = std::vector<std::string>;

struct Outcome {
    int status = -1;
    std::string output;
    std::string errors;
};

/// Replaces this process, a child, by the tool.
[[noreturn]] inline void become(const Words& words) {
    Words arguments = words;
    arguments.insert(arguments.begin(), "defaults");
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    ::execv(ZQ_DEFAULTS_TOOL, pointers.data());
    ::_exit(126);
}

/// Runs the tool with one of its standard streams on a terminal, and answers that terminal's other end.
inline int startOnTerminal(const Words& words, int stream, pid_t& child) {
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    EXPECT_TRUE(::grantpt(terminal) == 0 && ::unlockpt(terminal) == 0);
    const std::string name = ::ptsname(terminal);
    child = ::fork();
    if (child == 0) {
        ::dup2(::open(name.c_str(), O_RDWR | O_NOCTTY), stream);
        become(words);
    }
    return terminal;
}

/// A config home with the tool at work in it.
class Tool {
public:
    Tool() : configuration_("XDG_CONFIG_HOME", folder_.path().c_str()) {}

    Outcome run(const Words& words, const std::string& input = {}, rlim_t fileSize = RLIM_INFINITY) const {
        return runPrepared(
            words,
            [fileSize] {
                const rlimit limit{fileSize, fileSize};
                return fileSize == RLIM_INFINITY || ::setrlimit(RLIMIT_FSIZE, &limit) == 0;
            },
            input);
    }

    /// The same in a child in which `prepare` has succeeded; it is killed when it hangs.
    template <class Prepare>
    Outcome runPrepared(const Words& words, const Prepare& prepare, const std::string& input = {}) const {
        folder_.write("input", input);
        std::fflush(nullptr);
        const pid_t child = ::fork();
        if (child == 0) {
            ::alarm(60);
            redirect("input", O_RDONLY, STDIN_FILENO);
            redirect("output", O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
            redirect("errors", O_WRONLY | O_CREAT | O_TRUNC, STDERR_FILENO);
            if (!prepare()) {
                ::_exit(99);
            }
            become(words);
        }
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        Outcome outcome;
        outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        outcome.output = contentsOf(folder_ / "output");
        outcome.errors = contentsOf(folder_ / "errors");
        return outcome;
    }

    /// Expects success, and returns what was printed.
    std::string done(const Words& words, const std::string& input = {}) const {
        const Outcome outcome = run(words, input);
        EXPECT_EQ(outcome.status, 0) << outcome.errors;
        EXPECT_EQ(outcome.errors, "");
        return outcome.output;
    }

    /// Expects failure with that status and one line, and answers it.
    std::string refused(const Words& words, int status = 1) const {
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.status, status) << outcome.output << outcome.errors;
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.errors.substr(0, 10), "defaults: ");
        EXPECT_EQ(outcome.errors.find('\n'), outcome.errors.size() - 1) << outcome.errors;
        return outcome.errors;
    }

    std::string file(const std::string& domain) const {
        std::string name = "ZQFoundation/";
        return folder_ / name.append(domain).append(".plist");
    }

    std::string write(const std::string& domain, const std::string& bytes) const {
        std::string name = "ZQFoundation/";
        return folder_.write(name.append(domain).append(".plist"), bytes);
    }

    /// What the library finds, in the global domain.
    ZQFoundation::NSObject global(const char* key) const {
        return ZQFoundation::NSUserDefaults::standardUserDefaults().objectForKey(key);
    }

    const Folder& folder() const { return folder_; }

    std::size_t entriesInFolder() const {
        std::size_t count = 0;
        DIR* const listing = ::opendir((folder_ / "ZQFoundation").c_str());
        while (const dirent* const entry = listing != nullptr ? ::readdir(listing) : nullptr) {
            count += std::string(entry->d_name).find_first_not_of('.') != std::string::npos ? 1 : 0;
        }
        if (listing != nullptr) {
            ::closedir(listing);
        }
        return count;
    }

private:
    void redirect(const char* name, int flags, int target) const {
        const int file = ::open((folder_ / name).c_str(), flags, 0600);
        ::dup2(file, target);
        ::close(file);
    }

    Folder folder_;
    Variable configuration_;
};

} // namespace scene

#endif
