// SPDX-License-Identifier: MIT
// Writing to standard error: limits of size, signals, and what is asked only once a second.
#include "foundation/process/StandardErrorWrite.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <string>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include "tests/kit/Child.h"
#include "tests/kit/Sanitizers.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/StandardError.h"

#if __has_include(<linux/seccomp.h>)
#include "tests/kit/RefusedCalls.h"
#endif

namespace kit = ZQFoundation::kit;
using ZQFoundation::detail::standardErrorHasChanged;
using ZQFoundation::detail::writeToStandardError;

namespace {

constexpr std::ptrdiff_t whole = 5;

std::ptrdiff_t writeIn(std::int64_t second) { return writeToStandardError("line\n", whole, second); }

void usePipeWithoutReader() {
    int ends[2];
    if (::pipe(ends) != 0) {
        ::_exit(98);
    }
    ::close(ends[0]);
    kit::moveOntoStandardError(ends[1]);
}

void setLimit(rlim_t bytes) {
    rlimit limit{};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes;
    ::setrlimit(RLIMIT_FSIZE, &limit);
}

/// In a child whose signals end it and whose descriptor 2 refers to a file that has a line: 0 when the body
/// returns true, or the negative number of the signal that came.
template <class Body>
int afterALine(const Body& body) {
    const kit::ScratchFolder folder;
    return kit::inChild([&] {
        for (const int signal : {SIGPIPE, SIGXFSZ}) {
            ::signal(signal, SIG_DFL);
        }
        kit::moveOntoStandardError(kit::openToAppend(folder / "log"));
        return writeIn(1) == whole && body();
    });
}

TEST(StandardErrorWrite, seesALostReaderInTheNextSecond) {
    EXPECT_EQ(afterALine([] {
                  usePipeWithoutReader();
                  return writeIn(2) == -EPIPE && writeIn(2) == -EPIPE;
              }),
              0);
}

TEST(StandardErrorWrite, takesDescriptorAndLimitForWhatTheyWereWithinTheSecond) {
    EXPECT_EQ(afterALine([] {
                  usePipeWithoutReader();
                  return writeIn(1) != whole;
              }),
              -SIGPIPE);
    EXPECT_EQ(afterALine([] {
                  setLimit(2);
                  return writeIn(1) != whole;
              }),
              -SIGXFSZ);
}

TEST(StandardErrorWrite, seesAFileSizeLimitInTheNextSecond) {
    EXPECT_EQ(afterALine([] {
                  setLimit(2);
                  return writeIn(2) == -EFBIG;
              }),
              0);
}

TEST(StandardErrorWrite, looksAtOnceInAChild) {
    EXPECT_EQ(afterALine([] {
                  return kit::inChild([] {
                             usePipeWithoutReader();
                             return writeIn(1) == -EPIPE;
                         }) == 0;
              }),
              0);
}

TEST(StandardErrorWrite, looksAtOnceAfterARedirectionByTheLibrary) {
    EXPECT_EQ(afterALine([] {
                  usePipeWithoutReader();
                  standardErrorHasChanged();
                  return writeIn(1) == -EPIPE;
              }),
              0);
}

TEST(StandardErrorWrite, keepsTheCallersError) {
    EXPECT_EQ(afterALine([] {
                  errno = EDOM;
                  const bool isLost =
                      ::close(STDERR_FILENO) == 0 && writeIn(1) == -EBADF && writeIn(2) == -EBADF;
                  return isLost && errno == EDOM;
              }),
              0);
}

#if __has_include(<linux/seccomp.h>)
TEST(StandardErrorWrite, asksTheKernelForNothingElseWithinTheSecond) {
    if (kit::isSanitized) {
        GTEST_SKIP() << "sanitizers call the kernel for purposes of their own";
    }
    constexpr int isNotLet = 77;
    const int end = afterALine([] {
        if (!kit::refuseAllCallsBut(SYS_write, SYS_exit_group)) {
            kit::leave(isNotLet);
        }
        return writeIn(1) == whole && writeIn(1) == whole;
    });
    if (end == isNotLet) {
        GTEST_SKIP() << "the process may not filter its own calls";
    }
    EXPECT_EQ(end, 0);
}
#endif

} // namespace
