// SPDX-License-Identifier: MIT
// Asking the kernel for a route in the layout of a routing message.
#include "foundation/system/RouteTransport.h"

#include <arpa/inet.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/system/RouteMessage.h"

using namespace ZQFoundation::detail::system;

namespace {

/// A socket for lookups that is closed again.
struct Socket {
    const int descriptor = routeTransport().open();
    Socket() { EXPECT_GE(descriptor, 0); }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    ~Socket() { ::close(descriptor); }
};

/// A question for the route to an address, with room for the interface's.
struct Question {
    RouteMessageHeader header{};
    RouteAddress destination{};
    std::uint32_t interface = 0;

    explicit Question(const char* text) {
        header.rtm_msglen = sizeof *this;
        header.rtm_version = routeMessageVersion;
        header.rtm_type = routeLookup;
        header.rtm_flags = routeIsUp | routeToHost | routeIsStatic;
        header.rtm_addrs = 1 << routeDestination | 1 << routeInterfaceAddress;
        header.rtm_seq = -2;
        destination.sin_len = sizeof destination;
        destination.sin_family = routeAddressFamily;
        EXPECT_EQ(::inet_pton(AF_INET, text, &destination.sin_addr), 1);
    }

    std::ptrdiff_t writeTo(const Socket& socket) const {
        return routeTransport().write(socket.descriptor, this, sizeof *this);
    }
};
static_assert(sizeof(Question) == 112);

} // namespace

TEST(RouteTransport, answersALookupInTheLayoutOfARoutingMessage) {
    const Socket socket;
    const Question question("127.0.0.1");
    ASSERT_EQ(question.writeTo(socket), 112);
    std::vector<std::uint8_t> message(604, 0xEE);
    const std::ptrdiff_t count = routeTransport().read(socket.descriptor, message.data(), message.size());
    ASSERT_GE(count, 108);
    RouteMessageHeader header;
    std::memcpy(&header, message.data(), sizeof header);
    EXPECT_EQ(header.rtm_msglen, count);
    EXPECT_EQ(header.rtm_version, 5);
    EXPECT_EQ(header.rtm_type, 4);
    EXPECT_EQ(header.rtm_flags & 1, 1);
    EXPECT_EQ(header.rtm_seq, -2);
    EXPECT_EQ(header.rtm_pid, ::getpid());
    EXPECT_EQ(header.rtm_errno, 0);
    EXPECT_EQ(header.rtm_addrs & 0x1F, 0x1) << "other addresses in front of the interface's";
    ASSERT_EQ(header.rtm_addrs & 0x20, 0x20);
    for (const std::size_t at : {std::size_t{92}, std::size_t{108}}) {
        RouteAddress address;
        std::memcpy(&address, &message[at], sizeof address);
        EXPECT_EQ(address.sin_len, 16) << at;
        EXPECT_EQ(address.sin_family, 2) << at;
        EXPECT_EQ(address.sin_addr, question.destination.sin_addr) << at;
    }
}

TEST(RouteTransport, cutsAnAnswerToTheRoomThatThereIs) {
    const Socket socket;
    ASSERT_EQ(Question("127.0.0.1").writeTo(socket), 112);
    std::uint8_t message[100];
    std::memset(message, 0xEE, sizeof message);
    EXPECT_EQ(routeTransport().read(socket.descriptor, message, 95), 95);
    EXPECT_EQ(message[92], 16);
    EXPECT_EQ(message[95], 0xEE);
}

TEST(RouteTransport, refusesWhatIsNoQuestionForARoute) {
    const Socket socket;
    Question otherVersion("127.0.0.1");
    otherVersion.header.rtm_version = 4;
    EXPECT_EQ(otherVersion.writeTo(socket), -1);
    Question otherLength("127.0.0.1");
    otherLength.header.rtm_msglen = 108;
    EXPECT_EQ(otherLength.writeTo(socket), -1);
    Question noDestination("127.0.0.1");
    noDestination.header.rtm_addrs = 1 << routeInterfaceAddress;
    EXPECT_EQ(noDestination.writeTo(socket), -1);
    const Question whole("127.0.0.1");
    EXPECT_EQ(routeTransport().write(socket.descriptor, &whole, 91), -1);

    // None of them is in the way of the next question.
    ASSERT_EQ(whole.writeTo(socket), 112);
    std::uint8_t message[604];
    EXPECT_GE(routeTransport().read(socket.descriptor, message, sizeof message), 108);
}

TEST(RouteTransport, reportsTheErrorOfAnInvalidSocket) {
    errno = 0;
    const Question question("127.0.0.1");
    EXPECT_EQ(routeTransport().write(-1, &question, sizeof question), -1);
    EXPECT_EQ(errno, EBADF);
    std::uint8_t message[604];
    errno = 0;
    EXPECT_EQ(routeTransport().read(-1, message, sizeof message), -1);
    EXPECT_EQ(errno, EBADF);
}
