// SPDX-License-Identifier: MIT
// Texts appended to files: by several processes at once, through links, at limits, in every encoding.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <thread>
#include <vector>

#include <sys/file.h>
#include <sys/resource.h>

#include "foundation/files/NSFileHandle.h"
#include "foundation/files/NSFileManager.h"
#include "tests/kit/AllocationCount.h"
#include "tests/kit/Child.h"
#include "tests/kit/Items.h"
#include "tests/kit/RefusedCalls.h"
#include "tests/kit/Sanitizers.h"
#include "tests/kit/ScratchFolder.h"

using namespace ZQFoundation;
using namespace std::string_literals;
using kit::contentsOf;
using kit::exists;

namespace {

constexpr NSStringEncoding utf8 = NSUTF8StringEncoding;

bool append(const NSString& text, const std::string& path, NSStringEncoding encoding = utf8) {
    return text.appendToFile_encoding(path, encoding);
}

/// Runs the body in this many children at once and returns how many of them failed.
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
            kit::leave(::read(gate[0], &byte, 1) == 0 && body(number) ? 0 : 1); // all wait for its end
        }
        children.push_back(child);
    }
    ::close(gate[0]);
    ::close(gate[1]);
    int failures = 0;
    for (const pid_t child : children) {
        failures += kit::endOf(child) == 0 ? 0 : 1;
    }
    return failures;
}

/// A text with its writer, its number and its length; a few are longer than any pipe or buffer.
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
    const kit::ScratchFolder folder;
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

TEST(FileAppend, losesNoTextAndNeedsNoLockWhenSeveralProcessesMakeTheFile) {
    const kit::ScratchFolder folder;
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
    const kit::ScratchFolder folder;
    for (int round = 0; round < 40; ++round) {
        const std::string path = folder / std::to_string(round);
        ASSERT_EQ(::symlink("nowhere", path.c_str()), 0);
        EXPECT_EQ(failuresOf(6, [&](int writer) { return append(std::to_string(writer), path); }), 0);
        EXPECT_EQ(contentsOf(path).size(), 6U) << contentsOf(path);
        EXPECT_TRUE(kit::isFile(path));
        EXPECT_FALSE(exists(folder / "nowhere"));
    }
}

TEST(FileAppend, leavesADanglingLinkWhenTheFolderStaysLocked) {
    const kit::ScratchFolder folder;
    ASSERT_EQ(::symlink("nowhere", (folder / "link").c_str()), 0);
    const int lock = ::open(folder.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::flock(lock, LOCK_EX), 0);
    EXPECT_FALSE(append("text", folder / "link"));
    EXPECT_TRUE(append("text", folder / "file")) << "the lock is for such links alone";
    ::close(lock);
    EXPECT_FALSE(exists(folder / "nowhere"));
    EXPECT_TRUE(append("text", folder / "link"));
    EXPECT_EQ(contentsOf(folder / "link"), "text");
}

/// The descriptors of this process that are this folder.
std::vector<int> descriptorsOf(const std::string& folder) {
    std::vector<int> found;
    for (int descriptor = 0; descriptor < 1024; ++descriptor) {
        char target[4096];
        const ssize_t length =
            ::readlink(("/proc/self/fd/" + std::to_string(descriptor)).c_str(), target, sizeof target);
        if (length > 0 && std::string(target, static_cast<std::size_t>(length)) == folder) {
            found.push_back(descriptor);
        }
    }
    return found;
}

