// SPDX-License-Identifier: MIT
// Log calls: silenced, stopped at their trace condition, and written, compared with their bases and with
// other loggers. Lines go to a file that descriptor 2 is opened on in append mode; results to standard
// output.
#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

#include "foundation/process/NSUserDefaults.h"
#include "log/ZQLog.h"
#include "log/ZQTraceKey.h"

#ifdef ZQ_BENCH_HAS_SPDLOG
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#endif
#ifdef ZQ_BENCH_HAS_GLOG
#include <glog/logging.h>
#endif
#ifdef ZQ_BENCH_HAS_GLIB
#include <glib.h>
#endif

using ZQFoundation::NSDictionary;
using ZQFoundation::NSUserDefaults;
using ZQFoundation::ZQLog;
using ZQFoundation::ZQTraceKey;

namespace {

/// Whether the kernel refuses the flag of writes that raise no signal, as older ones do.
std::atomic<bool> refusesFlag = false;
std::atomic<long> refusals = 0;

} // namespace

/// Replaces the C library's function of that name, by which the library makes system calls.
extern "C" __attribute__((visibility("default"))) long syscall(long number, ...) noexcept {
    std::va_list list;
    va_start(list, number);
    long words[6];
    for (long& word : words) {
        word = va_arg(list, long);
    }
    va_end(list);
    if (number == SYS_pwritev2 && refusesFlag.load(std::memory_order_relaxed)) {
        ++refusals;
        errno = EOPNOTSUPP;
        return -1;
    }
    using Function = long(long, ...);
    static auto* const next = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, "syscall"));
    return next(number, words[0], words[1], words[2], words[3], words[4], words[5]);
}

namespace {

/// The file that descriptor 2 refers to; emptied before each benchmark so that none grows without end.
class LogFile {
public:
    LogFile() {
        const char* const folder = std::getenv("TMPDIR");
        path_ = std::string(folder != nullptr ? folder : "/tmp") + "/zq-log-bench-XXXXXX";
        const int file = mkstemp(path_.data());
        if (file < 0 || fcntl(file, F_SETFL, O_APPEND) != 0 || dup2(file, STDERR_FILENO) < 0) {
            std::abort();
        }
        close(file);
        // Registered values come last in the lookup, and nobody sets this key elsewhere.
        NSUserDefaults::standardUserDefaults().registerDefaults(NSDictionary{{"TraceBenchmark", true}});
        ZQLog::initializeTraceDefaultsDict();
    }
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;
    ~LogFile() { unlink(path_.c_str()); }

    const std::string& path() const { return path_; }
    void empty() const {
        if (ftruncate(STDERR_FILENO, 0) != 0) {
            std::abort();
        }
    }
    std::size_t size() const {
        struct stat status {};
        fstat(STDERR_FILENO, &status);
        return static_cast<std::size_t>(status.st_size);
    }

private:
    std::string path_;
};

const LogFile& logFile() {
    static const LogFile file;
    return file;
}

struct Store {
    int count = 3;
};

const Store store;
const char* const message = "reloaded the items of the shared store from its folder, nothing changed";

void writePlainLine() { ZQLog::logAlways_log(true, message); }

void writeTracedLine() {
    ZQLog::logSelf_method_logAlways_logForTraceKey_usingFormat(
        &store, "reload:", true, "TraceBenchmark", "%d items in %s", store.count, "the shared store");
}

/// As many bytes as one line of the library has.
std::string lineLike(void (*writeLine)()) {
    logFile().empty();
    writeLine();
    std::string line(logFile().size(), 'x');
    line.back() = '\n';
    return line;
}

template <class Call>
void run(benchmark::State& state, const Call& call) {
    if (state.thread_index() == 0) {
        logFile().empty();
    }
    for (auto _ : state) {
        call();
    }
}

void emptyCall(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::ClobberMemory();
    }
}
BENCHMARK(emptyCall)->Name("flag_NO/base");

void flagNo(benchmark::State& state) {
    volatile bool setting = false; // as a host's own setting would be: unknown at compile time
    const bool gate = setting;
    for (auto _ : state) {
        ZQLog::logSelf_method_logAlways_logForTraceKey_usingFormat(&store, "reload:", gate, "TraceBenchmark",
                                                                   "%d items", store.count);
        benchmark::ClobberMemory();
    }
}

BENCHMARK(flagNo)->Name("flag_NO/library");

std::recursive_mutex referenceMutex;
const std::unordered_map<std::string, bool>& referenceTable() {
    static const std::unordered_map<std::string, bool> table = [] {
        std::unordered_map<std::string, bool> keys; // more than the standard library searches without hashing
        for (int i = 0; i < 40; ++i) {
            keys["TraceKeyNumber" + std::to_string(i)] = true;
        }
        return keys;
    }();
    return table;
}

void lockAndLookUp(benchmark::State& state) {
    const std::string key = "TraceNetwork";
    const auto& table = referenceTable();
    for (auto _ : state) {
        const std::lock_guard guard(referenceMutex);
        benchmark::DoNotOptimize(table.find(key));
    }
}
BENCHMARK(lockAndLookUp)->Name("condition_fails/base")->Threads(1)->Threads(2)->UseRealTime();

void conditionFails(benchmark::State& state) {
    run(state, [] {
        ZQLog::logSelf_method_logAlways_logForTraceKey_usingFormat(&store, "reload:", true, "TraceNetwork",
                                                                   "%d items", store.count);
    });
}
BENCHMARK(conditionFails)->Name("condition_fails/library")->Threads(1)->Threads(2)->UseRealTime();

