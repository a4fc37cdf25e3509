// SPDX-License-Identifier: MIT
// What the tests of this folder share: scratch folders, settings that are put back, child processes.
#ifndef ZQFOUNDATION_TESTS_PROCESS_SCENE_H
#define ZQFOUNDATION_TESTS_PROCESS_SCENE_H

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "foundation/system/TestOverrides.h"
#include "foundation/time/NSTimeZone.h"

namespace scene {

/// Removes the item at the path, which is relative to an open folder. Follows no link, even one that is put
/// there meanwhile.
inline void removeTree(const std::string& path, int above = AT_FDCWD) {
    const int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    int folder = ::openat(above, path.c_str(), flags);
    if (folder < 0 && errno == EACCES && ::fchmodat(above, path.c_str(), 0700, 0) == 0) {
        folder = ::openat(above, path.c_str(), flags);
    }
    if (folder < 0) {
        ::unlinkat(above, path.c_str(), 0);
        return;
    }
    ::fchmod(folder, 0700);
    DIR* const names = ::fdopendir(folder);
    while (const dirent* entry = names != nullptr ? ::readdir(names) : nullptr) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") {
            removeTree(name, folder);
        }
    }
    ::closedir(names);
    ::unlinkat(above, path.c_str(), AT_REMOVEDIR);
}

/// A scratch folder that anybody may look into, removed with its scope.
class Folder {
public:
    Folder() {
        const char* const base = std::getenv("TMPDIR");
        path_ = std::string(base != nullptr && *base == '/' ? base : "/tmp") + "/zq-process-XXXXXX";
        if (::mkdtemp(path_.data()) == nullptr) {
            ADD_FAILURE() << "no scratch folder: " << std::strerror(errno);
        }
        ::chmod(path_.c_str(), 0755);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { removeTree(path_); }

    const std::string& path() const { return path_; }
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }

    /// Makes the folders on the way as well.
    std::string makeFolder(const std::string& name) const {
        for (std::size_t slash = name.find('/'); slash != std::string::npos;
             slash = name.find('/', slash + 1)) {
            ::mkdir((*this / name.substr(0, slash)).c_str(), 0755);
        }
        ::mkdir((*this / name).c_str(), 0755);
        return *this / name;
    }

    std::string write(const std::string& name, const std::string& bytes) const {
        const std::size_t slash = name.find_last_of('/');
        if (slash != std::string::npos) {
            makeFolder(name.substr(0, slash));
        }
        std::FILE* const file = std::fopen((*this / name).c_str(), "wb");
        EXPECT_NE(file, nullptr) << name;
        if (file != nullptr) {
            EXPECT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), file), bytes.size());
            std::fclose(file);
        }
        return *this / name;
    }

private:
    std::string path_;
};

inline std::string contentsOf(const std::string& path) {
    std::string bytes;
    if (std::FILE* const file = std::fopen(path.c_str(), "rb")) {
        char buffer[4096];
        std::size_t count = 0;
        while ((count = std::fread(buffer, 1, sizeof buffer, file)) > 0) {
            bytes.append(buffer, count);
        }
        std::fclose(file);
    }
    return bytes;
}

