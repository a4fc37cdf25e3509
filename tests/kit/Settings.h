// SPDX-License-Identifier: MIT
// User defaults, trace keys and a process name that a test has for a scope.
#ifndef ZQFOUNDATION_TESTS_KIT_SETTINGS_H
#define ZQFOUNDATION_TESTS_KIT_SETTINGS_H

#include <cstdio>
#include <initializer_list>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/process/NSProcessInfo.h"
#include "log/ZQLog.h"
#include "tests/kit/Environment.h"
#include "tests/kit/ScratchFolder.h"

namespace ZQFoundation::kit {

/// Another name of the process for a scope.
class ProcessName {
public:
    explicit ProcessName(const NSString& name) : before_(NSProcessInfo::processInfo().processName()) {
        NSProcessInfo::processInfo().setProcessName(name);
    }
    ProcessName(const ProcessName&) = delete;
    ProcessName& operator=(const ProcessName&) = delete;
    ~ProcessName() { NSProcessInfo::processInfo().setProcessName(before_); }

private:
    NSString before_;
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
    explicit DefaultsScene(const Settings& settings, std::vector<std::string> commandLine = {})
        : path_(detail::overrides::defaultsFolder, folder_.path()),
          arguments_(detail::overrides::arguments,
                     (commandLine.insert(commandLine.begin(), "/x/test"), commandLine)) {
        replace(settings);
    }
    explicit DefaultsScene(std::initializer_list<Setting> settings) : DefaultsScene(Settings(settings)) {}

    /// Other settings from now on, as when another process has changed them.
    void replace(const Settings& settings) const {
        std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n";
        for (const auto& [key, value] : settings) {
            text.append("<key>").append(key).append("</key>").append(value).append("\n");
        }
        // Renamed into place, so that the change shows whatever the file system's clock says.
        const std::string written = folder_.write("new", text + "</dict>\n</plist>\n");
        EXPECT_EQ(::rename(written.c_str(), (folder_ / "NSGlobalDomain.plist").c_str()), 0);
    }

private:
    const ScratchFolder folder_;
    const Path path_;
    const Arguments arguments_;
};

/// The same, with the trace keys read from it; they are read again when it is gone.
class TraceKeys {
public:
    explicit TraceKeys(const Settings& settings, const std::vector<std::string>& commandLine = {})
        : defaults_(settings, commandLine) {
        ZQLog::initializeTraceDefaultsDict();
    }
    explicit TraceKeys(std::initializer_list<Setting> settings,
                       const std::vector<std::string>& commandLine = {})
        : TraceKeys(Settings(settings), commandLine) {}
    TraceKeys(const TraceKeys&) = delete;
    TraceKeys& operator=(const TraceKeys&) = delete;

    void replace(const Settings& settings) const { defaults_.replace(settings); }
    void replaceAndRead(const Settings& settings) const {
        replace(settings);
        ZQLog::initializeTraceDefaultsDict();
    }

private:
    struct ReadsAgainAtItsEnd {
        ~ReadsAgainAtItsEnd() { ZQLog::initializeTraceDefaultsDict(); }
    };

    const ReadsAgainAtItsEnd last_{};
    const DefaultsScene defaults_;
};

} // namespace ZQFoundation::kit

#endif
