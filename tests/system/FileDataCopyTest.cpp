// SPDX-License-Identifier: MIT
// Copying the data of a file by every means that a system has.
#include <atomic>
#include <cstring>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "foundation/system/Descriptor.h"
#include "foundation/system/FileSystem.h"
#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/ScratchFolder.h"

using namespace ZQFoundation;
using namespace ZQFoundation::detail;
using system::copyFileData;
using system::DataMeans;

namespace {

constexpr DataMeans allMeans[] = {DataMeans::clone, DataMeans::rangeCopy, DataMeans::transfer,
                                  DataMeans::buffer};

/// Bytes of which no two blocks are alike.
std::string mixedBytes(std::size_t count) {
    std::string bytes(count, '\0');
    for (std::size_t index = 0; index < count; ++index) {
        bytes[index] = static_cast<char>((index * 2654435761U) >> 13U);
    }
    return bytes;
}

/// An open descriptor; fails the test if there is none.
struct OpenFile : Descriptor {
    OpenFile(const std::string& path, int flags) : Descriptor(::open(path.c_str(), flags | O_CLOEXEC, 0600)) {
        EXPECT_GE(number(), 0) << path << ": " << std::strerror(errno);
    }
};

bool copyFile(const std::string& from, const std::string& to, DataMeans first) {
    const OpenFile source(from, O_RDONLY);
    const OpenFile destination(to, O_WRONLY | O_CREAT | O_EXCL);
    return copyFileData(source.number(), destination.number(), first);
}

struct stat informationOf(const std::string& path) {
    struct stat information {};
    EXPECT_EQ(::stat(path.c_str(), &information), 0) << path;
    return information;
}

/// A folder on another file system than /tmp, or empty.
std::string otherFileSystem() {
    struct stat here;
    struct stat there;
    return ::stat("/tmp", &here) == 0 && ::stat("/dev/shm", &there) == 0 && here.st_dev != there.st_dev &&
                   ::access("/dev/shm", W_OK) == 0
               ? "/dev/shm"
               : "";
}

class FileDataCopy : public testing::Test {
protected:
    std::string in(const std::string& name) const { return folder / name; }
    kit::ScratchFolder folder;
};

TEST_F(FileDataCopy, everyMeansCopiesEverySize) {
    for (const std::size_t size : {0U, 1U, 4095U, 32768U, 32769U, 65536U, 131071U, 131073U, 3000001U}) {
        const std::string bytes = mixedBytes(size);
        folder.write("a", bytes);
        for (const DataMeans means : allMeans) {
            EXPECT_TRUE(copyFile(in("a"), in("b"), means)) << size << " " << std::strerror(errno);
            EXPECT_TRUE(kit::contentsOf(in("b")) == bytes) << size << " " << static_cast<int>(means);
            ::unlink(in("b").c_str());
        }
    }
}

TEST_F(FileDataCopy, everyMeansGetsToAnotherFileSystem) {
    const std::string bytes = mixedBytes(1000003);
    folder.write("a", bytes);
    const std::string other = otherFileSystem();
    // Without another one the copy stays here, which shows less and must still be right.
    const kit::Variable place("TMPDIR", other.empty() ? "/tmp" : other.c_str());
    const kit::ScratchFolder away;
    for (const DataMeans means : allMeans) {
        EXPECT_TRUE(copyFile(in("a"), away / "b", means));
        EXPECT_TRUE(kit::contentsOf(away / "b") == bytes) << static_cast<int>(means);
        ::unlink((away / "b").c_str());
    }
}

TEST_F(FileDataCopy, everyMeansKeepsHoles) {
    constexpr off_t size = off_t{8} << 30; // more than anybody would want to be written
    const std::string island = mixedBytes(100000);
    {
        const OpenFile file(in("a"), O_WRONLY | O_CREAT);
        const auto count = static_cast<ssize_t>(island.size());
        for (const off_t at : {off_t{0}, off_t{1} << 20, (off_t{5} << 30) + 12345}) {
            ASSERT_EQ(::pwrite(file.number(), island.data(), island.size(), at), count);
        }
        ASSERT_EQ(::ftruncate(file.number(), size), 0);
    }
    for (const DataMeans means : allMeans) {
        ASSERT_TRUE(copyFile(in("a"), in("b"), means)) << std::strerror(errno);
        const struct stat made = informationOf(in("b"));
        EXPECT_EQ(made.st_size, size);
        EXPECT_LT(made.st_blocks, 4096) << static_cast<int>(means);
        const OpenFile file(in("b"), O_RDONLY);
        std::string read(island.size() + 2, 'x');
        ASSERT_EQ(::pread(file.number(), read.data(), read.size(), (off_t{5} << 30) + 12344),
                  static_cast<ssize_t>(read.size()));
        EXPECT_TRUE(read == std::string(1, '\0') + island + std::string(1, '\0'));
        ::unlink(in("b").c_str());
    }
}

TEST_F(FileDataCopy, aSmallFileKeepsItsHoleToo) {
    folder.write("a", "");
    ASSERT_EQ(::truncate(in("a").c_str(), 20000), 0);
    for (const DataMeans means : allMeans) {
        ASSERT_TRUE(copyFile(in("a"), in("b"), means));
        EXPECT_EQ(informationOf(in("b")).st_size, 20000);
        EXPECT_EQ(informationOf(in("b")).st_blocks, 0);
        ::unlink(in("b").c_str());
    }
}

TEST_F(FileDataCopy, aDestinationThatAppendsRefusesTheKernelsMeansAndIsWrittenAllTheSame) {
    const std::string bytes = mixedBytes(500000);
    folder.write("a", bytes);
    for (const DataMeans means : allMeans) {
        {
            const OpenFile source(in("a"), O_RDONLY);
            const OpenFile destination(in("b"), O_WRONLY | O_CREAT | O_APPEND);
            EXPECT_TRUE(copyFileData(source.number(), destination.number(), means));
        }
        EXPECT_TRUE(kit::contentsOf(in("b")) == bytes);
        ::unlink(in("b").c_str());
    }
}

TEST_F(FileDataCopy, readsFilesOfUnknownSize) {
    if (::access("/proc/self/status", R_OK) != 0) {
        GTEST_SKIP() << "there is no process file system";
    }
    for (const DataMeans means : allMeans) {
        EXPECT_TRUE(copyFile("/proc/self/status", in("b"), means));
        EXPECT_NE(kit::contentsOf(in("b")).find("VmRSS"), std::string::npos);
        ::unlink(in("b").c_str());
    }
}

TEST_F(FileDataCopy, saysWhyItFailed) {
    folder.write("a", mixedBytes(100000));
    const OpenFile source(in("a"), O_RDONLY);
    const OpenFile sink("/dev/full", O_WRONLY);
    const OpenFile writeOnly(in("b"), O_WRONLY | O_CREAT);
    for (const DataMeans means : allMeans) {
        EXPECT_FALSE(copyFileData(source.number(), sink.number(), means));
        EXPECT_EQ(errno, ENOSPC) << static_cast<int>(means);
        EXPECT_FALSE(copyFileData(-1, sink.number(), means));
        EXPECT_EQ(errno, EBADF);
        EXPECT_FALSE(copyFileData(source.number(), source.number(), means)) << "not open for writing";
        EXPECT_EQ(errno, EBADF);
        const OpenFile directory(folder.path(), O_RDONLY | O_DIRECTORY);
        EXPECT_FALSE(copyFileData(directory.number(), writeOnly.number(), means));
    }
}

TEST_F(FileDataCopy, aFileSizeLimitIsAnErrorAndNoSignal) {
    folder.write("small", mixedBytes(20000));
    folder.write("large", mixedBytes(300000));
    folder.write("sparse", "");
    ASSERT_EQ(::truncate(in("sparse").c_str(), 300000), 0);
    kit::expectAsUser([this] {
        const kit::Variable place("TMPDIR", nullptr);
        const kit::ScratchFolder own; // the one of the test belongs to somebody else
        const rlimit limit{10000, 10000};
        ::setrlimit(RLIMIT_FSIZE, &limit); // from here on a write beyond it ends the process
        int wrong = 0;
        for (const char* const name : {"small", "large", "sparse"}) {
            for (const DataMeans means : allMeans) {
                const bool isRight = !copyFile(in(name), own / "b", means) && errno == EFBIG &&
                                     informationOf(own / "b").st_size <= 10000;
                wrong += isRight ? 0 : 1;
                ::unlink((own / "b").c_str());
            }
        }
        return wrong;
    });
}

TEST_F(FileDataCopy, aFileThatGrowsIsFollowedButNotForEver) {
    folder.write("a", mixedBytes(200000));
    for (const DataMeans means : allMeans) {
        std::atomic<bool> done = false;
        std::thread writer([&] {
            const OpenFile file(in("a"), O_WRONLY | O_APPEND);
            const std::string more = mixedBytes(50000);
            for (int round = 0; !done && round < 2000; ++round) {
                EXPECT_EQ(::write(file.number(), more.data(), more.size()),
                          static_cast<ssize_t>(more.size()));
            }
        });
        EXPECT_TRUE(copyFile(in("a"), in("b"), means)) << std::strerror(errno);
        done = true;
        writer.join();
        const std::string copy = kit::contentsOf(in("b"));
        EXPECT_GE(copy.size(), 200000U);
        EXPECT_EQ(kit::contentsOf(in("a")).compare(0, copy.size(), copy), 0) << static_cast<int>(means);
        ::unlink(in("b").c_str());
        ASSERT_EQ(::truncate(in("a").c_str(), 200000), 0);
    }
}

TEST_F(FileDataCopy, aFileThatShrinksIsCopiedAsItIsFound) {
    for (const DataMeans means : allMeans) {
        folder.write("a", mixedBytes(20000000));
        std::thread cutter([&] { EXPECT_EQ(::truncate(in("a").c_str(), 1000), 0); });
        EXPECT_TRUE(copyFile(in("a"), in("b"), means)) << std::strerror(errno);
        cutter.join();
        EXPECT_LE(informationOf(in("b")).st_size, 20000000);
        EXPECT_GE(informationOf(in("b")).st_size, 1000);
        ::unlink(in("b").c_str());
    }
}

TEST_F(FileDataCopy, attributesGoAlong) {
    folder.write("a", "x");
    folder.write("b", "x");
    const OpenFile source(in("a"), O_RDONLY);
    const OpenFile destination(in("b"), O_WRONLY);
    EXPECT_TRUE(system::copyExtendedAttributes(source.number(), destination.number()))
        << "there is nothing to copy";
    EXPECT_FALSE(system::copyExtendedAttributes(-1, destination.number()));
    EXPECT_EQ(errno, EBADF);
    EXPECT_TRUE(system::removeInheritedAccessList(destination.number()));
    EXPECT_FALSE(system::removeInheritedAccessList(-1));
}

} // namespace