/// An environment variable set, or unset by a null pointer, for a scope. The process's zone follows TZ.
class Variable {
public:
    Variable(const char* name, const char* value) : name_(name) {
        const char* const before = std::getenv(name);
        wasSet_ = before != nullptr;
        before_ = wasSet_ ? before : "";
        set(value);
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    ~Variable() { set(wasSet_ ? before_.c_str() : nullptr); }

private:
    void set(const char* value) const {
        if (value != nullptr) {
            ::setenv(name_, value, 1);
        } else {
            ::unsetenv(name_);
        }
        if (std::strcmp(name_, "TZ") == 0) {
            ZQFoundation::NSTimeZone::resetSystemTimeZone();
        }
    }
    const char* name_;
    bool wasSet_ = false;
    std::string before_;
};

/// A pointer of the overrides pointed to a value of its own for a scope.
template <class Value>
class Replaced {
public:
    Replaced(const Value*& slot, Value value) : slot_(slot), before_(slot), value_(std::move(value)) {
        slot_ = &value_;
    }
    Replaced(const Replaced&) = delete;
    Replaced& operator=(const Replaced&) = delete;
    ~Replaced() { slot_ = before_; }

private:
    const Value*& slot_;
    const Value* before_;
    Value value_;
};

using Arguments = Replaced<std::vector<std::string>>;
using Path = Replaced<std::string>;

/// No language settings but those that a test makes.
struct NoLanguages {
    Variable language{"LANGUAGE", nullptr};
    Variable all{"LC_ALL", nullptr};
    Variable messages{"LC_MESSAGES", nullptr};
    Variable lang{"LANG", nullptr};
};

/// Ends a forked child at once, without the checks that a sanitizer makes at the end of a process: they would
/// find the parent's threads missing.
[[noreturn]] inline void leave(int answer) {
    for (;;) {
        ::syscall(SYS_exit_group, answer);
    }
}

/// Runs `body` in a forked child as an ordinary user and returns its answer; a hanging child is killed.
template <class Body>
int inUnprivilegedChild(const Body& body) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(60);
        if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) {
            leave(99);
        }
        leave(body());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

/// Runs a program in a child that `prepare` is called in before, and returns what it writes; fails the test
/// unless it exits with 0.
template <class Prepare>
std::string outputOf(const std::string& program, const std::vector<std::string>& arguments,
                     const Prepare& prepare) {
    int ends[2];
    if (::pipe(ends) != 0) {
        return "no pipe";
    }
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(ends[1], 1);
        ::close(ends[0]);
        ::close(ends[1]);
        prepare();
        std::vector<std::string> words = arguments;
        std::vector<char*> pointers;
        for (std::string& word : words) {
            pointers.push_back(word.data());
        }
        pointers.push_back(nullptr);
        ::execv(program.c_str(), pointers.data());
        ::_exit(127);
    }
    ::close(ends[1]);
    std::string output;
    char buffer[4096];
    ssize_t count = 0;
    while ((count = ::read(ends[0], buffer, sizeof buffer)) > 0) {
        output.append(buffer, static_cast<std::size_t>(count));
    }
    ::close(ends[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
    return output;
}

/// Runs this test program again, with more variables and arguments, and returns what it writes.
inline std::string runAgain(const std::vector<std::pair<std::string, std::string>>& variables,
                            const std::vector<std::string>& arguments) {
    return outputOf("/proc/self/exe", arguments, [&] {
        for (const auto& [name, value] : variables) {
            ::setenv(name.c_str(), value.c_str(), 1);
        }
    });
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool forksTakeTurns = true;
#elif defined(__has_feature)
inline constexpr bool forksTakeTurns = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
inline constexpr bool forksTakeTurns = false;
#endif

/// Threads at work and a thread that forks. They overlap freely, except under the address and the thread
/// sanitizer: a child forked while another thread is inside the sanitizer's own allocator hangs there. In
/// such a build forks fall between the others' operations.
class Turns {
public:
    /// Brackets one operation of a working thread.
    template <class Operation>
    auto work(const Operation& operation) {
        enter();
        auto result = operation();
        --inside_;
        return result;
    }

    pid_t fork() {
        forking_ = forksTakeTurns;
        while (forksTakeTurns && inside_ != 0) {
            std::this_thread::yield();
        }
        const pid_t child = ::fork();
        if (child != 0) {
            forking_ = false;
        }
        return child;
    }

private:
    void enter() {
        for (;;) {
            while (forking_) {
                std::this_thread::yield();
            }
            ++inside_;
            if (!forking_) {
                return;
            }
            --inside_;
        }
    }

    std::atomic<bool> forking_{false};
    std::atomic<int> inside_{0};
};

} // namespace scene

#endif
