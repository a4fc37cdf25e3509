// SPDX-License-Identifier: MIT
// The reasons of failures as texts.
#include "foundation/files/FileError.h"

#include <cerrno>

#include <gtest/gtest.h>

#include "tests/kit/Items.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using kit::utf8Of;

TEST(FileError, reasonsNeedNoLocale) {
    NSString text;
    detail::reportError(&text, "/a", EACCES);
    EXPECT_EQ(utf8Of(text), "/a: Permission denied");
    detail::reportErrorOfBytes(&text, "/\xFF", ENOTEMPTY);
    EXPECT_EQ(kit::bytesOf(text), "/\xFF: Directory not empty");
    detail::reportError(&text, "/a", 99999);
    EXPECT_EQ(utf8Of(text), "/a: Error 99999");
    detail::reportError(nullptr, "/a", EACCES);
}
