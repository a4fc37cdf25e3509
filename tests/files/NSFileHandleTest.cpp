// SPDX-License-Identifier: MIT
// Reading, writing and seeking with file handles, and who closes their descriptors.
#include "foundation/files/NSFileHandle.h"

#include <cerrno>
#include <csignal>
#include <string>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/files/NSFileManager.h"
#include "tests/kit/Child.h"
#include "tests/kit/Items.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace std::string_literals;
using kit::bytesOf;
using kit::contentsOf;
using kit::dataOf;
using kit::raised;

namespace {

constexpr const char* failure = "NSFileHandleOperationException";

TEST(NSFileHandle, ofNilDoesNothing) {
    NSFileHandle handle;
    EXPECT_FALSE(handle);
    EXPECT_FALSE(NSFileHandle(nullptr));
    EXPECT_EQ(handle.fileDescriptor(), -1);
    EXPECT_EQ(handle.seekToEndOfFile(), 0U);
    EXPECT_EQ(handle.offsetInFile(), 0U);
    handle.seekToFileOffset(SIZE_MAX);
    handle.writeData(dataOf("x"));
    handle.truncateFileAtOffset(0);
    handle.synchronizeFile();
    EXPECT_FALSE(handle.readDataOfLength(1));
    EXPECT_FALSE(handle.readDataToEndOfFile());
    handle.closeFile();
    EXPECT_EQ(handle.fileDescriptor(), -1) << "nil is not a closed file";
}

TEST(NSFileHandle, raisesForEverythingAfterClosing) {
    const kit::ScratchFolder folder;
    NSFileHandle handle = NSFileHandle::fileHandleForUpdatingAtPath(folder.write("f", "abc"));
    handle.closeFile();
    handle.closeFile();
    EXPECT_TRUE(handle) << "a closed file is not nil";
    EXPECT_EQ(raised([&] { handle.fileDescriptor(); }), failure);
    EXPECT_EQ(raised([&] { handle.offsetInFile(); }), failure);
    EXPECT_EQ(raised([&] { handle.seekToEndOfFile(); }), failure);
    EXPECT_EQ(raised([&] { handle.seekToFileOffset(0); }), failure);
    EXPECT_EQ(raised([&] { handle.writeData(nullptr); }), failure);
    EXPECT_EQ(raised([&] { handle.readDataOfLength(0); }), failure);
    EXPECT_EQ(raised([&] { handle.readDataToEndOfFile(); }), failure);
    EXPECT_EQ(raised([&] { handle.truncateFileAtOffset(0); }), failure);
    EXPECT_EQ(raised([&] { handle.synchronizeFile(); }), failure);
    EXPECT_EQ(contentsOf(folder / "f"), "abc");
}

TEST(NSFileHandle, isMovedWithItsDescriptor) {
    const kit::ScratchFolder folder;
    const int before = kit::openDescriptors();
    {
        NSFileHandle first = NSFileHandle::fileHandleForWritingAtPath(folder.write("f", ""));
        NSFileHandle second(std::move(first));
        EXPECT_FALSE(first); // NOLINT: what is left of it
        EXPECT_TRUE(second);
        NSFileHandle third = NSFileHandle::fileHandleForWritingAtPath(folder.write("g", ""));
        third = std::move(second);
        EXPECT_EQ(kit::openDescriptors(), before + 1);
        third.writeData(dataOf("x"));
        NSFileHandle& same = third;
        third = std::move(same);
        third.writeData(dataOf("y"));
        EXPECT_EQ(::fcntl(third.fileDescriptor(), F_GETFD), FD_CLOEXEC);
        EXPECT_EQ(::fcntl(third.fileDescriptor(), F_GETFL) & O_NONBLOCK, 0);
    }
    EXPECT_EQ(contentsOf(folder / "f"), "xy");
    EXPECT_EQ(contentsOf(folder / "g"), "");
    EXPECT_EQ(kit::openDescriptors(), before);
}

TEST(NSFileHandle, opensForWhatItsNameSays) {
    const kit::ScratchFolder folder;
    const std::string path = folder.write("f", "abc");
    NSFileHandle reader = NSFileHandle::fileHandleForReadingAtPath(path);
    EXPECT_EQ(raised([&] { reader.writeData(dataOf("x")); }), failure);
    EXPECT_EQ(raised([&] { reader.truncateFileAtOffset(0); }), failure);
    NSFileHandle writer = NSFileHandle::fileHandleForWritingAtPath(path);
    EXPECT_EQ(raised([&] { writer.readDataOfLength(1); }), failure);
    NSFileHandle both = NSFileHandle::fileHandleForUpdatingAtPath(path);
    EXPECT_EQ(bytesOf(both.readDataOfLength(1)), "a");
    both.writeData(dataOf("X"));
    EXPECT_EQ(bytesOf(both.readDataToEndOfFile()), "c");
    EXPECT_EQ(contentsOf(path), "aXc");
}

TEST(NSFileHandle, opensNeitherFoldersNorMissingFilesNorPipesWithoutReaders) {
    const kit::ScratchFolder folder;
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    ASSERT_EQ(::symlink("nowhere", (folder / "link").c_str()), 0);
    const int before = kit::openDescriptors();
    for (const std::string& path : {folder.path(), folder / "missing", folder / "link", ""s}) {
        EXPECT_FALSE(NSFileHandle::fileHandleForReadingAtPath(path)) << path;
        EXPECT_FALSE(NSFileHandle::fileHandleForWritingAtPath(path)) << path;
        EXPECT_FALSE(NSFileHandle::fileHandleForUpdatingAtPath(path)) << path;
    }
    EXPECT_FALSE(NSFileHandle::fileHandleForWritingAtPath(folder / "pipe"));
    EXPECT_EQ(kit::openDescriptors(), before);
    EXPECT_FALSE(kit::exists(folder / "nowhere"));
}

TEST(NSFileHandle, takesPathsOfAnyLength) {
    const kit::ScratchFolder folder;
    const std::string name(200, 'n');
    const std::string last = kit::makeChain(folder.path(), name, 30);
    const std::string path = last + "/f";
    NSFileHandle handle = NSFileHandle::fileHandleForWritingAtPath(path);
    EXPECT_FALSE(handle);
    EXPECT_TRUE(
        NSFileManager::defaultManager().createFileAtPath_contents_attributes(path, dataOf("long"), nullptr));
    handle = NSFileHandle::fileHandleForReadingAtPath(path);
    EXPECT_EQ(bytesOf(handle.readDataToEndOfFile()), "long");
    EXPECT_TRUE(NSFileManager::defaultManager().removeItemAtPath_error(path, nullptr));
}

TEST(NSFileHandle, moves) {
    const kit::ScratchFolder folder;
    const std::string path = folder.write("f", "abcdef");
    NSFileHandle handle = NSFileHandle::fileHandleForUpdatingAtPath(path);
    handle.seekToFileOffset(4);
    EXPECT_EQ(handle.offsetInFile(), 4U);
    EXPECT_EQ(bytesOf(handle.readDataOfLength(100)), "ef");
    EXPECT_EQ(bytesOf(handle.readDataOfLength(100)), "");
    handle.seekToFileOffset(8);
    handle.writeData(dataOf("z"));
    EXPECT_EQ(contentsOf(path), "abcdef\0\0z"s);
    EXPECT_EQ(handle.seekToEndOfFile(), 9U);
    EXPECT_EQ(raised([&] { handle.seekToFileOffset(std::uint64_t{1} << 63); }), failure);
    EXPECT_EQ(raised([&] { handle.truncateFileAtOffset(UINT64_MAX); }), failure);
    EXPECT_EQ(handle.offsetInFile(), 9U);
}

TEST(NSFileHandle, cutsOffAndFillsUp) {
    const kit::ScratchFolder folder;
    const std::string path = folder.write("f", "abcdef");
    NSFileHandle handle = NSFileHandle::fileHandleForUpdatingAtPath(path);
    handle.truncateFileAtOffset(3);
    EXPECT_EQ(contentsOf(path), "abc");
    EXPECT_EQ(handle.offsetInFile(), 3U);
    handle.truncateFileAtOffset(5);
    EXPECT_EQ(contentsOf(path), "abc\0\0"s);
    handle.writeData(dataOf("x"));
    EXPECT_EQ(contentsOf(path), "abc\0\0x"s);
    handle.synchronizeFile();
}

TEST(NSFileHandle, readsNoMoreThanAskedFor) {
    const kit::ScratchFolder folder;
    const std::string text(100000, 'q');
    NSFileHandle handle = NSFileHandle::fileHandleForReadingAtPath(folder.write("f", text));
    EXPECT_EQ(bytesOf(handle.readDataOfLength(0)), "");
    EXPECT_EQ(handle.readDataOfLength(40000).length(), 40000U);
    EXPECT_EQ(handle.offsetInFile(), 40000U);
    EXPECT_EQ(handle.readDataOfLength(SIZE_MAX).length(), 60000U);
}

TEST(NSFileHandle, raisesAtALimitWithoutASignal) {
    const kit::ScratchFolder folder;
    ASSERT_EQ(::chmod(folder.path().c_str(), 0777), 0);
    const std::string path = folder / "f";
    kit::expectAsUser([&] {
        folder.write("f", "");
        const rlimit limit{10, 10};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        NSFileHandle handle = NSFileHandle::fileHandleForWritingAtPath(path);
        const bool isRaised = raised([&] { handle.writeData(dataOf("0123456789ab")); }) == failure &&
                              raised([&] { handle.truncateFileAtOffset(11); }) == failure;
        handle.truncateFileAtOffset(9);
        return isRaised;
    });
    EXPECT_EQ(contentsOf(path), "012345678");
}

/// A pipe whose writing end is a file handle.
struct Pipe {
    Pipe() {
        EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
        writer = NSFileHandle::fileHandleForWritingAtPath("/proc/self/fd/" + std::to_string(ends[1]));
        ::close(ends[1]);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() { closeReader(); }

    void closeReader() {
        if (ends[0] >= 0) {
            ::close(ends[0]);
            ends[0] = -1;
        }
    }

    int ends[2] = {-1, -1};
    NSFileHandle writer;
};

TEST(NSFileHandle, raisesForAReaderThatIsGoneWithoutASignal) {
    Pipe pipe;
    ASSERT_TRUE(pipe.writer);
    pipe.closeReader();
    EXPECT_EQ(raised([&] { pipe.writer.writeData(dataOf("x")); }), failure);
    EXPECT_EQ(raised([&] { pipe.writer.seekToEndOfFile(); }), failure);
    EXPECT_EQ(raised([&] { pipe.writer.synchronizeFile(); }), failure);
}

std::string manyBytes() {
    std::string bytes;
    for (int i = 0; i < 200000; ++i) {
        bytes += std::to_string(i);
    }
    return bytes;
}

TEST(NSFileHandle, writesOnWhenAPipeIsFull) {
    for (const int flags : {0, O_NONBLOCK}) {
        Pipe pipe;
        ASSERT_EQ(::fcntl(pipe.writer.fileDescriptor(), F_SETFL, flags), 0);
        std::string read;
        std::thread reader([&] { read = kit::readToEnd(pipe.ends[0]); });
        pipe.writer.writeData(dataOf(manyBytes()));
        pipe.writer.closeFile();
        reader.join();
        EXPECT_TRUE(read == manyBytes()) << flags;
    }
}

TEST(NSFileHandle, writesAndReadsOnWhenSignalsComeIn) {
    const kit::ScratchFolder folder;
    kit::expectAsUser([&] {
        struct sigaction action {};
        action.sa_handler = [](int) {
        }; // without SA_RESTART
        ::sigaction(SIGUSR1, &action, nullptr);
        Pipe pipe;
        const pthread_t main = ::pthread_self();
        std::atomic<bool> isDone{false};
        std::string read;
        std::thread reader([&] {
            while (!isDone) {
                char buffer[4096];
                ::pthread_kill(main, SIGUSR1);
                const ssize_t count = ::read(pipe.ends[0], buffer, sizeof buffer);
                if (count == 0) {
                    break;
                }
                read.append(buffer, static_cast<std::size_t>(count > 0 ? count : 0));
            }
        });
        pipe.writer.writeData(dataOf(manyBytes()));
        pipe.writer.closeFile();
        reader.join();
        return read == manyBytes();
    });
}

TEST(NSFileHandle, keepsErrno) {
    const kit::ScratchFolder folder;
    const std::string path = folder.write("f", "abc");
    errno = 4711;
    NSFileHandle::fileHandleForReadingAtPath(folder / "missing");
    {
        NSFileHandle handle = NSFileHandle::fileHandleForUpdatingAtPath(path);
        handle.writeData(dataOf("x"));
        handle.seekToEndOfFile();
        handle.readDataToEndOfFile();
        raised([&] { handle.seekToFileOffset(UINT64_MAX); });
        EXPECT_EQ(errno, 4711);
    }
    EXPECT_EQ(errno, 4711);
}

TEST(NSFileHandle, writesNothingForNilAndEmptyData) {
    const kit::ScratchFolder folder;
    NSFileHandle handle = NSFileHandle::fileHandleForWritingAtPath(folder.write("f", "a"));
    handle.writeData(nullptr);
    handle.writeData(NSData::data());
    EXPECT_EQ(handle.offsetInFile(), 0U);
    EXPECT_EQ(kit::contentsOf(folder / "f"), "a");
}

TEST(NSFileHandle, raisesForAFullDevice) {
    NSFileHandle full = NSFileHandle::fileHandleForWritingAtPath("/dev/full");
    ASSERT_TRUE(full);
    EXPECT_EQ(raised([&] { full.writeData(dataOf("x")); }), NSFileHandleOperationException);
}

} // namespace
