// SPDX-License-Identifier: MIT
// Copies of one large file and of a tree of small ones, and moves of such a tree, on the disk (TMPDIR or
// /tmp) and in memory (/dev/shm). Making the source and removing the copy are not part of the time.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include <ZQFoundation/ZQFoundation.h>

namespace {

constexpr int folderCount = 200;
constexpr int filesPerFolder = 100;
constexpr std::size_t smallFileBytes = 4096;
constexpr std::size_t largeFileBytes = std::size_t{1} << 30;

[[noreturn]] void fail(const char* what) {
    std::perror(what);
    std::abort();
}

/// Bytes that no file system can compress.
std::vector<char> noise(std::size_t count) {
    std::vector<char> bytes(count);
    unsigned long long state = 88172645463325252U;
    for (char& byte : bytes) {
        state ^= state << 13U;
        state ^= state >> 7U;
        state ^= state << 17U;
        byte = static_cast<char>(state);
    }
    return bytes;
}

void writeFile(const std::string& path, std::size_t size, const std::vector<char>& bytes) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0644);
    for (std::size_t written = 0; file >= 0 && written < size;) {
        const ssize_t count = ::write(file, bytes.data(), std::min(bytes.size(), size - written));
        if (count < 0) {
            fail(path.c_str());
        }
        written += static_cast<std::size_t>(count);
    }
    if (file < 0 || ::close(file) != 0) {
        fail(path.c_str());
    }
}

void makeOneFile(const std::string& path) { writeFile(path, largeFileBytes, noise(std::size_t{1} << 20)); }

void makeTree(const std::string& path) {
    const std::vector<char> bytes = noise(smallFileBytes);
    ::mkdir(path.c_str(), 0755);
    for (int folder = 0; folder < folderCount; ++folder) {
        const std::string inner = path + "/" + std::to_string(folder);
        ::mkdir(inner.c_str(), 0755);
        for (int file = 0; file < filesPerFolder; ++file) {
            writeFile(inner + "/" + std::to_string(file), smallFileBytes, bytes);
        }
    }
}

/// A folder for sources and copies, removed at the end of the program.
class Scratch {
public:
    explicit Scratch(const std::string& place) : path_(place + "/zq-copy-bench-XXXXXX") {
        if (::mkdtemp(path_.data()) == nullptr) {
            fail(place.c_str());
        }
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    ~Scratch() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    std::string newName() { return path_ + "/" + std::to_string(++count_); }

private:
    std::string path_;
    int count_ = 0;
};

bool run(std::vector<std::string> words) {
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    pid_t child = -1;
    int status = -1;
    return ::posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ) == 0 &&
           ::waitpid(child, &status, 0) == child && status == 0;
}

using Copy = bool (*)(const std::string& source, const std::string& copy);
using Make = void (*)(const std::string& path);

bool base(const std::string& source, const std::string& copy) { return run({"cp", "-a", source, copy}); }

bool rsync(const std::string& source, const std::string& copy) {
    return std::filesystem::is_directory(source) ? run({"rsync", "-a", source + "/", copy})
                                                 : run({"rsync", "-a", source, copy});
}

bool filesystem(const std::string& source, const std::string& copy) {
    std::error_code error;
    std::filesystem::copy(
        source, copy, std::filesystem::copy_options::recursive | std::filesystem::copy_options::copy_symlinks,
        error);
    return !error;
}

bool library(const std::string& source, const std::string& copy) {
    return ZQFoundation::NSFileManager::defaultManager().copyItemAtPath_toPath_error(source, copy);
}

/// The copy is on the disk before the source is removed.
bool moveBase(const std::string& source, const std::string& copy) {
    return run({"cp", "-a", source, copy}) && run({"sync", "-f", copy}) && run({"rm", "-r", source});
}

bool moveByLibrary(const std::string& source, const std::string& copy) {
    return ZQFoundation::ZQFileMigrator::migrateFolder(source, copy, {}).code ==
           ZQFoundation::kFileMigrationSuccess;
}

