// SPDX-License-Identifier: MIT
// Reads of which the system returns less at a time than was asked for.
#include "foundation/system/WholeRead.h"

#include <cerrno>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include "foundation/system/Descriptor.h"

using ZQFoundation::detail::Descriptor;
using ZQFoundation::detail::readWhole;

namespace {

/// What arrives of three packets, each of which is a read by itself, when this much is asked for.
std::string arrivesOfPackets(std::size_t count) {
    int ends[2];
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), 0);
    const Descriptor out(ends[0]);
    {
        const Descriptor in(ends[1]);
        for (const std::string packet : {"ab", "c", "defg"}) {
            EXPECT_EQ(::send(in.number(), packet.data(), packet.size(), 0),
                      static_cast<ssize_t>(packet.size()));
        }
    }
    std::string bytes(count, '-');
    const std::ptrdiff_t filled = readWhole(out.number(), bytes.data(), count);
    EXPECT_GE(filled, 0);
    return bytes.substr(0, static_cast<std::size_t>(filled));
}

} // namespace

TEST(WholeRead, goesOnAfterShortReads) {
    EXPECT_EQ(arrivesOfPackets(3), "abc");
    EXPECT_EQ(arrivesOfPackets(7), "abcdefg");
}

TEST(WholeRead, endsWithTheFile) { EXPECT_EQ(arrivesOfPackets(100), "abcdefg"); }

TEST(WholeRead, asksForNothingWhenNothingIsWanted) { EXPECT_EQ(readWhole(-1, nullptr, 0), 0); }

TEST(WholeRead, reportsErrors) {
    const Descriptor folder(::open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    char byte;
    EXPECT_EQ(readWhole(folder.number(), &byte, 1), -1);
    EXPECT_EQ(errno, EISDIR);
}
