// SPDX-License-Identifier: MIT
// The transport of routing messages. The system has no routing sockets: requests go to the kernel over
// netlink, and its replies are converted to routing messages.
//
// No state is kept between `write` and `read`: the reply waits in the socket, where `write` only peeks at it,
// and it contains the number of the request.
// Lookup of one route to one IPv4 address is all that is supported, which is all that the library asks for.
#include <cerrno>
#include <cstring>

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <unistd.h>

#include "foundation/system/RouteMessage.h"
#include "foundation/system/RouteTransport.h"
#include "foundation/system/StandardStreams.h"

namespace ZQFoundation::detail::system {

namespace {

/// The request to the kernel.
/// In exactly this order and without gaps, which the assertion checks.
struct RouteQuestion {
    nlmsghdr header;
    rtmsg route;
    rtattr destinationHead;
    std::uint32_t destination;
};
static_assert(sizeof(RouteQuestion) == NLMSG_LENGTH(sizeof(rtmsg)) + RTA_LENGTH(sizeof(std::uint32_t)));

/// The kernel's reply: one datagram. A reply for one IPv4 route takes some 100 bytes.
struct RouteAnswer {
    alignas(nlmsghdr) char bytes[2048];
    std::size_t count = 0;

    const nlmsghdr& header() const noexcept { return *reinterpret_cast<const nlmsghdr*>(bytes); }

    /// Whether it contains a whole message with a body of at least `bodyBytes` bytes.
    /// Both the datagram's length and the length that the message claims are checked: the kernel is trusted,
    /// but a truncated datagram is possible.
    bool holds(std::size_t bodyBytes) const noexcept {
        return count >= NLMSG_HDRLEN + bodyBytes && header().nlmsg_len >= NLMSG_HDRLEN + bodyBytes &&
               header().nlmsg_len <= count;
    }

    /// The value of an attribute of four bytes; false without it.
    /// Attributes are aligned to 4 bytes and carry their length. A length that does not fit ends the search,
    /// so that nothing is read beyond the message.
    bool getAttribute(unsigned short type, std::uint32_t& value) const noexcept {
        std::size_t at = NLMSG_SPACE(sizeof(rtmsg));
        const std::size_t end = header().nlmsg_len;
        while (at + sizeof(rtattr) <= end) {
            rtattr attribute;
            std::memcpy(&attribute, bytes + at, sizeof attribute);
            if (attribute.rta_len < sizeof attribute || attribute.rta_len > end - at) {
                return false;
            }
            if (attribute.rta_type == type && attribute.rta_len == RTA_LENGTH(sizeof value)) {
                std::memcpy(&value, bytes + at + RTA_LENGTH(0), sizeof value);
                return true;
            }
            at += RTA_ALIGN(attribute.rta_len);
        }
        return false;
    }
};

/// The next datagram from the kernel; those of other processes are discarded. Negative with `errno`, 0 at the
/// end of input.
/// Any process may send to a netlink socket; only the kernel has the number 0.
std::ptrdiff_t receive(int socket, RouteAnswer& answer, int flags) noexcept {
    for (;;) {
        sockaddr_nl sender{};
        socklen_t senderBytes = sizeof sender;
        const ssize_t count = recvfrom(socket, answer.bytes, sizeof answer.bytes, flags,
                                       reinterpret_cast<sockaddr*>(&sender), &senderBytes);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count > 0 && sender.nl_pid != 0) {
            // With MSG_PEEK the foreign datagram is still in the queue; it is removed, or the loop would see
            // it forever.
            if ((flags & MSG_PEEK) != 0) {
                recv(socket, answer.bytes, sizeof answer.bytes, MSG_DONTWAIT);
            }
            continue;
        }
        answer.count = count > 0 ? static_cast<std::size_t>(count) : 0;
        return count;
    }
}

/// The kernel's error; 0 for a reply that is not an error.
int errorOf(const RouteAnswer& answer) noexcept {
    if (!answer.holds(0) || answer.header().nlmsg_type != NLMSG_ERROR) {
        return 0;
    }
    nlmsgerr body{};
    if (!answer.holds(sizeof body)) {
        return EPROTO;
    }
    std::memcpy(&body, answer.bytes + NLMSG_HDRLEN, sizeof body);
    // The kernel's errors are small; the negative of the least integer would not be valid.
    constexpr int maxError = 4095;
    if (body.error < -maxError) {
        return EPROTO;
    }
    // An acknowledgment is an error message with the number 0.
    return body.error < 0 ? -body.error : 0;
}

bool send(int socket, const RouteQuestion& question) noexcept {
    sockaddr_nl kernel{};
    kernel.nl_family = AF_NETLINK;
    ssize_t sent;
    do {
        sent = sendto(socket, &question, sizeof question, 0, reinterpret_cast<const sockaddr*>(&kernel),
                      sizeof kernel);
    } while (sent < 0 && errno == EINTR);
    return sent >= 0;
}

RouteAddress routeAddress(std::uint32_t address) noexcept {
    RouteAddress text{};
    text.sin_len = sizeof text;
    text.sin_family = routeAddressFamily;
    text.sin_addr = address;
    return text;
}

/// A routing message that is being built; its parts have no gaps, as each is a whole number of words.
struct RouteReply {
    unsigned char bytes[sizeof(RouteMessageHeader) + 2 * sizeof(RouteAddress)];
    std::size_t count = sizeof(RouteMessageHeader);

