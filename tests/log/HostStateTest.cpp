// SPDX-License-Identifier: MIT
// After every call, what belongs to the host is as it was before.
#include <algorithm>
#include <cfenv>
#include <clocale>
#include <cmath>

#include <dirent.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "foundation/process/NSLog.h"
#include "foundation/process/NSUserDefaults.h"
#include "foundation/time/NSDateFormatter.h"
#include "tests/kit/Items.h"
#include "tests/kit/Values.h"
#include "tests/log/LogScene.h"

using namespace ZQFoundation;
using namespace logscene;

namespace {

extern "C" char** environ;

std::vector<std::string> namesIn(const std::string& path) {
    std::vector<std::string> names;
    DIR* const folder = ::opendir(path.c_str());
    const std::string own = folder != nullptr ? std::to_string(::dirfd(folder)) : "";
    while (const dirent* entry = folder != nullptr ? ::readdir(folder) : nullptr) {
        if (entry->d_name[0] != '.' && entry->d_name != own) {
            names.emplace_back(entry->d_name);
        }
    }
    if (folder != nullptr) {
        ::closedir(folder);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string listed(const sigset_t& signals) {
    std::string text;
    for (int signal = 1; signal < NSIG; ++signal) {
        text += sigismember(&signals, signal) == 1 ? std::to_string(signal) + ' ' : "";
    }
    return text;
}

std::string dispositions() {
    std::string text;
    char piece[64];
    for (int signal = 1; signal < NSIG; ++signal) {
        struct sigaction action {};
        if (::sigaction(signal, nullptr, &action) == 0) {
            std::snprintf(piece, sizeof piece, "%d:%p:%x:", signal,
                          reinterpret_cast<void*>(action.sa_handler), static_cast<unsigned>(action.sa_flags));
            text += piece + listed(action.sa_mask) + "; ";
        }
    }
    return text;
}

std::string openDescriptors() {
    std::string text;
    for (const std::string& number : namesIn("/proc/self/fd")) {
        char target[512];
        const ssize_t length = ::readlink(("/proc/self/fd/" + number).c_str(), target, sizeof target);
        const int descriptor = std::atoi(number.c_str());
        text += number + "->" + std::string(target, length > 0 ? static_cast<std::size_t>(length) : 0) + ' ' +
                std::to_string(::fcntl(descriptor, F_GETFD)) + ' ' +
                std::to_string(::fcntl(descriptor, F_GETFL)) + "; ";
    }
    return text;
}

std::string environmentText() {
    std::string text;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        text += std::string(*entry) + '\n';
    }
    return text;
}

std::string workingFolder() {
    char path[4096];
    return ::getcwd(path, sizeof path) != nullptr ? path : "none";
}

std::string permissionMask() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return std::to_string(mask);
}

/// Everything by name, so that a difference can be reported.
std::map<std::string, std::string> hostState() {
    std::map<std::string, std::string> state;
    sigset_t signals;
    ::pthread_sigmask(SIG_BLOCK, nullptr, &signals);
    state["signal mask"] = listed(signals);
    ::sigpending(&signals);
    state["pending signals"] = listed(signals);
    state["dispositions"] = dispositions();
    state["umask"] = permissionMask();
    state["working folder"] = workingFolder();
    state["descriptors"] = openDescriptors();
    state["locale"] = std::setlocale(LC_ALL, nullptr);
    state["environment"] = environmentText();
    state["rounding"] = std::to_string(std::fegetround());
    state["terminate handler"] = hexText(reinterpret_cast<std::uintptr_t>(std::get_terminate()));
    std::string threads;
    for (const std::string& task : namesIn("/proc/self/task")) {
        threads += task + ' ';
    }
    state["threads"] = threads;
    return state;
}

const kit::Described plain("plain");

struct NamedCall {
    constexpr NamedCall(const char* itsName, void (*action)()) : name(itsName), perform(action) {}

