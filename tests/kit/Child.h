// SPDX-License-Identifier: MIT
// Child processes: forked, as an ordinary user, programs, and this test program run again.
#ifndef ZQFOUNDATION_TESTS_KIT_CHILD_H
#define ZQFOUNDATION_TESTS_KIT_CHILD_H

#include <cstdio>
#include <cstdlib>
#include <string>
#include <type_traits>
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

/// What failed in the current test so far, or "passed".
inline std::string failures() {
    const testing::TestResult& result = *testing::UnitTest::GetInstance()->current_test_info()->result();
    std::string text;
    for (int i = 0; i < result.total_part_count(); ++i) {
        text += result.GetTestPartResult(i).failed()
                    ? result.GetTestPartResult(i).summary() + std::string("\n")
                    : "";
    }
    return text.empty() ? "passed" : text;
}

/// 0 when the body returns true, or when it returns nothing and no expectation has failed; else 1, or the
/// number that it returns.
template <class Body>
int answerOf(const Body& body) {
    if constexpr (std::is_void_v<decltype(body())>) {
        body();
        std::fflush(stdout);
        return testing::Test::HasFailure() ? 1 : 0;
    } else if constexpr (std::is_same_v<decltype(body()), bool>) {
        return body() ? 0 : 1;
    } else {
        return body();
    }
}

/// The answer of the body in a forked child, or the signal that ends it, negated; a child that takes longer
/// is killed.
template <class Body>
int inChild(const Body& body, unsigned seconds = 60) {
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(seconds);
        leave(answerOf(body));
    }
    return endOf(child);
}

/// The same as an ordinary user, whoever runs the tests.
template <class Body>
int inUnprivilegedChild(const Body& body) {
    return inChild([&]() -> int {
        const bool isOrdinary = ::geteuid() != 0 || (::setgid(65534) == 0 && ::setuid(65534) == 0);
        return isOrdinary ? answerOf(body) : 99;
    });
}

/// Expects that the body succeeds in a forked child; a failure is that of the calling line.
template <class Body>
void expectInChild(const Body& body, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    if (const int answer = inChild(body); answer != 0) {
        ADD_FAILURE_AT(file, line) << "the child's answer is " << answer;
    }
}

/// The same as an ordinary user.
template <class Body>
void expectAsUser(const Body& body, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    if (const int answer = inUnprivilegedChild(body); answer != 0) {
        ADD_FAILURE_AT(file, line) << "the child's answer is " << answer;
    }
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

/// What a forked child writes into the pipe whose end its body gets; fails the test unless the child exits
/// with 0.
template <class Body>
std::string writtenByChild(const Body& body) {
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[0]);
        body(ends[1]);
    }
    ::close(ends[1]);
    const std::string text = readToEnd(ends[0]);
    ::close(ends[0]);
    EXPECT_EQ(endOf(child), 0);
    return text;
}

/// Ends a child that has written its text.
[[noreturn]] inline void leaveWith(const std::string& text, int descriptor) {
    leave(::write(descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size()) ? 0 : 1);
}

/// The text that the body returns in a forked child.
template <class Body>
std::string textFromChild(const Body& body) {
    return writtenByChild([&body](int end) {
        ::alarm(60);
        leaveWith(body(), end);
    });
}

using Variables = std::vector<std::pair<std::string, std::string>>;

/// Replaces the program of this child, whose variables are added to.
[[noreturn]] inline void become(const std::string& program, std::vector<std::string> arguments,
                                const Variables& variables = {}) {
    for (const auto& [name, value] : variables) {
        ::setenv(name.c_str(), value.c_str(), 1);
    }
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    ::execv(program.c_str(), pointers.data());
    ::_exit(127);
}

/// Runs the current test again in a process of its own, with more variables, and returns what the body
/// returns there. In that process nothing of the test runs after the body.
template <class Body>
std::string inProcessOfItsOwn(const Variables& variables, const Body& body) {
    constexpr const char* descriptorOfResult = "ZQ_TEST_RESULT_DESCRIPTOR";
    if (const char* const descriptor = std::getenv(descriptorOfResult)) {
        leaveWith(body(), std::atoi(descriptor));
    }
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    return writtenByChild([&](int end) {
        ::setenv(descriptorOfResult, std::to_string(end).c_str(), 1);
        ::unsetenv("GTEST_TOTAL_SHARDS");
        ::dup2(::open("/dev/null", O_WRONLY), STDOUT_FILENO);
        become("/proc/self/exe",
               {"test", std::string("--gtest_filter=") + test.test_suite_name() + "." + test.name()},
               variables);
    });
}

/// Runs the body in a process that has done nothing yet: this test, run again alone.
template <class Body>
void inFreshProcess(const Body& body) {
    EXPECT_EQ(inProcessOfItsOwn({},
                                [&body] {
                                    body();
                                    return failures();
                                }),
              "passed");
}

/// Runs a program in a child that `prepare` is called in before, and returns what it writes; fails the test
/// unless it exits with 0.
template <class Prepare>
std::string outputOf(const std::string& program, const std::vector<std::string>& arguments,
                     const Prepare& prepare) {
    return writtenByChild([&](int end) {
        ::dup2(end, STDOUT_FILENO);
        ::close(end);
        prepare();
        become(program, arguments);
    });
}

/// Runs a program with its standard error on that descriptor: how it ended, as `endOf` says. One that hangs
/// is killed.
inline int run(const std::vector<std::string>& words, int standardError) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(300);
        ::dup2(standardError, STDERR_FILENO);
        become(words[0], words);
    }
    return endOf(child);
}

/// Runs this test program again, with more variables and arguments, and returns what it writes.
inline std::string runAgain(const Variables& variables, const std::vector<std::string>& arguments) {
    return writtenByChild([&](int end) {
        ::dup2(end, STDOUT_FILENO);
        ::close(end);
        become("/proc/self/exe", arguments, variables);
    });
}

} // namespace ZQFoundation::kit

#endif