    void append(std::uint32_t address) noexcept {
        const RouteAddress whole = routeAddress(address);
        std::memcpy(bytes + count, &whole, sizeof whole);
        count += sizeof whole;
    }
};

// Anything that is not a route gets a reply without type and addresses, in which the caller finds nothing
// that it requested.
RouteReply replyOf(const RouteAnswer& answer) noexcept {
    RouteReply reply;
    RouteMessageHeader header{};
    header.rtm_version = routeMessageVersion;
    header.rtm_pid = getpid();
    header.rtm_seq = static_cast<std::int32_t>(answer.header().nlmsg_seq);
    if (answer.header().nlmsg_type == RTM_NEWROUTE && answer.holds(sizeof(rtmsg))) {
        header.rtm_type = routeLookup;
        header.rtm_flags = routeIsUp | routeIsDone;
        std::uint32_t value = 0;
        if (answer.getAttribute(RTA_OIF, value)) {
            // Interface numbers are larger in the kernel, but the message has 16 bits for them; the library
            // does not use this field.
            header.rtm_index = static_cast<std::uint16_t>(value);
        }
        if (answer.getAttribute(RTA_GATEWAY, value)) {
            header.rtm_flags |= routeHasGateway;
        }
        if (answer.getAttribute(RTA_DST, value)) {
            header.rtm_addrs |= 1 << routeDestination;
            reply.append(value);
        }
        // The source address of a packet to there: absent if no interface has one.
        if (answer.getAttribute(RTA_PREFSRC, value)) {
            header.rtm_addrs |= 1 << routeInterfaceAddress;
            reply.append(value);
        }
    }
    header.rtm_msglen = static_cast<std::uint16_t>(reply.count);
    std::memcpy(reply.bytes, &header, sizeof header);
    return reply;
}

/// A request is sent and answered synchronously by the kernel: when `sendto` returns, the reply is in the
/// socket.
class NetlinkTransport final : public RouteTransport {
public:
    int open() noexcept override {
        return keepOffStandardStreams(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE));
    }

    std::ptrdiff_t write(int socket, const void* message, std::size_t count) noexcept override {
        RouteQuestion question{};
        if (!translate(message, count, question)) {
            errno = EINVAL;
            return -1;
        }
        if (!send(socket, question)) {
            return -1;
        }
        // A refusal is a message, too. It is received here; any other reply is left for `read`.
        RouteAnswer answer;
        if (receive(socket, answer, MSG_PEEK) < 0) {
            return receivingFailed; // now, since the error may not be reported again
        }
        if (const int error = errorOf(answer)) {
            // Removes the message that was only peeked at.
            receive(socket, answer, 0);
            errno = error;
            return -1;
        }
        return static_cast<std::ptrdiff_t>(count);
    }

    std::ptrdiff_t read(int socket, void* message, std::size_t capacity) noexcept override {
        RouteAnswer answer;
        do {
            // Datagrams that are not a whole message are skipped; the kernel sends none.
            const std::ptrdiff_t count = receive(socket, answer, 0);
            if (count <= 0) {
                return count;
            }
        } while (!answer.holds(0));
        const RouteReply reply = replyOf(answer);
        const std::size_t count = reply.count < capacity ? reply.count : capacity;
        std::memcpy(message, reply.bytes, count);
        return static_cast<std::ptrdiff_t>(count);
    }

private:
    /// False for a message that is not a request for a route to an IPv4 address.
    static bool translate(const void* message, std::size_t count, RouteQuestion& question) noexcept {
        RouteMessageHeader header;
        RouteAddress destination;
        if (count < sizeof header + sizeof destination) {
            return false;
        }
        std::memcpy(&header, message, sizeof header);
        std::memcpy(&destination, static_cast<const char*>(message) + sizeof header, sizeof destination);
        if (header.rtm_version != routeMessageVersion || header.rtm_type != routeLookup ||
            header.rtm_msglen != count || (header.rtm_addrs & 1 << routeDestination) == 0 ||
            destination.sin_family != routeAddressFamily) {
            return false;
        }
        question.header.nlmsg_len = sizeof question;
        question.header.nlmsg_type = RTM_GETROUTE;
        question.header.nlmsg_flags = NLM_F_REQUEST;
        question.header.nlmsg_seq = static_cast<std::uint32_t>(header.rtm_seq);
        question.route.rtm_family = AF_INET;
        question.route.rtm_dst_len = 32;
        question.destinationHead.rta_len = RTA_LENGTH(sizeof question.destination);
        question.destinationHead.rta_type = RTA_DST;
        question.destination = destination.sin_addr;
        return true;
    }
};

constinit NetlinkTransport kernelTransport;

} // namespace

RouteTransport& routeTransport() noexcept { return kernelTransport; }

} // namespace ZQFoundation::detail::system
