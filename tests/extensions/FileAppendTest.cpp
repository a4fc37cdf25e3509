// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include <sys/file.h>
#include <sys/resource.h>

#include "foundation/files/NSFileHandle.h"
#include "tests/files/FileScene.h"

using namespace ZQFoundation;
using namespace std::string_literals;
using scene::contentsOf;
using scene::stands;

namespace {

bool append(const std::string& text, const std::string& path) {
    return NSString(text).appendToFile_encoding(path, NSUTF8StringEncoding);
}

/// Runs the body in so many children at once and returns how many of them failed.
template <class Body>
int failuresOf(int count, const Body& body) {
    std::vector<pid_t> children;
    int gate[2];
    EXPECT_EQ(::pipe(gate), 0);
    for (int number = 0; number < count; ++number) {
        const pid_t child = ::fork();
        if (child == 0) {
            char byte;
            ::alarm(120);
            ::close(gate[1]);
            scene::leave(::read(gate[0], &byte, 1) == 0 && body(number) ? 0 : 1); // all wait for its end
        }
        children.push_back(child);
    }
    ::close(gate[0]);
    ::close(gate[1]);
    int failures = 0;
    for (const pid_t child : children) {
        int status = 0;
        ::waitpid(child, &status, 0);
        failures += status == 0 ? 0 : 1;
    }
    return failures;
}

/// A text that tells its writer, its number and its length; a few are longer than any pipe or buffer.
std::string numberedText(int writer, int number) {
    const std::size_t lengths[] = {0, 1, 37, 511, 4080, 4096, 5000};
    std::size_t length = lengths[static_cast<std::size_t>(writer + number) % 7];
    if (number % 100 == writer) {
        length = 100 * 1024;
    }
    return "<" + std::to_string(writer) + ":" + std::to_string(number) + ":" + std::to_string(length) + ":" +
           std::string(length, static_cast<char>('a' + writer)) + ">";
}

TEST(FileAppend, keepsTextsOfSeveralProcessesWhole) {
    constexpr int writers = 8;
    constexpr int texts = 500;
    const scene::Folder folder;
    const std::string path = folder / "f";
    EXPECT_EQ(failuresOf(writers,
                         [&](int writer) {
                             for (int number = 0; number < texts; ++number) {
                                 if (!append(numberedText(writer, number), path)) {
                                     return false;
                                 }
                             }
                             return true;
                         }),
              0);
    const std::string contents = contentsOf(path);
    std::map<int, int> next;
    int found = 0;
    for (std::size_t place = 0; place < contents.size(); ++found) {
        int writer = -1;
        ASSERT_EQ(contents[place], '<') << "torn at " << place;
        writer = contents[place + 1] - '0';
        const std::string expected = numberedText(writer, next[writer]++);
        ASSERT_TRUE(contents.compare(place, expected.size(), expected) == 0) << "torn at " << place;
        place += expected.size();
    }
    EXPECT_EQ(found, writers * texts);
}

TEST(FileAppend, losesNoTextWhenSeveralProcessesMakeTheFile) {
    const scene::Folder folder;
    for (int round = 0; round < 40; ++round) {
        const std::string path = folder / std::to_string(round);
        EXPECT_EQ(failuresOf(6, [&](int writer) { return append(std::to_string(writer), path); }), 0);
        EXPECT_EQ(contentsOf(path).size(), 6U) << contentsOf(path);
    }
}

TEST(FileAppend, needsNoLockWhereSeveralProcessesMakeTheFile) {
    const scene::Folder folder;
    const int lock = ::open(folder.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::flock(lock, LOCK_EX), 0);
    constexpr int writers = 6;
    for (int round = 0; round < 40; ++round) {
        const std::string path = folder / std::to_string(round);
        ASSERT_EQ(failuresOf(writers, [&](int) { return append("x", path); }), 0) << round;
        EXPECT_EQ(contentsOf(path), std::string(writers, 'x'));
    }
    ::close(lock);
}

TEST(FileAppend, losesNoTextWhenSeveralProcessesFindADanglingLink) {
    const scene::Folder folder;
    for (int round = 0; round < 40; ++round) {
        const std::string path = folder / std::to_string(round);
        ASSERT_EQ(::symlink("nowhere", path.c_str()), 0);
        EXPECT_EQ(failuresOf(6, [&](int writer) { return append(std::to_string(writer), path); }), 0);
        EXPECT_EQ(contentsOf(path).size(), 6U) << contentsOf(path);
        struct stat information;
        EXPECT_EQ(::lstat(path.c_str(), &information), 0);
        EXPECT_TRUE(S_ISREG(information.st_mode));
        EXPECT_FALSE(stands(folder / "nowhere"));
    }
}

TEST(FileAppend, leavesADanglingLinkWhenTheFolderStaysLocked) {
    const scene::Folder folder;
    ASSERT_EQ(::symlink("nowhere", (folder / "link").c_str()), 0);
    const int lock = ::open(folder.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::flock(lock, LOCK_EX), 0);
    EXPECT_FALSE(append("text", folder / "link"));
    EXPECT_TRUE(append("text", folder / "file")) << "the lock is for such links alone";
    ::close(lock);
    EXPECT_FALSE(stands(folder / "nowhere"));
    EXPECT_TRUE(append("text", folder / "link"));
    EXPECT_EQ(contentsOf(folder / "link"), "text");
}

TEST(FileAppend, followsALinkToALinkAndReplacesALoop) {
    const scene::Folder folder;
    folder.write("file", "a");
    ASSERT_EQ(::symlink("second", (folder / "first").c_str()), 0);
    ASSERT_EQ(::symlink("file", (folder / "second").c_str()), 0);
    EXPECT_TRUE(append("b", folder / "first"));
    EXPECT_EQ(contentsOf(folder / "file"), "ab");
    ASSERT_EQ(::symlink("loop", (folder / "loop").c_str()), 0);
    EXPECT_TRUE(append("b", folder / "loop"));
    char target[8];
    EXPECT_EQ(::readlink((folder / "loop").c_str(), target, sizeof target), -1) << "no link any more";
    EXPECT_EQ(contentsOf(folder / "loop"), "b");
}

TEST(FileAppend, takesNoPipe) {
    const scene::Folder folder;
    const std::string path = folder / "pipe";
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_FALSE(append("text", path)) << "nobody reads";
    const int reader = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_FALSE(append("text", path)) << "it has no end to append to";
    char byte;
    EXPECT_LE(::read(reader, &byte, 1), 0) << "something was written";
    ::close(reader);
}

TEST(FileAppend, takesPathsOfAnyLength) {
    const scene::Folder folder;
    const std::string name(200, 'n');
    const std::string last = scene::makeChain(folder.path(), name, 30);
    const std::string path = last + "/f";
    EXPECT_TRUE(append("a", path));
    EXPECT_TRUE(append("b", path));
    NSFileHandle handle = NSFileHandle::fileHandleForReadingAtPath(path);
    EXPECT_TRUE(handle.readDataToEndOfFile().isEqualToData(NSData::dataWithBytes_length("ab", 2)));
    EXPECT_TRUE(NSFileManager::defaultManager().removeItemAtPath_error(path, nullptr));
    scene::removeChain(folder.path(), name, 30);
}

TEST(FileAppend, makesNothingForATextThatDoesNotFit) {
    const scene::Folder folder;
    EXPECT_FALSE(NSString(u"\u20AC").appendToFile_encoding(folder / "f", NSISOLatin1StringEncoding));
    EXPECT_FALSE(NSString("a").appendToFile_encoding(folder / "f", NSStringEncoding(4711)));
    EXPECT_FALSE(stands(folder / "f"));
}

TEST(FileAppend, writesTheMarkOfAnEmptyText) {
    const scene::Folder folder;
    EXPECT_TRUE(NSString("").appendToFile_encoding(folder / "f", NSUTF16StringEncoding));
    EXPECT_EQ(contentsOf(folder / "f").size(), 2U);
}

TEST(FileAppend, isFalseForATextOfWhichOnlyAPartWasWritten) {
    const scene::Folder folder;
    ASSERT_EQ(::chmod(folder.path().c_str(), 0777), 0);
    const std::string path = folder / "f";
    EXPECT_EQ(scene::inUnprivilegedChild([&] {
                  const rlimit limit{10, 10};
                  ::setrlimit(RLIMIT_FSIZE, &limit);
                  return append("0123456789ab", path) ? 1 : 0;
              }),
              0);
    EXPECT_EQ(contentsOf(path), "0123456789");
}

TEST(FileAppend, replacesNoFileThatMayNotBeWritten) {
    const scene::Folder folder;
    ASSERT_EQ(::chmod(folder.path().c_str(), 0777), 0);
    folder.write("f", "precious");
    ASSERT_EQ(::chmod((folder / "f").c_str(), 0444), 0);
    struct stat before;
    struct stat after;
    ASSERT_EQ(::stat((folder / "f").c_str(), &before), 0);
    EXPECT_EQ(scene::inUnprivilegedChild([&] { return append("text", folder / "f") ? 1 : 0; }), 0);
    ASSERT_EQ(::stat((folder / "f").c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
    EXPECT_EQ(contentsOf(folder / "f"), "precious");
}

} // namespace
