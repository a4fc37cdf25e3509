// SPDX-License-Identifier: MIT
// Capturing and reading log lines, for the tests of the log.
#include "tests/log/LogTestSupport.h"

#include "foundation/system/System.h"

namespace logtest {

namespace {

// The name of a file that the fresh process creates: a process that ran no test at all would end well too.
constexpr const char* freshProcessVariable = "ZQ_TEST_FRESH_PROCESS";

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isLowerHexDigit(char c) { return isDigit(c) || (c >= 'a' && c <= 'f'); }

/// In the pattern a "0" stands for any digit, every other character for itself.
bool matches(std::string_view text, std::string_view pattern) {
    if (text.size() < pattern.size()) {
        return false;
    }
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] == '0' ? !isDigit(text[i]) : text[i] != pattern[i]) {
            return false;
        }
    }
    return true;
}

/// The characters from `at` on that the test accepts; moves `at` past them.
std::string taken(std::string_view line, std::size_t& at, bool (*accepts)(char)) {
    const std::size_t start = at;
    while (at < line.size() && accepts(line[at])) {
        ++at;
    }
    return std::string(line.substr(start, at - start));
}

std::string propertyListOf(const Settings& settings) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n";
    for (const Setting& setting : settings) {
        text += "<key>" + setting.key + "</key>" + setting.value + "\n";
    }
    return text + "</dict>\n</plist>\n";
}

std::vector<std::string> withProgram(const std::vector<std::string>& commandLine) {
    std::vector<std::string> arguments{"/somewhere/test_log"};
    arguments.insert(arguments.end(), commandLine.begin(), commandLine.end());
    return arguments;
}

} // namespace

std::string addressText(const void* address) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%llx",
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(address)));
    return text;
}

std::optional<LinePrefix> readPrefix(std::string_view line) {
    constexpr std::string_view datePattern = "0000-00-00 00:00:00.000";
    if (!matches(line, datePattern) || line.size() <= datePattern.size() || line[datePattern.size()] != ' ') {
        return std::nullopt;
    }
    LinePrefix prefix;
    prefix.date = line.substr(0, datePattern.size());
    const std::size_t nameStart = datePattern.size() + 1;
    std::size_t at = line.find('[', nameStart);
    if (at == std::string_view::npos || at == nameStart) {
        return std::nullopt;
    }
    prefix.process = line.substr(nameStart, at - nameStart);
    prefix.processNumber = taken(line, ++at, isDigit);
    if (prefix.processNumber.empty() || at == line.size() || line[at] != ':') {
        return std::nullopt;
    }
    prefix.threadNumber = taken(line, ++at, isLowerHexDigit);
    if (prefix.threadNumber.empty() || line.substr(at, 2) != "] ") {
        return std::nullopt;
    }
    prefix.length = at + 2;
    return prefix;
}

CapturedOutput::CapturedOutput() {
    char path[] = "/tmp/zq-log-XXXXXX";
    file_ = ::mkostemp(path, O_APPEND | O_CLOEXEC);
    before_ = ::fcntl(2, F_DUPFD_CLOEXEC, 3);
    if (file_ < 0 || before_ < 0 || ::dup2(file_, 2) != 2) {
        ADD_FAILURE() << "descriptor 2 cannot be captured: " << std::strerror(errno);
    }
    ::unlink(path);
}

CapturedOutput::~CapturedOutput() {
    ::dup2(before_, 2);
    ::close(before_);
    ::close(file_);
}

std::string CapturedOutput::bytes() const {
    std::string bytes;
    char buffer[1 << 16];
    ssize_t count = 0;
    while ((count = ::pread(file_, buffer, sizeof buffer, static_cast<off_t>(bytes.size()))) > 0) {
        bytes.append(buffer, static_cast<std::size_t>(count));
    }
    EXPECT_EQ(count, 0);
    return bytes;
}

std::vector<std::string> CapturedOutput::texts() const {
    const std::string all = bytes();
    EXPECT_TRUE(all.empty() || all.back() == '\n') << "the last line has no end: " << all;
    std::vector<std::string> texts;
    std::string_view rest = all;
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        const std::string_view line = rest.substr(0, end);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        if (const std::optional<LinePrefix> prefix = readPrefix(line)) {
            texts.emplace_back(line.substr(prefix->length));
        } else if (texts.empty()) {
            ADD_FAILURE() << "a line without a prefix: " << line;
            texts.emplace_back(line);
        } else {
            texts.back().append("\n").append(line);
        }
    }
    return texts;
}

void CapturedOutput::clear() { EXPECT_EQ(::ftruncate(file_, 0), 0); }

DefaultsScene::DefaultsScene(const Settings& settings, const std::vector<std::string>& commandLine)
    : path_(ZQFoundation::detail::overrides::defaultsFolder, folder_.path()),
      arguments_(ZQFoundation::detail::overrides::arguments, withProgram(commandLine)) {
    replace(settings);
}

void DefaultsScene::replace(const Settings& settings) {
    // Renamed into place, so that the change shows whatever the file system's clock says.
    const std::string written = folder_.write("new", propertyListOf(settings));
    EXPECT_EQ(::rename(written.c_str(), (folder_ / "NSGlobalDomain.plist").c_str()), 0);
}

TraceKeys::TraceKeys(const Settings& settings, const std::vector<std::string>& commandLine)
    : defaults_(settings, commandLine) {
    ZQFoundation::ZQLog::initializeTraceDefaultsDict();
}

bool isSetSoon(const std::atomic<bool>& flag) {
    for (int milliseconds = 0; milliseconds < 10'000 && !flag; ++milliseconds) {
        ::usleep(1000);
    }
    return flag;
}

bool anotherThreadCanTakeTheMonitor() {
    // Not waited for: it could be this thread's own caller that keeps the monitor.
    const auto taken = std::make_shared<std::atomic<bool>>(false);
    std::thread([taken] {
        const ZQFoundation::ZQLog::Synchronized scope;
        *taken = true;
    }).detach();
    return isSetSoon(*taken);
}

bool isFreshProcess() {
    const char* const marker = std::getenv(freshProcessVariable);
    if (marker == nullptr) {
        return false;
    }
    const int file = ::open(marker, O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    EXPECT_GE(file, 0);
    ::close(file);
    return true;
}

bool runThisTestAgain() {
    const scene::Folder folder;
    const std::string marker = folder / "ran";
    const scene::Variable variable(freshProcessVariable, marker.c_str());
    const scene::Variable noOutput("GTEST_OUTPUT", nullptr);
    const scene::Variable noShards("GTEST_TOTAL_SHARDS", nullptr);
    const testing::TestInfo* const test = testing::UnitTest::GetInstance()->current_test_info();
    std::string filter = std::string("--gtest_filter=") + test->test_suite_name() + "." + test->name();
    std::string program = ZQFoundation::detail::system::executablePath();
    char* const arguments[] = {program.data(), filter.data(), nullptr};
    const pid_t child = ::fork();
    if (child == 0) {
        ::execv(program.c_str(), arguments);
        ::_exit(127);
    }
    int status = 0;
    const bool ended = ::waitpid(child, &status, 0) == child;
    return ended && WIFEXITED(status) && WEXITSTATUS(status) == 0 && ::access(marker.c_str(), F_OK) == 0;
}

} // namespace logtest