TEST(FileAppend, waitsForTheLockAndKeepsWhatItsHolderWrote) {
    const kit::ScratchFolder folder;
    const std::string path = folder / "link";
    ASSERT_EQ(::symlink("nowhere", path.c_str()), 0);
    const int lock = ::open(folder.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::flock(lock, LOCK_EX), 0);
    int gate[2];
    ASSERT_EQ(::pipe(gate), 0);
    std::thread writer([&] { EXPECT_TRUE(append("second", path)); });
    std::vector<int> descriptors;
    while (descriptors.size() < 2) { // until it tries to take the lock
        descriptors = descriptorsOf(kit::realPath(folder.path()));
    }
    for (const int descriptor : descriptors) {
        EXPECT_EQ(::fcntl(descriptor, F_GETFD), FD_CLOEXEC);
    }
    const pid_t child = ::fork(); // has the descriptor with which the writer takes the lock
    if (child == 0) {
        char byte;
        ::close(gate[1]);
        kit::leave(::read(gate[0], &byte, 1) == 0 ? 0 : 1);
    }
    ASSERT_EQ(::unlink(path.c_str()), 0);
    folder.write("link", "first, ");
    ASSERT_EQ(::flock(lock, LOCK_UN), 0);
    writer.join();
    EXPECT_EQ(contentsOf(path), "first, second");
    EXPECT_EQ(::flock(lock, LOCK_EX | LOCK_NB), 0) << "the child must not keep the lock";
    ::close(lock);
    ::close(gate[0]);
    ::close(gate[1]);
    EXPECT_EQ(kit::endOf(child), 0);
}

TEST(FileAppend, leavesADanglingLinkWhereFoldersCannotBeLocked) {
    const kit::ScratchFolder folder;
    ASSERT_EQ(::symlink("nowhere", (folder / "link").c_str()), 0);
    kit::expectInChild(
        [&] { return kit::refuseCall(SYS_flock, ENOLCK) && !append("text", folder / "link"); });
    EXPECT_TRUE(kit::isLink(folder / "link"));
}

TEST(FileAppend, isFalseIfClosingReportsAFailedWrite) {
    const kit::ScratchFolder folder;
    for (const auto& [error, isAppended] : {std::pair(EIO, false), std::pair(EINTR, true)}) {
        SCOPED_TRACE(error);
        kit::expectInChild([&, refusal = error, wanted = isAppended] {
            return kit::refuseCall(SYS_close, static_cast<unsigned>(refusal)) &&
                   append("text", folder / "f") == wanted;
        });
    }
}

TEST(FileAppend, isFalseWithoutMemory) {
    const kit::ScratchFolder folder;
    const std::string path = folder / "f";
    const NSString text(std::string(1000, 'x'));
    bool isAppended = true;
    {
        const kit::AllocationLimit limit(0);
        isAppended = text.appendToFile_encoding(path, utf8);
    }
    EXPECT_EQ(isAppended, kit::isSanitized) << "a sanitizer brings its own allocator, without the limit";
    EXPECT_EQ(exists(path), kit::isSanitized);
}

TEST(FileAppend, followsALinkToALinkAndReplacesALoop) {
    const kit::ScratchFolder folder;
    folder.write("file", "a");
    ASSERT_EQ(::symlink("second", (folder / "first").c_str()), 0);
    ASSERT_EQ(::symlink("file", (folder / "second").c_str()), 0);
    EXPECT_TRUE(append("b", folder / "first"));
    EXPECT_EQ(contentsOf(folder / "file"), "ab");
    ASSERT_EQ(::symlink("loop", (folder / "loop").c_str()), 0);
    EXPECT_TRUE(append("b", folder / "loop"));
    EXPECT_TRUE(kit::isFile(folder / "loop")) << "no link any more";
    EXPECT_EQ(contentsOf(folder / "loop"), "b");
}

TEST(FileAppend, takesNoPipe) {
    const kit::ScratchFolder folder;
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
    const kit::ScratchFolder folder;
    const std::string name(200, 'n');
    const std::string last = kit::makeChain(folder.path(), name, 30);
    const std::string path = last + "/f";
    EXPECT_TRUE(append("a", path));
    EXPECT_TRUE(append("b", path));
    NSFileHandle handle = NSFileHandle::fileHandleForReadingAtPath(path);
    EXPECT_TRUE(handle.readDataToEndOfFile().isEqualToData(NSData::dataWithBytes_length("ab", 2)));
    EXPECT_TRUE(NSFileManager::defaultManager().removeItemAtPath_error(path, nullptr));
    kit::removeChain(folder.path(), name, 30);
}

TEST(FileAppend, keepsWhatIsInTheFile) {
    const kit::ScratchFolder folder;
    const std::string before = "\xFF\0\n"s + std::string(3000000, 'x');
    folder.write("f", before);
    EXPECT_TRUE(append("first\n", folder / "f"));
    EXPECT_TRUE(append(NSString::stringWithCharacters_length(u"a\0b", 3), folder / "f"));
    EXPECT_TRUE(contentsOf(folder / "f") == before + "first\na\0b"s) << "no line end is added";
    EXPECT_TRUE(append(std::string(3000000, 'z'), folder / "new"));
    EXPECT_TRUE(contentsOf(folder / "new") == std::string(3000000, 'z'));
}

