// SPDX-License-Identifier: MIT
// Replies of a routing socket and of the kernel's own one: wrong lengths, messages cut off, missing
// addresses.
//
// Input: a byte of switches, then the reply. Even: the routing socket of a lookup, whose messages each
// begin with their length. Odd: one datagram of the kernel.
//
// The two sources are part of this one: what a lookup keeps for the rest of the process would come to some
// gigabytes here and is released, and a datagram needs no socket.
#include <cstdio>
#include <vector>

#include <sanitizer/asan_interface.h>

#include "fuzz/Fuzzing.h"
#include "fuzz/InputReader.h"

#include "foundation/system/linux_routes.cpp"
#include "info/RoutingSocket.cpp"

using namespace ZQFoundation;
using namespace ZQFoundation::detail::system;
using fuzzing::require;

namespace {

constexpr std::size_t bufferSize = sizeof(RouteMessageHeader) + 512;

RouteMessageHeader headerIn(const std::uint8_t* bytes) {
    RouteMessageHeader header;
    std::memcpy(&header, bytes, sizeof header);
    return header;
}

/// Answers reads with the input's messages and remembers what is in the buffer then.
class Replies final : public RouteTransport {
public:
    explicit Replies(fuzzing::InputReader input) : input_(input) {}

    int open() noexcept override { return 0; } // a descriptor that a lookup does not use itself

    std::ptrdiff_t write(int, const void* message, std::size_t count) noexcept override {
        std::memcpy(buffer, message, count);
        question = headerIn(buffer);
        return static_cast<std::ptrdiff_t>(count);
    }

    /// Puts the right numbers into a message that is meant as the answer.
    std::ptrdiff_t read(int, void* message, std::size_t capacity) noexcept override {
        require(capacity == bufferSize, "room for a message");
        if (input_.rest().empty() || hasFailed) {
            return 0;
        }
        const unsigned form = input_.byte();
        std::vector<char> bytes(input_.number<std::uint16_t>() % (bufferSize + 1));
        for (char& byte : bytes) {
            byte = static_cast<char>(input_.byte());
        }
        hasFailed = (form & 0xF8U) == 0xF8;
        if (hasFailed) {
            return -1;
        }
        put(bytes, offsetof(RouteMessageHeader, rtm_type), routeLookup, (form & 1U) != 0);
        put(bytes, offsetof(RouteMessageHeader, rtm_seq), question.rtm_seq, (form & 2U) != 0);
        put(bytes, offsetof(RouteMessageHeader, rtm_pid), static_cast<std::int32_t>(getpid()),
            (form & 4U) != 0);
        std::copy(bytes.begin(), bytes.end(), buffer);
        std::memcpy(message, buffer, bytes.size());
        return static_cast<std::ptrdiff_t>(bytes.size());
    }

    /// Like the lookup's own buffer: after a short message the rest of the one before is still there.
    std::uint8_t buffer[bufferSize] = {};
    RouteMessageHeader question{};
    bool hasFailed = false;

private:
    template <class Number>
    static void put(std::vector<char>& bytes, std::size_t place, Number number, bool isMeant) {
        if (isMeant && bytes.size() >= place + sizeof number) {
            std::memcpy(bytes.data() + place, &number, sizeof number);
        }
    }

