// SPDX-License-Identifier: MIT
// Finding a free name beside ten thousand taken ones: the library, and the bare tests of existence that
// cannot be avoided.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <ZQFoundation/ZQFoundation.h>

namespace {

constexpr int takenNames = 10000;

std::string candidate(const std::string& folder, int count) {
    return folder + "/notes " + std::to_string(count) + ".txt";
}

/// A folder in which "notes.txt" and its first ten thousand successors exist.
class TakenNames {
public:
    TakenNames() {
        if (::mkdtemp(folder_.data()) == nullptr) {
            std::perror("mkdtemp");
            std::abort();
        }
        make(wanted());
        for (int count = 1; count <= takenNames; ++count) {
            make(candidate(folder_, count));
        }
    }
    TakenNames(const TakenNames&) = delete;
    TakenNames& operator=(const TakenNames&) = delete;
    ~TakenNames() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    const std::string& folder() const { return folder_; }
    std::string wanted() const { return folder_ + "/notes.txt"; }

private:
    static void make(const std::string& path) {
        const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0644);
        if (file < 0 || ::close(file) != 0) {
            std::perror(path.c_str());
            std::abort();
        }
    }

    std::string folder_ = "/tmp/zq-unique-bench-XXXXXX";
};

const TakenNames& scene() {
    static const TakenNames names;
    return names;
}

void base(benchmark::State& state) {
    const std::string folder = scene().folder();
    for (auto _ : state) {
        struct stat information;
        int count = 1;
        while (::stat(candidate(folder, count).c_str(), &information) == 0) {
            ++count;
        }
        if (count != takenNames + 1) {
            state.SkipWithError("another name is free");
        }
    }
}

void library(benchmark::State& state) {
    const ZQFoundation::NSString wanted(scene().wanted());
    const ZQFoundation::NSString expected(candidate(scene().folder(), takenNames + 1));
    for (auto _ : state) {
        if (ZQFoundation::ZQFileMigrator::uniquePathForPath_usingIntermediateString(wanted, " ") !=
            expected) {
            state.SkipWithError("another name is free");
        }
    }
}

BENCHMARK(base)->Name("unique path, 10,000 names taken/base")->Unit(benchmark::kMillisecond);
BENCHMARK(library)->Name("unique path, 10,000 names taken/library")->Unit(benchmark::kMillisecond);

} // namespace
