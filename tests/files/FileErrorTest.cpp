// SPDX-License-Identifier: MIT
// The reasons of failures as texts.
#include "foundation/files/FileError.h"

#include <gtest/gtest.h>

#include "tests/files/FileScene.h"

using namespace ZQFoundation;
using scene::shownText;

TEST(FileError, reasonsNeedNoLocale) {
    NSString text;
    detail::reportError(&text, "/a", EACCES);
    EXPECT_EQ(shownText(text), "/a: Permission denied");
    detail::reportErrorOfBytes(&text, "/\xFF", ENOTEMPTY);
    EXPECT_EQ(scene::bytesOf(text), "/\xFF: Directory not empty");
    detail::reportError(&text, "/a", 99999);
    EXPECT_EQ(shownText(text), "/a: Error 99999");
    detail::reportError(nullptr, "/a", EACCES);
}