bool moveAsBatch(const std::string& source, const std::string& copy) {
    const auto result = ZQFoundation::ZQFileMigrator::migrateFiles(
        nullptr, source, copy, {.createDestinationParentFolder = true, .includeDotFiles = true});
    return result.codes.count() == std::size_t{folderCount} * filesPerFolder;
}

bool migrateACopy(const std::string& source, const std::string& copy) {
    return ZQFoundation::ZQFileMigrator::migrateFolder(source, copy, {.keepOriginal = true}).code ==
           ZQFoundation::kFileMigrationSuccess;
}

/// One kind of work in one place: the source, made at its first use, and a way to name copies.
struct Work {
    const char* place;
    const char* name;
    Make make;
    bool isKept;      ///< whether copies stay until the end
    bool takesSource; ///< a move: the source is made again each time
    std::string source;
};

Scratch& scratchIn(const char* place) {
    if (std::strcmp(place, "/dev/shm") == 0) {
        static Scratch inMemory(place);
        return inMemory;
    }
    static Scratch onDisk(place);
    return onDisk;
}

void measure(benchmark::State& state, Work* work, Copy copy) {
    for (auto _ : state) {
        if (work->source.empty() || work->takesSource) {
            work->source = scratchIn(work->place).newName();
            work->make(work->source);
        }
        const std::string copyPath = scratchIn(work->place).newName();
        ::sync(); // earlier writes must not count as time of the copy
        const auto start = std::chrono::steady_clock::now();
        const bool isCopied = copy(work->source, copyPath);
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        if (!isCopied) {
            fail("a copy");
        }
        state.SetIterationTime(taken.count());
        if (!work->isKept) {
            std::filesystem::remove_all(copyPath);
        }
        if (work->takesSource) {
            std::filesystem::remove_all(work->source); // a batch leaves the folders
        }
    }
}

bool isInstalled(const char* program) {
    return run({"sh", "-c", std::string("command -v ") + program + " >/dev/null"});
}

void addRows(Work& work, const std::vector<std::pair<const char*, Copy>>& contenders) {
    for (const auto& [who, copy] : contenders) {
        const bool isOfFolders = copy == migrateACopy && work.make == makeOneFile;
        if (::access(work.place, W_OK) == 0 && !isOfFolders) {
            const std::string name = std::string(work.name) + "/" + who;
            benchmark::RegisterBenchmark(name.c_str(), measure, &work, copy)
                ->Iterations(1)
                ->UseManualTime()
                ->Unit(benchmark::kMillisecond);
        }
    }
}

[[maybe_unused]] const bool areRegistered = [] {
    const char* const temporary = std::getenv("TMPDIR");
    const char* const disk = temporary != nullptr ? temporary : "/tmp";
    static Work works[] = {
        {disk, "one file of 1 GiB on disk", makeOneFile, false, false, {}},
        {disk, "20,000 files of 4 KiB in 200 folders on disk", makeTree, true, false, {}},
        {"/dev/shm", "one file of 1 GiB in memory", makeOneFile, false, false, {}},
        {"/dev/shm", "20,000 files of 4 KiB in 200 folders in memory", makeTree, false, false, {}},
    };
    static Work moves[] = {
        {disk, "moving 20,000 files of 4 KiB on disk", makeTree, false, true, {}},
        {"/dev/shm", "moving 20,000 files of 4 KiB in memory", makeTree, false, true, {}},
    };
    std::vector<std::pair<const char*, Copy>> copiers = {
        {"base", base}, {"filesystem", filesystem}, {"library", library}, {"migration", migrateACopy}};
    if (isInstalled("rsync")) {
        copiers.emplace_back("rsync", rsync);
    }
    for (Work& work : works) {
        addRows(work, copiers);
    }
    for (Work& work : moves) {
        addRows(work, {{"base", moveBase}, {"library", moveByLibrary}, {"batch", moveAsBatch}});
    }
    return true;
}();

} // namespace
