// SPDX-License-Identifier: MIT
// From the start of a program to its end: an empty one, one that loads the library and writes a line, and one
// that writes the start-up report. What they write goes to the null device. The counter `resident` is the
// most memory that one of them took, in MiB.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

void run(benchmark::State& state, const char* program) {
    std::string path = ZQ_BENCH_PROGRAMS;
    path.append("/").append(program);
    std::string key = "-TraceBenchmark";
    std::string value = "YES";
    char* const arguments[] = {path.data(), key.data(), value.data(), nullptr};
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    for (auto _ : state) {
        pid_t child = -1;
        int status = -1;
        if (::posix_spawn(&child, path.c_str(), &actions, nullptr, arguments, environ) != 0 ||
            ::waitpid(child, &status, 0) != child || status != 0) {
            std::fprintf(stderr, "%s failed\n", path.c_str());
            std::abort();
        }
    }
    ::posix_spawn_file_actions_destroy(&actions);
}

BENCHMARK_CAPTURE(run, empty, "Empty")->Name("start of a program/base")->UseRealTime();
BENCHMARK_CAPTURE(run, firstLine, "FirstLine")->Name("start of a program/first line")->UseRealTime();
BENCHMARK_CAPTURE(run, startupLog, "StartupLog")->Name("start of a program/start-up log")->UseRealTime();

} // namespace
