// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cerrno>
#include <set>
#include <string>

#include "tests/kit/Values.h"
#include "tests/process/Scene.h"

using namespace ZQFoundation;
using kit::utf8Of;

namespace {

TEST(NewUUID, hasFormVersionAndVariant) {
    for (int round = 0; round < 200; ++round) {
        const std::string text = utf8Of(NSString::stringWithNewUUID());
        ASSERT_EQ(text.size(), 36U);
        std::string form;
        for (const char character : text) {
            form += character == '-' ? '-' : std::string("0123456789ABCDEF").find(character) < 16 ? 'x' : '?';
        }
        ASSERT_EQ(form, "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx") << text;
        ASSERT_EQ(text[14], '4') << text;
        ASSERT_LT(std::string("89AB").find(text[19]), 4U) << text;
    }
}

TEST(NewUUID, isAnotherOneInEachForkedChild) {
    std::set<std::string> seen{utf8Of(NSString::stringWithNewUUID())};
    for (int child = 0; child < 20; ++child) {
        int ends[2];
        ASSERT_EQ(::pipe(ends), 0);
        const pid_t process = ::fork();
        if (process == 0) {
            const std::string text = utf8Of(NSString::stringWithNewUUID());
            scene::leave(::write(ends[1], text.data(), text.size()) == 36 ? 0 : 1);
        }
        char text[36] = {};
        ::close(ends[1]);
        EXPECT_EQ(::read(ends[0], text, sizeof text), 36);
        ::close(ends[0]);
        ::waitpid(process, nullptr, 0);
        EXPECT_TRUE(seen.insert(std::string(text, sizeof text)).second);
    }
}

TEST(NewUUID, leavesErrnoAlone) {
    errno = 4711;
    EXPECT_EQ(NSString::stringWithNewUUID().length(), 36U);
    EXPECT_EQ(errno, 4711);
}

} // namespace
