// SPDX-License-Identifier: MIT
// Reading whole files, also those without a known size.
#include "foundation/plist/FileContents.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include <gtest/gtest.h>

#include "PropertyListTesting.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/Values.h"

namespace {

using namespace ZQFoundation;
using namespace ZQFoundation::testing;
using kit::bytesOf;

TEST(FileContents, givesTheWholeFile) {
    const kit::ScratchFolder folder;
    std::string bytes;
    for (int index = 0; index < 300'000; ++index) {
        bytes += static_cast<char>(index * 7);
    }
    EXPECT_EQ(bytesOf(NSData::dataWithContentsOfFile(folder.write("a", bytes))), bytes);
}

TEST(FileContents, anEmptyFileIsEmptyData) {
    const kit::ScratchFolder folder;
    const NSData data = NSData::dataWithContentsOfFile(folder.write("empty", ""));
    ASSERT_TRUE(data);
    EXPECT_EQ(data.length(), 0U);
}

TEST(FileContents, readsFilesOfUnknownSize) {
    const NSData data = NSData::dataWithContentsOfFile("/proc/self/status");
    if (::access("/proc/self/status", R_OK) != 0) {
        GTEST_SKIP() << "there is no such file on this system";
    }
    ASSERT_TRUE(data);
    EXPECT_TRUE(bytesOf(data).starts_with("Name:"));
}

TEST(FileContents, givesNilForWhatIsNoReadableFile) {
    const kit::ScratchFolder folder;
    EXPECT_FALSE(NSData::dataWithContentsOfFile(nullptr));
    EXPECT_FALSE(NSData::dataWithContentsOfFile(""));
    EXPECT_FALSE(NSData::dataWithContentsOfFile(folder / "missing"));
    EXPECT_FALSE(NSData::dataWithContentsOfFile(folder / ""));
    EXPECT_FALSE(NSData::dataWithContentsOfFile("/dev/zero"));
    EXPECT_FALSE(NSData::dataWithContentsOfFile(folder.write("file", "x") + "/below"));
    EXPECT_FALSE(NSData::dataWithContentsOfFile(std::string("/tmp/a\0b", 8)));
}

TEST(FileContents, anUnreadableFileIsNil) {
    const kit::ScratchFolder folder;
    const std::string path = folder.write("secret", "x");
    ASSERT_EQ(::chmod(path.c_str(), 0), 0);
    if (::geteuid() == 0) {
        EXPECT_TRUE(NSData::dataWithContentsOfFile(path)) << "nothing is unreadable for the superuser";
    } else {
        EXPECT_FALSE(NSData::dataWithContentsOfFile(path));
    }
}

TEST(FileContents, neverWaitsForAFifo) {
    const kit::ScratchFolder folder;
    const std::string path = folder / "fifo";
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_FALSE(NSData::dataWithContentsOfFile(path));
    EXPECT_FALSE(NSDictionary::dictionaryWithContentsOfFile(path));
}

TEST(FileContents, aFileBeyondTheLimitIsNotRead) {
    const kit::ScratchFolder folder;
    const std::string path = folder.write("large", "");
    ASSERT_EQ(::truncate(path.c_str(), static_cast<off_t>(detail::maxPropertyListBytes) + 1), 0);
    EXPECT_FALSE(NSData::dataWithContentsOfFile(path));
}

TEST(FileContents, namesAreBytes) {
    const kit::ScratchFolder folder;
    const std::string path = folder.write("na\xC3\xAF\xFF", "x");
    const NSString asText = NSString::stringWithFileSystemBytes(path.data(), path.size());
    EXPECT_EQ(bytesOf(NSData::dataWithContentsOfFile(asText)), "x");
}

TEST(FileContents, leavesErrnoAndNoDescriptor) {
    const kit::ScratchFolder folder;
    const std::string path = folder.write("file", "x");
    const int next = ::dup(0);
    ::close(next);
    errno = E2BIG;
    EXPECT_TRUE(NSData::dataWithContentsOfFile(path));
    EXPECT_EQ(errno, E2BIG);
    EXPECT_FALSE(NSData::dataWithContentsOfFile(folder / "missing"));
    EXPECT_EQ(errno, E2BIG);
    EXPECT_FALSE(NSData::dataWithContentsOfFile(folder / ""));
    const int again = ::dup(0);
    ::close(again);
    EXPECT_EQ(again, next);
}

} // namespace
