// SPDX-License-Identifier: MIT
// Random bytes, also where the system forbids its calls or has no device.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <set>
#include <string>

#if __has_include(<linux/seccomp.h>)
#include <sys/resource.h>

#endif

#include "foundation/system/System.h"
#include "tests/kit/Child.h"
#include "tests/kit/RefusedCalls.h"

using namespace ZQFoundation;
using namespace ZQFoundation::detail;

namespace {

std::string randomBytes(std::size_t count) {
    std::string bytes(count, '\0');
    system::fillWithRandomBytes(bytes.data(), count);
    return bytes;
}

TEST(RandomBytes, fillAllOfThePlaceAndNoMore) {
    for (const std::size_t count : {0U, 1U, 7U, 16U, 255U, 257U, 100000U}) {
        std::string bytes(count + 2, 'x');
        system::fillWithRandomBytes(bytes.data() + 1, count);
        EXPECT_EQ(bytes.front(), 'x');
        EXPECT_EQ(bytes.back(), 'x');
        if (count > 200) {
            const std::set<char> seen(bytes.begin() + 1, bytes.end() - 1);
            EXPECT_GT(seen.size(), 80U) << count;
            const std::set<char> last(bytes.end() - 33, bytes.end() - 1);
            EXPECT_GT(last.size(), 8U) << "the end was not filled";
        }
    }
}

TEST(RandomBytes, areOthersAtEveryCall) {
    std::set<std::string> seen;
    for (int call = 0; call < 10000; ++call) {
        EXPECT_TRUE(seen.insert(randomBytes(16)).second);
    }
}

#if __has_include(<linux/seccomp.h>) // elsewhere the call cannot fail

bool forbidTheCall() { return kit::refuseCall(SYS_getrandom, EPERM); }

bool areDifferent(int calls) {
    std::set<std::string> seen;
    for (int call = 0; call < calls; ++call) {
        seen.insert(randomBytes(16));
    }
    return seen.size() == static_cast<std::size_t>(calls);
}

TEST(RandomBytes, comeFromTheDeviceWhereTheCallIsForbidden) {
    kit::expectAsUser([] {
        if (!forbidTheCall()) {
            return 2;
        }
        const int before = ::dup(0);
        ::close(before);
        const bool different = areDifferent(500);
        const int after = ::dup(0);
        return different && after == before ? 0 : 1;
    });
}

TEST(RandomBytes, differEvenWithoutTheDevice) {
    kit::expectAsUser([] {
        const rlimit none{0, 0};
        if (!forbidTheCall() || ::setrlimit(RLIMIT_NOFILE, &none) != 0) {
            return 2;
        }
        return areDifferent(500) ? 0 : 1;
    });
}

#endif

} // namespace
