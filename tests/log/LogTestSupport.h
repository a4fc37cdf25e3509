// SPDX-License-Identifier: MIT
// What the tests of the log share: captured output, scenes of trace keys, threads that wait, fresh processes.
#ifndef ZQFOUNDATION_TESTS_LOG_LOGTESTSUPPORT_H
#define ZQFOUNDATION_TESTS_LOG_LOGTESTSUPPORT_H

#include <atomic>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "foundation/process/NSProcessInfo.h"
#include "log/ZQLog.h"
#include "tests/process/Scene.h"

namespace logtest {

/// "0x" and lower-case hexadecimal digits without leading zeros.
std::string addressText(const void* address);

/// The head of a written line: "2024-03-05 14:07:09.042 Name[1234:5d7f] ".
struct LinePrefix {
    std::string date;
    std::string process;
    std::string processNumber; ///< decimal
    std::string threadNumber;  ///< lower-case hexadecimal
    std::size_t length = 0;    ///< with the blank at its end
};

/// Nothing when the line does not begin with a complete prefix.
std::optional<LinePrefix> readPrefix(std::string_view line);

/// Catches what is written to descriptor 2 while it lives.
class CapturedOutput {
public:
    CapturedOutput();
    CapturedOutput(const CapturedOutput&) = delete;
    CapturedOutput& operator=(const CapturedOutput&) = delete;
    ~CapturedOutput();

    /// Everything written so far, as it is.
    std::string bytes() const;

    /// The texts of the lines written so far, without their prefixes. A line without a prefix belongs to the
    /// text before it. Fails the test when the output does not begin with a prefix or does not end with a
    /// line feed.
    std::vector<std::string> texts() const;

    void clear();

private:
    int file_ = -1;
    int before_ = -1;
};

/// Another name of the process for a scope.
class ProcessName {
public:
    explicit ProcessName(const ZQFoundation::NSString& name)
        : before_(ZQFoundation::NSProcessInfo::processInfo().processName()) {
        ZQFoundation::NSProcessInfo::processInfo().setProcessName(name);
    }
    ProcessName(const ProcessName&) = delete;
    ProcessName& operator=(const ProcessName&) = delete;
    ~ProcessName() { ZQFoundation::NSProcessInfo::processInfo().setProcessName(before_); }

private:
    ZQFoundation::NSString before_;
};

/// One user default; the value as a piece of an XML property list, such as "<true/>".
struct Setting {
    std::string key;
    std::string value;
};

using Settings = std::vector<Setting>;

/// User defaults of the test's own: the settings in the global domain, in their order, and the command line.
class DefaultsScene {
public:
    explicit DefaultsScene(const Settings& settings, const std::vector<std::string>& commandLine = {});
    explicit DefaultsScene(std::initializer_list<Setting> settings,
                           const std::vector<std::string>& commandLine = {})
        : DefaultsScene(Settings(settings), commandLine) {}

    /// Other settings from now on, as when another process has changed them.
    void replace(const Settings& settings);

private:
    scene::Folder folder_;
    scene::Path path_;
    scene::Arguments arguments_;
};

/// The same, with the trace keys read from it; they are read again when it is gone.
class TraceKeys {
public:
    explicit TraceKeys(const Settings& settings, const std::vector<std::string>& commandLine = {});
    explicit TraceKeys(std::initializer_list<Setting> settings,
                       const std::vector<std::string>& commandLine = {})
        : TraceKeys(Settings(settings), commandLine) {}
    TraceKeys(const TraceKeys&) = delete;
    TraceKeys& operator=(const TraceKeys&) = delete;

    void replace(const Settings& settings) { defaults_.replace(settings); }

private:
    struct ReadsAgainAtItsEnd {
        ~ReadsAgainAtItsEnd() { ZQFoundation::ZQLog::initializeTraceDefaultsDict(); }
    };

    ReadsAgainAtItsEnd last_;
    DefaultsScene defaults_;
};

/// Polls the flag until it is set, ten seconds at most; returns its last value.
bool isSetSoon(const std::atomic<bool>& flag);

/// Whether another thread gets the monitor of ZQLog now. Abandons that thread when it does not.
bool anotherThreadCanTakeTheMonitor();

/// An action in a thread of its own, waited for at the end.
class Background {
public:
    template <class Action>
    explicit Background(Action action)
        : thread_([this, action] {
              action();
              done_ = true;
          }) {}
    Background(const Background&) = delete;
    Background& operator=(const Background&) = delete;
    ~Background() {
        if (thread_.joinable()) {
            thread_.join();
        }
    }

    bool isDone() const { return done_; }
    bool isDoneSoon() const { return isSetSoon(done_); }

private:
    std::atomic<bool> done_ = false;
    std::thread thread_;
};

/// Whether the action, in a thread of its own, comes to its end while this thread holds the monitor.
template <class Action>
bool finishesWhileTheMonitorIsHeld(const Action& action) {
    std::unique_ptr<Background> background;
    bool finished = false;
    {
        const ZQFoundation::ZQLog::Synchronized held;
        background = std::make_unique<Background>(action);
        finished = background->isDoneSoon();
    }
    return finished;
}

/// Whether the action waits in its thread as long as this one holds the monitor. A short look: an action that
/// does not wait is done long before.
template <class Action>
bool waitsWhileTheMonitorIsHeld(const Action& action) {
    std::unique_ptr<Background> background;
    bool waited = false;
    {
        const ZQFoundation::ZQLog::Synchronized held;
        background = std::make_unique<Background>(action);
        ::usleep(50'000);
        waited = !background->isDone();
    }
    return background->isDoneSoon() && waited;
}

/// True in the process that `runThisTestAgain` starts.
bool isFreshProcess();

/// Runs the current test, and no other, in a process of its own and says whether it ran there and passed.
bool runThisTestAgain();

/// For what only a process that has not checked a trace key yet can show: the body runs in such a process.
template <class Body>
void inFreshProcess(const Body& body) {
    if (isFreshProcess()) {
        body();
    } else {
        EXPECT_TRUE(runThisTestAgain());
    }
}

/// The answer of the body in a forked child; false when the child ends in any other way.
template <class Body>
bool inChild(const Body& body) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(60);
        ::_exit(body() ? 0 : 1);
    }
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace logtest

#endif
