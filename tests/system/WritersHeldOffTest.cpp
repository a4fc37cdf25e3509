// SPDX-License-Identifier: MIT
// Files that nobody may begin to write to for a while.
#include <atomic>
#include <string>
#include <thread>

#include <fcntl.h>

#include <gtest/gtest.h>

#include "foundation/system/Descriptor.h"
#include "foundation/system/FileSystem.h"
#include "tests/kit/ScratchFolder.h"

using ZQFoundation::detail::Descriptor;
using ZQFoundation::detail::system::WritersHeldOff;

TEST(WritersHeldOff, seesWhoHasTheFileOpen) {
    const ZQFoundation::kit::ScratchFolder folder;
    const std::string path = folder.write("a", "x");
    const Descriptor file(::open(path.c_str(), O_RDONLY));
    const Descriptor reader(::open(path.c_str(), O_RDONLY));
    EXPECT_TRUE(WritersHeldOff(file.number()).areThereNone());
    for (const int flags : {O_WRONLY, O_RDWR, O_WRONLY | O_APPEND}) {
        const Descriptor writer(::open(path.c_str(), flags));
        EXPECT_FALSE(WritersHeldOff(file.number()).areThereNone()) << flags;
    }
    EXPECT_TRUE(WritersHeldOff(file.number()).areThereNone());
}

TEST(WritersHeldOff, isUnknownWhereTheSystemDoesNotSay) {
    const Descriptor device(::open("/dev/null", O_RDONLY));
    EXPECT_TRUE(WritersHeldOff(device.number()).areThereNone());
    EXPECT_TRUE(WritersHeldOff(-1).areThereNone());
}

TEST(WritersHeldOff, makesWritersWaitInThreadsOfTheirOwn) {
    const ZQFoundation::kit::ScratchFolder folder;
    const std::string path = folder.write("a", "x");
    const Descriptor file(::open(path.c_str(), O_RDONLY));
    std::atomic<bool> isOpen{false};
    std::thread writer;
    {
        const WritersHeldOff writers(file.number());
        ASSERT_TRUE(writers.areThereNone());
        writer = std::thread([&] {
            const Descriptor opened(::open(path.c_str(), O_WRONLY));
            EXPECT_TRUE(opened);
            isOpen = true;
        });
        while (writers.areThereNone()) { // until it waits, or forever
            std::this_thread::yield();
        }
        EXPECT_FALSE(isOpen);
    }
    writer.join();
    EXPECT_TRUE(isOpen);
}
