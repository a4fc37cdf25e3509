// SPDX-License-Identifier: MIT
// Child processes: forked, as an ordinary user, programs, and this test program run again.
#ifndef ZQFOUNDATION_TESTS_KIT_CHILD_H
#define ZQFOUNDATION_TESTS_KIT_CHILD_H

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ZQFoundation::kit {

/// Ends a forked child at once, without the checks that a sanitizer makes at the end of a process: they would
/// find the parent's threads missing.
[[noreturn]] inline void leave(int answer) {
    for (;;) {
        ::syscall(SYS_exit_group, answer);
    }
}

/// Waits for the child: the code that it exits with, or the signal that kills it, negated.
inline int endOf(pid_t child) {
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

/// What the body returns in a forked child; a hanging child is killed after a minute.
template <class Body>
int inChild(const Body& body) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(60);
        leave(body());
    }
    return endOf(child);
}

/// The same as an ordinary user, whoever runs the tests.
template <class Body>
int inUnprivilegedChild(const Body& body) {
    return inChild([&]() -> int {
        const bool isOrdinary = ::geteuid() != 0 || (::setgid(65534) == 0 && ::setuid(65534) == 0);
        return isOrdinary ? body() : 99;
    });
}

/// What is written to the descriptor until nobody holds it open for writing.
inline std::string readToEnd(int descriptor) {
    std::string output;
    char buffer[4096];
    ssize_t count = 0;
    while ((count = ::read(descriptor, buffer, sizeof buffer)) > 0) {
        output.append(buffer, static_cast<std::size_t>(count));
    }
    return output;
}

/// The text that the body returns in a forked child.
template <class Body>
std::string textFromChild(const Body& body) {
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(60);
        const std::string text = body();
        leave(::write(ends[1], text.data(), text.size()) == static_cast<ssize_t>(text.size()) ? 0 : 1);
    }
    ::close(ends[1]);
    const std::string text = readToEnd(ends[0]);
    ::close(ends[0]);
    EXPECT_EQ(endOf(child), 0);
    return text;
}

/// Runs the current test again in a process of its own, with more variables, and returns what the body
/// returns there. In that process nothing of the test runs after the body.
template <class Body>
std::string inProcessOfItsOwn(const std::vector<std::pair<std::string, std::string>>& variables,
                              const Body& body) {
    constexpr const char* descriptorOfResult = "ZQ_TEST_RESULT_DESCRIPTOR";
    if (const char* const descriptor = std::getenv(descriptorOfResult)) {
        const std::string text = body();
        leave(::write(std::atoi(descriptor), text.data(), text.size()) == static_cast<ssize_t>(text.size())
                  ? 0
                  : 1);
    }
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    std::string program = "test";
    std::string filter = std::string("--gtest_filter=") + test.test_suite_name() + "." + test.name();
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        ::setenv(descriptorOfResult, std::to_string(ends[1]).c_str(), 1);
        for (const auto& [name, value] : variables) {
            ::setenv(name.c_str(), value.c_str(), 1);
        }
        char* const arguments[] = {program.data(), filter.data(), nullptr};
        ::dup2(::open("/dev/null", O_WRONLY), STDOUT_FILENO);
        ::execv("/proc/self/exe", arguments);
        ::_exit(127);
    }
    ::close(ends[1]);
    const std::string text = readToEnd(ends[0]);
    ::close(ends[0]);
    EXPECT_EQ(endOf(child), 0) << test.name();
    return text;
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
    const std::string output = readToEnd(ends[0]);
    ::close(ends[0]);
    EXPECT_EQ(endOf(child), 0) << program;
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

} // namespace ZQFoundation::kit

#endif
