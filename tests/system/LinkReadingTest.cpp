// SPDX-License-Identifier: MIT
// The texts of links, however long they are.
#include "foundation/system/LinkReading.h"

#include <cerrno>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "tests/kit/ScratchFolder.h"

using namespace ZQFoundation;
using namespace ZQFoundation::detail;

namespace {

TEST(LinkReading, readsTextsOfEveryLength) {
    const kit::ScratchFolder folder;
    for (const std::size_t length : {1U, 10U, 510U, 511U, 512U, 513U, 2047U, 2048U, 2049U, 4095U}) {
        const std::string text(length, 'x');
        const std::string link = folder / std::to_string(length);
        ASSERT_EQ(::symlink(text.c_str(), link.c_str()), 0);
        std::string target = "untouched";
        EXPECT_EQ(readLink(AT_FDCWD, link.c_str(), target), LinkResult::link);
        EXPECT_EQ(target, text);
    }
}

TEST(LinkReading, distinguishesOtherItemsFromMissingOnes) {
    const kit::ScratchFolder folder;
    const std::string file = folder.write("file", "");
    std::string target = "untouched";
    EXPECT_EQ(readLink(AT_FDCWD, file.c_str(), target), LinkResult::other);
    EXPECT_EQ(readLink(AT_FDCWD, folder.path().c_str(), target), LinkResult::other);
    EXPECT_EQ(readLink(AT_FDCWD, (folder / "missing").c_str(), target), LinkResult::failed);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(readLink(AT_FDCWD, (file + "/below").c_str(), target), LinkResult::failed);
    EXPECT_EQ(errno, ENOTDIR);
    EXPECT_EQ(target, "untouched");
}

} // namespace
