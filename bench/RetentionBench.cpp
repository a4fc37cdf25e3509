// SPDX-License-Identifier: MIT
// Removal of 100,000 log files, each with its line, compared with a bare loop that lists, checks, writes and
// unlinks. Lines go to a file on descriptor 2; making the files again is not part of the time.
#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <ZQFoundation/ZQFoundation.h>

namespace {

constexpr int fileCount = 100000;

/// As long as what the library writes before the text of each line.
constexpr char prefix[] = "2024-03-05 14:07:09.042 bench_RetentionBench[12345:3039] ";

[[noreturn]] void fail(const char* what) {
    std::perror(what);
    std::abort();
}

class Folder {
public:
    Folder() {
        // In memory: ext4 looks for inodes that were not removed lately, and makes files ever more slowly.
        path_ = "/dev/shm/zq-retention-bench-XXXXXX";
        if (::mkdtemp(path_.data()) == nullptr) {
            fail("mkdtemp");
        }
        log_ = path_;
        log_.append(".log");
        const int file = ::open(log_.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_APPEND, 0600);
        if (file < 0 || ::dup2(file, STDERR_FILENO) < 0) {
            fail("the log of the benchmark");
        }
        ::close(file);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() {
        ::rmdir(path_.c_str());
        ::unlink(log_.c_str());
    }

    const std::string& path() const { return path_; }

    void fill() const {
        if (::ftruncate(STDERR_FILENO, 0) != 0) {
            fail("ftruncate");
        }
        std::string name = path_;
        name.append("/").append(ZQFoundation::NSProcessInfo::processInfo().processName().utf8()).append(".");
        const std::size_t start = name.size();
        for (int number = 0; number < fileCount; ++number) {
            name.resize(start);
            name.append(std::to_string(number)).append(".log");
            const int file = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
            if (file < 0) {
                fail("a log file");
            }
            ::close(file);
        }
    }

private:
    std::string path_;
    std::string log_;
};

const Folder& folder() {
    static const Folder instance;
    return instance;
}

/// Fills the folder and times one removal of everything in it.
template <class Remove>
void measure(benchmark::State& state, const Remove& remove) {
    for (auto _ : state) {
        folder().fill();
        const auto start = std::chrono::steady_clock::now();
        remove();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(taken.count());
    }
    state.SetItemsProcessed(state.iterations() * fileCount);
}

void writeLine(std::string& line, const std::string& path) {
    line.assign(prefix).append("Removing log file ").append(path).append(" due to log file age\n");
    if (::write(STDERR_FILENO, line.data(), line.size()) < 0) {
        fail("write");
    }
}

void bare(benchmark::State& state) {
    measure(state, [] {
        std::vector<std::string> names;
        DIR* const listing = ::opendir(folder().path().c_str());
        while (const dirent* const entry = ::readdir(listing)) {
            if (entry->d_name[0] != '.') {
                names.emplace_back(entry->d_name);
            }
        }
        ::closedir(listing);
        std::string path;
        std::string line;
        for (const std::string& name : names) {
            path.assign(folder().path()).append("/").append(name);
            struct stat information;
            if (::stat(path.c_str(), &information) == 0) {
                writeLine(line, path);
                ::unlink(path.c_str());
            }
        }
    });
}

void library(benchmark::State& state) {
    measure(state, [] {
        ZQFoundation::ZQLog::removeLogfilesOlderThan_fromFolder(
            ZQFoundation::NSDate::dateWithTimeIntervalSinceReferenceDate(1e10), folder().path());
    });
}

void filesystem(benchmark::State& state) {
    measure(state, [] {
        std::string line;
        std::vector<std::filesystem::path> paths;
        for (const auto& entry : std::filesystem::directory_iterator(folder().path())) {
            paths.push_back(entry.path());
        }
        for (const auto& path : paths) {
            std::error_code error;
            benchmark::DoNotOptimize(std::filesystem::last_write_time(path, error));
            writeLine(line, path.native());
            std::filesystem::remove(path, error);
        }
    });
}

BENCHMARK(bare)->Name("removal of 100,000 log files/base")->Iterations(1)->UseManualTime();
BENCHMARK(library)->Name("removal of 100,000 log files/library")->Iterations(1)->UseManualTime();
BENCHMARK(filesystem)->Name("removal of 100,000 log files/filesystem")->Iterations(1)->UseManualTime();

} // namespace