TEST(FileAppend, makesAnEmptyFileForAnEmptyText) {
    const kit::ScratchFolder folder;
    EXPECT_TRUE(append("", folder / "f"));
    EXPECT_TRUE(exists(folder / "f"));
    EXPECT_EQ(contentsOf(folder / "f"), "");
    EXPECT_TRUE(append("", folder.write("full", "x")));
    EXPECT_EQ(contentsOf(folder / "full"), "x");
}

TEST(FileAppend, writesEachEncodingsBytes) {
    const struct {
        NSStringEncoding encoding;
        std::string bytes;
    } rows[] = {
        {NSUTF8StringEncoding, "a\xC3\xA9\xE2\x82\xAC"},
        {NSWindowsCP1252StringEncoding, "a\xE9\x80"},
        {NSUTF16BigEndianStringEncoding, "\0a\0\xE9\x20\xAC"s},
        {NSUTF32BigEndianStringEncoding, "\0\0\0a\0\0\0\xE9\0\0\x20\xAC"s},
    };
    const kit::ScratchFolder folder;
    for (const auto& row : rows) {
        const std::string path = folder / std::to_string(row.encoding);
        EXPECT_TRUE(append(u"a\u00E9\u20AC", path, row.encoding)) << row.encoding;
        EXPECT_TRUE(append(u"a\u00E9\u20AC", path, row.encoding)) << row.encoding;
        EXPECT_EQ(contentsOf(path), row.bytes + row.bytes) << row.encoding;
    }
}

TEST(FileAppend, writesAMarkWithEachPieceOfUtf16) {
    const kit::ScratchFolder folder;
    const std::string mark = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? "\xFF\xFE" : "\xFE\xFF";
    EXPECT_TRUE(append("", folder / "f", NSUTF16StringEncoding));
    EXPECT_TRUE(append(u"\u2020", folder / "f", NSUTF16StringEncoding)); // whose bytes are alike
    EXPECT_EQ(contentsOf(folder / "f"), mark + mark + "\x20\x20");
}

TEST(FileAppend, writesNothingOfATextThatDoesNotFitTheEncoding) {
    const kit::ScratchFolder folder;
    folder.write("f", "before");
    for (const char* const name : {"f", "new"}) {
        EXPECT_FALSE(append(u"good \u20AC", folder / name, NSISOLatin1StringEncoding));
        EXPECT_FALSE(append(NSString::stringWithCharacters_length(u"a\xD800", 2), folder / name));
        EXPECT_FALSE(append("a", folder / name, NSStringEncoding(4711)));
        EXPECT_FALSE(append(nullptr, folder / name));
    }
    EXPECT_EQ(contentsOf(folder / "f"), "before");
    EXPECT_FALSE(exists(folder / "new"));
}

TEST(FileAppend, isFalseForPathsThatNameNoFile) {
    const kit::ScratchFolder folder;
    folder.write("file", "x");
    EXPECT_FALSE(append("text", folder / "missing/f"));
    EXPECT_FALSE(exists(folder / "missing"));
    EXPECT_FALSE(append("text", folder / "file/f"));
    EXPECT_FALSE(NSString("text").appendToFile_encoding(nullptr, utf8));
    EXPECT_FALSE(append("text", ""));
    EXPECT_FALSE(append("text", folder.path()));
    EXPECT_FALSE(append("text", folder.path() + "/"));
    EXPECT_FALSE(append("text", (folder / "a") + "\0b"s));
    EXPECT_FALSE(exists(folder / "a"));
    const NSString surrogate = NSString::stringWithCharacters_length(u"/\xD800", 2);
    EXPECT_FALSE(NSString("text").appendToFile_encoding(
        NSString(folder.path()).stringByAppendingString(surrogate), utf8));
}