    const char* name;
    void (*perform)();
};

const NamedCall calls[] = {
    NamedCall("log", [] { ZQLog::log("a line"); }),
    NamedCall("log, long", [] { ZQLog::log(std::string(100'000, 'x')); }),
    NamedCall("log, nil", [] { ZQLog::log(nullptr); }),
    NamedCall("log, ill-formed", [] { ZQLog::log("\xff\xfe"); }),
    NamedCall("log, flag NO", [] { ZQLog::logAlways_log(false, "a line"); }),
    NamedCall("NSLog", [] { NSLog("%@ %d", "text", 3); }),
    NamedCall(
        "format",
        [] {
            ZQLog::logWithFormat("%@ %5.2f %s %llu %a", NSArray{1, "a", NSDate::date()}, 2.5, "c", 7ULL, 0.1);
        }),
    NamedCall("format, returned",
              [] {
                  ZQLog::logStringWithFormat("%@ %g", NSDictionary{{"a", 1.5}}, 2.5);
              }),
    NamedCall("trace key", [] { ZQLog::logForTraceKey_usingFormat("TraceSteady", "%d", 3); }),
    NamedCall("trace key, off", [] { ZQLog::logForTraceKey_usingFormat("TraceNever", "%d", 3); }),
    NamedCall("level", [] { ZQLog::logForTraceKey_value_usingFormat("TraceNever", 0, "%d", 3); }),
    NamedCall("threshold", [] { ZQLog::logForTraceKey_threshold_usingFormat("TraceNever", 0, "%@", plain); }),
    NamedCall("any of",
              [] {
                  ZQLog::logForAnyTraceKeyOf_usingFormat(NSArray{"TraceSteady", "TraceNever"}, "x");
              }),
    NamedCall("all of", [] { ZQLog::logForAllTraceKeysOf_usingFormat(NSArray{"TraceSteady"}, "x"); }),
    NamedCall("any", [] { ZQLog::logForAnyTraceKeyUsingFormat("%@", plain); }),
    NamedCall("method caller",
              [] { ZQLog::logSelf_method_logAlways_logWithFormat(&plain, "run", true, "%@", NSObject(3)); }),
    NamedCall("function caller", [] { ZQLog::logFunctionName_logAlways_log("run", true, "x"); }),
    NamedCall("prefix", [] { ZQLog::logPrefix(); }),
    NamedCall("formatters",
              [] {
                  ZQLog::dateFormatterLong().stringFromDate(NSDate::date());
                  ZQLog::dateFormatterShort().stringFromDate(NSDate::date());
              }),
    NamedCall("re-reading", [] { ZQLog::initializeTraceDefaultsDict(); }),
    NamedCall("questions",
              [] {
                  const ZQLog::Synchronized monitor;
                  ZQLog::traceKeyIsEnabled("TraceSteady");
                  ZQLog::activatedTraceDefaultsKeys();
                  ZQLog::activatedTraceDefaultKeys();
                  ZQLog::aTraceDefaultValueHasBeenActivated();
              }),
    NamedCall("caller descriptions",
              [] {
                  ZQLog::objectiveCMethodDescriptionStringForCaller_method(&plain, "run");
                  ZQLog::cFunctionDescriptionStringForFunctionName("a/b:c");
              }),
    NamedCall("defaults", [] { NSUserDefaults::standardUserDefaults().dictionaryRepresentation(); }),
    NamedCall("process", [] { NSProcessInfo::processInfo().environment(); }),
};

/// Every call; checks `errno` after each, and the rest of the state after all of them.
void expectAllStays() {
    const auto before = hostState();
    for (int round = 0; round < 2; ++round) { // the first calls make what the later ones use
        for (const NamedCall& call : calls) {
            for (const int error : {EDOM, 0}) {
                errno = error;
                call.perform();
                EXPECT_EQ(errno, error) << call.name;
            }
        }
    }
    EXPECT_EQ(hostState(), before);
}

/// A host with settings of its own, which a library may not replace by the usual ones.
void beParticularHost(const std::string& folder) {
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    ::umask(027);
    [[maybe_unused]] const int moved = ::chdir(folder.c_str());
    std::fesetround(FE_UPWARD);
    sigset_t mask;
    sigemptyset(&mask);
    sigaddset(&mask, SIGUSR1);
    sigaddset(&mask, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &mask, nullptr);
    ::raise(SIGUSR1);
    struct sigaction action {};
    action.sa_handler = [](int) {
    };
    action.sa_flags = SA_RESTART;
    sigaddset(&action.sa_mask, SIGUSR2);
    ::sigaction(SIGXFSZ, &action, nullptr);
}

class HostState : public ::testing::TestWithParam<const char*> {
protected:
    /// The child's standard error, by the name that the parameter gives it.
    void openStandardError() const {
        const std::string name = GetParam();
        int ends[2] = {-1, -1};
        if (name == "file") {
            ends[1] = kit::openToAppend(folder_ / "log");
        } else if (name == "full device") {
            ends[1] = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
        } else if (name != "closed" && ::pipe2(ends, O_CLOEXEC) == 0) {
            ::close(ends[0]); // nobody reads
        }
        ::close(STDERR_FILENO);
        if (ends[1] >= 0) {
            kit::moveOntoStandardError(ends[1]);
        }
    }

    const kit::DefaultsScene defaults_{{"TraceSteady", "<true/>"}};
    const kit::ScratchFolder folder_;
};

TEST_P(HostState, staysAsItWas) {
    kit::expectInChild([this] {
        openStandardError();
        expectAllStays();
    });
}

TEST_P(HostState, staysAsAParticularHostHasMadeIt) {
    kit::expectInChild([this] {
        openStandardError();
        beParticularHost(folder_.path());
        expectAllStays();
    });
}

INSTANTIATE_TEST_SUITE_P(StandardError, HostState,
                         ::testing::Values("file", "full device", "closed", "lost reader"),
                         [](const auto& test) {
                             std::string name = test.param;
                             std::replace(name.begin(), name.end(), ' ', '_');
                             return name;
                         });

#ifdef ZQ_TEST_COUNTS_CALLS
// The sanitizers intercept the same functions themselves.

void expectLinesOf(const std::string& program, std::size_t lines) {
    for (const char* const linkage : {"", "-shared"}) {
        const kit::ScratchFolder folder;
        const kit::Descriptor file(kit::openToAppend(folder / "log"));
        EXPECT_EQ(kit::run({childProgram(program + linkage), "-TraceStage", "YES"}, file.number()), 0)
            << linkage;
        EXPECT_EQ(textsOf(folder / "log").size(), lines) << linkage;
    }
}

TEST(HostStateEnvironment, isReadByTheFirstCallsAlone) { expectLinesOf("counts-environment-reads", 15); }

TEST(HostStateRegistrations, areNoneInAProgramThatLogs) { expectLinesOf("counts-registrations", 5); }

#endif

} // namespace