    fuzzing::InputReader input_;
};

/// Where the sixth address begins, by the lengths of those before it; nothing beyond the buffer.
std::uint32_t plainInterfaceAddress(const std::uint8_t (&buffer)[bufferSize]) {
    const auto mask = static_cast<std::uint32_t>(headerIn(buffer).rtm_addrs);
    std::size_t at = sizeof(RouteMessageHeader);
    for (int i = 0; i < routeInterfaceAddress; ++i) {
        if ((mask >> i & 1U) != 0 && at < bufferSize) {
            at += buffer[at] == 0 ? 4U : (buffer[at] + 3U) / 4U * 4U;
        }
    }
    std::uint32_t address = 0;
    if ((mask >> routeInterfaceAddress & 1U) != 0 && at + 8 <= bufferSize) {
        std::memcpy(&address, buffer + at + 4, sizeof address);
    }
    return address;
}

void checkSplitting(std::uint8_t (&buffer)[bufferSize], int mask) {
    // Nothing is checked against an end, so there is room for eight of the longest addresses.
    std::vector<std::uint8_t> bytes(buffer, buffer + bufferSize);
    bytes.resize(bytes.size() + 8 * 256);
    RoutingSocketAddress* table[8];
    get_rtaddrs(mask, reinterpret_cast<RoutingSocketAddress*>(bytes.data()), table);
    std::size_t at = 0;
    for (int i = 0; i < 8; ++i) {
        const bool isThere = (mask >> i & 1) != 0;
        require(reinterpret_cast<std::uint8_t*>(table[i]) == (isThere ? bytes.data() + at : nullptr),
                "address of a message");
        if (isThere) {
            at += bytes[at] == 0 ? 4 : (bytes[at] + 3U) & ~3U;
        }
    }
}

/// Discards the messages of failed lookups, which would be millions here.
class Silence {
public:
    Silence() : kept_(stderr) {
        static std::FILE* const nowhere = std::fopen("/dev/null", "w");
        stderr = nowhere;
    }
    ~Silence() { stderr = kept_; }

private:
    std::FILE* kept_;
};

void checkLookup(fuzzing::InputReader input) {
    Replies replies(input);
    detail::overrides::routeTransport = &replies;
    std::uint32_t address = 0;
    {
        const Silence silence;
        address = getLocalIPAddressOfInterfaceOfRouteTo("192.0.2.1");
    }
    detail::overrides::routeTransport = nullptr;
    delete lookups.exchange(nullptr);
    require(address == (replies.hasFailed ? 0 : plainInterfaceAddress(replies.buffer)),
            "address of the interface");
    checkSplitting(replies.buffer, headerIn(replies.buffer).rtm_addrs);
}

/// What the kernel says about a route, read byte by byte.
struct PlainRoute {
    bool isRoute = false;
    std::uint32_t values[16] = {};
    bool isThere[16] = {};

    explicit PlainRoute(std::string_view datagram) {
        const auto number = [&](std::size_t at, unsigned size) {
            unsigned value = 0;
            for (unsigned i = size; i-- > 0;) {
                value = value << 8 | static_cast<unsigned char>(datagram[at + i]);
            }
            return value;
        };
        datagram = datagram.substr(0, number(0, 4));
        isRoute = number(4, 2) == 24 && datagram.size() >= 16 + 12;
        for (std::size_t at = 28; isRoute && at + 4 <= datagram.size();) {
            const unsigned length = number(at, 2);
            const unsigned type = number(at + 2, 2);
            if (length < 4 || at + length > datagram.size()) {
                break;
            }
            if (length == 8 && type < 16 && !isThere[type]) {
                isThere[type] = true;
                values[type] = number(at + 4, 4);
            }
            at += (length + 3) / 4 * 4;
        }
    }
};

void requireReply(const RouteReply& reply, std::string_view datagram) {
    const PlainRoute route(datagram);
    const RouteMessageHeader header = headerIn(reply.bytes);
    const bool hasDestination = route.isThere[1];
    const bool hasSource = route.isThere[7];
    require(header.rtm_type == (route.isRoute ? routeLookup : 0), "type of a reply");
    require(header.rtm_addrs == (hasDestination ? 1 : 0) + (hasSource ? 32 : 0), "addresses of a reply");
    require(header.rtm_index == static_cast<std::uint16_t>(route.values[4]), "interface of a reply");
    require(((header.rtm_flags & routeHasGateway) != 0) == route.isThere[5], "gateway of a reply");
    require(header.rtm_msglen == reply.count &&
                reply.count == 92 + (hasDestination ? 16U : 0U) + (hasSource ? 16U : 0U),
            "length of a reply");
    if (hasSource) {
        require(std::memcmp(reply.bytes + reply.count - 12, &route.values[7], 4) == 0, "source address");
    }
    if (hasDestination) {
        require(std::memcmp(reply.bytes + 92 + 4, &route.values[1], 4) == 0, "destination address");
    }
}

/// What is after the datagram in the room for it must not be looked at.
void checkDatagram(std::string_view datagram) {
    RouteAnswer answer;
    answer.count = std::min(datagram.size(), sizeof answer.bytes);
    std::copy_n(datagram.begin(), answer.count, answer.bytes);
    __asan_poison_memory_region(answer.bytes + answer.count, sizeof answer.bytes - answer.count);
    const bool isWhole = answer.holds(0);
    require(errorOf(answer) >= 0 && errorOf(answer) <= 4095, "an error that the kernel does not have");
    if (isWhole) {
        requireReply(replyOf(answer), datagram);
    }
    __asan_unpoison_memory_region(answer.bytes, sizeof answer.bytes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::InputReader input(data, size);
    if ((input.byte() & 1U) == 0) {
        checkLookup(input);
    } else {
        checkDatagram(input.rest());
    }
    return 0;
}