TEST(FileAppend, takesRelativePathsAndNamesOfAnyBytes) {
    const kit::ScratchFolder folder;
    const kit::CurrentFolder inside(folder.path());
    EXPECT_TRUE(append("a", "f"));
    EXPECT_TRUE(append("b", "./f"));
    EXPECT_TRUE(append("c", "~"));
    EXPECT_EQ(contentsOf(folder / "f"), "ab");
    EXPECT_EQ(contentsOf(folder / "~"), "c") << "a tilde is a name";
    const std::string path = folder / "\xFF\x80";
    EXPECT_TRUE(NSString("a").appendToFile_encoding(kit::fromBytes(path), utf8));
    EXPECT_EQ(contentsOf(path), "a");
    ASSERT_EQ(::symlink("nowhere", "link"), 0);
    EXPECT_TRUE(append("d", "link"));
    EXPECT_EQ(contentsOf(folder / "link"), "d");
    EXPECT_FALSE(exists(folder / "nowhere"));
}

TEST(FileAppend, givesANewFileTheDefaultModeAndKeepsThatOfAnOldOne) {
    const kit::ScratchFolder folder;
    const kit::Umask mask(027);
    EXPECT_TRUE(append("text", folder / "new"));
    EXPECT_EQ(kit::modeOf(folder / "new"), 0640U);
    {
        const kit::Umask none(0);
        EXPECT_TRUE(append("text", folder / "open"));
        EXPECT_EQ(kit::modeOf(folder / "open"), 0666U);
    }
    folder.write("f", "a");
    ASSERT_EQ(::chmod((folder / "f").c_str(), 0600), 0);
    ASSERT_EQ(::link((folder / "f").c_str(), (folder / "other").c_str()), 0);
    EXPECT_TRUE(append("b", folder / "f"));
    EXPECT_EQ(kit::modeOf(folder / "f"), 0600U);
    EXPECT_EQ(contentsOf(folder / "other"), "ab") << "the same file";
}

TEST(FileAppend, isFalseForATextOfWhichOnlyAPartWasWritten) {
    const kit::ScratchFolder folder;
    ASSERT_EQ(::chmod(folder.path().c_str(), 0777), 0);
    const std::string path = folder / "f";
    kit::expectAsUser([&] {
        const rlimit limit{10, 10};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        return append("0123456789ab", path) ? 1 : 0;
    });
    EXPECT_EQ(contentsOf(path), "0123456789");
}

TEST(FileAppend, needsThePermissionToWriteAndNoOther) {
    const kit::ScratchFolder folder;
    ASSERT_EQ(::chmod(folder.path().c_str(), 0777), 0);
    folder.makeFolder("closed");
    ASSERT_EQ(::chmod((folder / "closed").c_str(), 0555), 0);
    folder.write("f", "precious");
    ASSERT_EQ(::chmod((folder / "f").c_str(), 0444), 0);
    kit::expectAsUser([&] {
        folder.write("own", "a");
        ::chmod((folder / "own").c_str(), 0200);
        const bool appended = append("b", folder / "own");
        ::chmod((folder / "own").c_str(), 0644);
        return appended && !append("text", folder / "closed/f") && !append("text", folder / "f");
    });
    EXPECT_EQ(contentsOf(folder / "own"), "ab");
    EXPECT_FALSE(exists(folder / "closed/f"));
    EXPECT_EQ(contentsOf(folder / "f"), "precious");
}

TEST(FileAppend, leavesNoDescriptorAndErrnoAlone) {
    const kit::ScratchFolder folder;
    const int before = kit::openDescriptors();
    for (int round = 0; round < 20; ++round) {
        const int error = round % 2 == 0 ? 4711 : ENOENT;
        errno = error;
        EXPECT_TRUE(append("a", folder / "f"));
        EXPECT_TRUE(append("a", folder / std::to_string(round)));
        EXPECT_FALSE(append("a", folder / "missing/f"));
        EXPECT_FALSE(append("a", "/dev/full"));
        EXPECT_TRUE(append("a", "/dev/null"));
        EXPECT_FALSE(append("a", folder.path()));
        EXPECT_FALSE(append(u"\u00E9", folder / "f", NSASCIIStringEncoding));
        EXPECT_EQ(errno, error);
    }
    EXPECT_EQ(kit::openDescriptors(), before);
}

} // namespace