constinit const ZQTraceKey traceNetwork("TraceNetwork");

void emptyCallInLoop(benchmark::State& state) {
    run(state, [] { benchmark::ClobberMemory(); });
}
BENCHMARK(emptyCallInLoop)->Name("key_is_off/base")->Threads(1)->Threads(2)->UseRealTime();

void keyIsOff(benchmark::State& state) {
    run(state, [] {
        traceNetwork.log(&store, "%d items", store.count);
        benchmark::ClobberMemory();
    });
}
BENCHMARK(keyIsOff)->Name("key_is_off/library")->Threads(1)->Threads(2)->UseRealTime();

void bareWrite(benchmark::State& state, void (*like)()) {
    static std::mutex once;
    std::string line;
    {
        const std::lock_guard guard(once);
        line = lineLike(like);
    }
    run(state, [&] { benchmark::DoNotOptimize(write(STDERR_FILENO, line.data(), line.size())); });
}

void written(benchmark::State& state, void (*writeLine)()) { run(state, writeLine); }

BENCHMARK_CAPTURE(bareWrite, plain, writePlainLine)->Name("line/base")->Threads(1)->Threads(2)->UseRealTime();
BENCHMARK_CAPTURE(written, plain, writePlainLine)
    ->Name("line/library")
    ->Threads(1)
    ->Threads(2)
    ->UseRealTime();
BENCHMARK_CAPTURE(bareWrite, traced, writeTracedLine)
    ->Name("traced_line/base")
    ->Threads(1)
    ->Threads(2)
    ->UseRealTime();
BENCHMARK_CAPTURE(written, traced, writeTracedLine)
    ->Name("traced_line/library")
    ->Threads(1)
    ->Threads(2)
    ->UseRealTime();

/// Cannot be undone, which does no harm: no other row writes with the flag.
void refuseFlag() {
    static const bool isRefused = [] {
        int ends[2];
        const int before = dup(STDERR_FILENO);
        if (before < 0 || pipe(ends) != 0 || dup2(ends[1], STDERR_FILENO) < 0) {
            std::abort();
        }
        refusesFlag = true;
        const pid_t child = fork(); // which checks its descriptor 2 at once
        if (child == 0) {
            writePlainLine();
            _exit(refusals == 0 ? 1 : 0);
        }
        int status = 1;
        waitpid(child, &status, 0);
        dup2(before, STDERR_FILENO);
        for (const int end : {ends[0], ends[1], before}) {
            close(end);
        }
        return status == 0;
    }();
    if (!isRefused) {
        std::abort();
    }
}

void writtenWithoutFlag(benchmark::State& state, void (*writeLine)()) {
    refuseFlag();
    run(state, writeLine);
}

BENCHMARK_CAPTURE(bareWrite, plain_old, writePlainLine)
    ->Name("line_without_flag/base")
    ->Threads(1)
    ->Threads(2)
    ->UseRealTime();
BENCHMARK_CAPTURE(writtenWithoutFlag, plain_old, writePlainLine)
    ->Name("line_without_flag/library")
    ->Threads(1)
    ->Threads(2)
    ->UseRealTime();
BENCHMARK_CAPTURE(bareWrite, traced_old, writeTracedLine)
    ->Name("traced_line_without_flag/base")
    ->Threads(1)
    ->Threads(2)
    ->UseRealTime();
BENCHMARK_CAPTURE(writtenWithoutFlag, traced_old, writeTracedLine)
    ->Name("traced_line_without_flag/library")
    ->Threads(1)
    ->Threads(2)
    ->UseRealTime();

#ifdef ZQ_BENCH_HAS_SPDLOG
spdlog::logger& spdlogLogger() {
    static const auto logger = [] {
        auto made = spdlog::basic_logger_mt("bench", logFile().path());
        made->flush_on(spdlog::level::trace);
        return made;
    }();
    return *logger;
}

void spdlogLine(benchmark::State& state) {
    spdlog::logger& logger = spdlogLogger();
    run(state, [&] { logger.info(message); });
}
BENCHMARK(spdlogLine)->Name("line/spdlog")->Threads(1)->Threads(2)->UseRealTime();

void spdlogSilent(benchmark::State& state) {
    spdlog::logger& logger = spdlogLogger();
    run(state, [&] { logger.debug("{} items", store.count); });
}
BENCHMARK(spdlogSilent)->Name("condition_fails/spdlog")->Threads(1)->Threads(2)->UseRealTime();
#endif

#ifdef ZQ_BENCH_HAS_GLOG
void glogLine(benchmark::State& state) {
    static const bool isSetUp = [] {
        FLAGS_logtostderr = true;
        google::InitGoogleLogging("bench");
        return true;
    }();
    benchmark::DoNotOptimize(isSetUp);
    run(state, [] { LOG(INFO) << message; });
}
BENCHMARK(glogLine)->Name("line/glog")->Threads(1)->Threads(2)->UseRealTime();
#endif

#ifdef ZQ_BENCH_HAS_GLIB
void glibLine(benchmark::State& state) {
    run(state, [] { g_message("%s", message); });
}
BENCHMARK(glibLine)->Name("line/GLib")->Threads(1)->Threads(2)->UseRealTime();
#endif

} // namespace
