// SPDX-License-Identifier: MIT
// A line is with the kernel when the call returns: whatever ends the process next, it is there.
#include <csignal>

#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include "foundation/process/NSLog.h"
#include "tests/log/LogScene.h"

using namespace ZQFoundation;
using namespace logscene;

namespace {

constexpr int crashCount = kit::isSanitized ? 200 : 1'000; // a sanitizer takes long to start one

std::string textOfChild(int number) {
    return numberedText(number, 0, number % 50 == 49 ? 100'000 : static_cast<std::size_t>(number % 150));
}

void logAndCrash(int number) {
    const std::string text = textOfChild(number);
    switch (number % 5) {
    case 0:
        ZQLog::logAlways_log(true, text);
        break;
    case 1:
        ZQLog::log(NSString(text));
        break;
    case 2:
        ZQLog::logWithFormat("%s", text.c_str());
        break;
    case 3:
        NSLog("%@", text);
        break;
    default: // a key that is not set has level 0
        ZQLog::logForTraceKey_threshold_usingFormat("TraceNever", 0, "%@", text);
        break;
    }
}

std::string labelOfChild(int number) { return number % 5 == 4 ? "TraceNever>=0: " : ""; }

/// Ends the process in one of the ways that give nobody a chance to tidy up.
[[noreturn]] void crash(int way) {
    switch (way) {
    case 0:
        ::kill(::getpid(), SIGKILL);
        break;
    case 1:
        std::abort();
    default: {
        // Not a null pointer, whose use compilers and sanitizers treat in ways of their own.
        void* const forbidden = ::mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        *static_cast<volatile int*>(forbidden) = 1;
    }
    }
    ::_exit(0);
}

constexpr int signalOfWay[] = {SIGKILL, SIGABRT, SIGSEGV};

/// Neither a core file nor a sanitizer's report.
void crashQuietly() {
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    for (const int signal : {SIGABRT, SIGSEGV}) {
        struct sigaction plain {};
        plain.sa_handler = SIG_DFL;
        ::sigaction(signal, &plain, nullptr);
    }
}

/// Children log and crash, a few at a time; how many ended as they were meant to.
int crashChildren(int descriptor, int count) {
    int ended = 0;
    for (int number = 0; number < count; ++number) {
        const int way = number % 3;
        const pid_t child = ::fork();
        if (child == 0) {
            crashQuietly();
            ::dup2(descriptor, STDERR_FILENO);
            logAndCrash(number);
            crash(way);
        }
        ended += kit::endOf(child) == -signalOfWay[way] ? 1 : 0;
    }
    return ended;
}

/// Each child's line, whole, in the order in which they ran.
void expectAllLines(std::string_view bytes, int count) {
    Texts texts = kit::textsIn(bytes);
    // Where the processor is emulated, the emulator says on the same descriptor how a program ended.
    std::erase_if(texts,
                  [](const std::string& text) { return text.starts_with("<qemu: uncaught target signal "); });
    ASSERT_EQ(texts.size(), static_cast<std::size_t>(count));
    for (int number = 0; number < count; ++number) {
        ASSERT_EQ(texts[static_cast<std::size_t>(number)], labelOfChild(number) + textOfChild(number));
    }
}

TEST(CrashSafety, keepsTheLinesOfAThousandKilledChildren) {
    const kit::ScratchFolder folder;
    const kit::Descriptor file(kit::openToAppend(folder / "log"));
    EXPECT_EQ(crashChildren(file.number(), crashCount), crashCount);
    expectAllLines(kit::contentsOf(folder / "log"), crashCount);
}

TEST(CrashSafety, keepsLinesThatNobodyHasReadYet) {
    int ends[2];
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    const kit::Descriptor reading(ends[0]);
    kit::Descriptor writing(ends[1]);
    constexpr int count = 30; // what the socket holds without a reader
    EXPECT_EQ(crashChildren(writing.number(), count), count);
    writing.reset();
    expectAllLines(kit::readToEnd(reading.number()), count);
}

TEST(CrashSafety, needsNoFlushWhenTheProgramLeavesWithoutOne) {
    const kit::CapturedOutput output;
    kit::expectInChild([] {
        ZQLog::log("first");
        ZQLog::log("second");
        return 0; // and leaves at once
    });
    EXPECT_EQ(output.texts(), (Texts{"first", "second"}));
}

} // namespace
