// SPDX-License-Identifier: MIT
// Asks the kernel for a route, with routing messages.
#include "info/RoutingSocket.h"

#include <atomic>
#include <cstddef>
#include <cstring>

#include <arpa/inet.h>
#include <err.h>
#include <unistd.h>

#include "foundation/system/CallerState.h"
#include "foundation/system/RouteMessage.h"
#include "foundation/system/RouteTransport.h"
#include "foundation/system/TestOverrides.h"

namespace ZQFoundation {

using namespace detail::system;

// The layouts are the kernel's: a request is written, and a reply read, as bytes.
static_assert(sizeof(RouteMetrics) == sizeof(RouteMessageHeader::rtm_rmx));
static_assert(sizeof(RoutingSocketAddress) == sizeof(RouteAddress));
static_assert(sizeof(RoutingSocketAddressStorage) == 128);

extern "C" {
constinit RouteMetrics rt_metrics = {};
constinit RoutingSocketAddressStorage so_dst = {};
constinit RoutingSocketAddressStorage so_ifa = {};
constinit RoutingSocketAddressStorage so_ifp = {};
}

namespace {

/// Socket addresses begin at multiples of this.
constexpr std::size_t addressUnit = 4;

/// What each call deliberately keeps for the rest of the process: its socket and its message buffer. A list
/// of all of them keeps leak checkers quiet.
struct Lookup {
    Lookup* next = nullptr;
    int socket = -1;
    alignas(RouteMessageHeader) std::uint8_t buffer[sizeof(RouteMessageHeader) + 512] = {};

    std::uint8_t* addresses() noexcept { return buffer + sizeof(RouteMessageHeader); }
    const std::uint8_t* end() const noexcept { return buffer + sizeof buffer; }
    RouteMessageHeader header() const noexcept {
        RouteMessageHeader header;
        std::memcpy(&header, buffer, sizeof header);
        return header;
    }
};
static_assert(sizeof(Lookup::buffer) == 604);

constinit std::atomic<Lookup*> lookups{nullptr};

/// The number of the last request. Unsigned, so that it wraps; in the message its bits are read as signed.
constinit std::atomic<std::uint32_t> sequence{0};

/// The newest number, even if another thread has taken it meanwhile. A lookup that is overtaken ignores its
/// own reply: one more reason why two must not run at once.
std::int32_t currentSequence() noexcept {
    return static_cast<std::int32_t>(sequence.load(std::memory_order_relaxed));
}

/// The system's, or what a test has put in its place.
RouteTransport& transport() noexcept {
    return detail::overrides::routeTransport != nullptr ? *detail::overrides::routeTransport
                                                        : routeTransport();
}

/// Pushes a new lookup onto the list of all of them. The list is never read; it only keeps them reachable.
Lookup& keptLookup(int socket) {
    auto* const lookup = new Lookup;
    lookup->socket = socket;
    lookup->next = lookups.load(std::memory_order_relaxed);
    while (!lookups.compare_exchange_weak(lookup->next, lookup, std::memory_order_release,
                                          std::memory_order_relaxed)) {
    }
    return *lookup;
}

/// An address of length 0 takes a unit too: it is empty, but not absent.
std::size_t roundedLength(std::uint8_t length) noexcept {
    return length == 0 ? addressUnit : (length + addressUnit - 1) / addressUnit * addressUnit;
}

RouteAddress addressOf(const char* text) noexcept {
    RouteAddress address{};
    address.sin_len = sizeof address;
    address.sin_family = routeAddressFamily;
    in_addr converted{};
    if (inet_pton(AF_INET, text, &converted) == 1) {
        address.sin_addr = converted.s_addr; // otherwise the request is for 0.0.0.0
    }
    return address;
}

/// Returns the length of the request.
std::size_t writeRequest(Lookup& lookup, const char* destination) noexcept {
    RouteMessageHeader header{};
    header.rtm_version = routeMessageVersion;
    header.rtm_type = routeLookup;
    header.rtm_flags = routeIsUp | routeToHost | routeIsStatic;
    header.rtm_addrs = 1 << routeDestination | 1 << routeInterfaceAddress;
    header.rtm_seq = static_cast<std::int32_t>(sequence.fetch_add(1, std::memory_order_relaxed) + 1);
    std::memcpy(header.rtm_rmx, &rt_metrics, sizeof rt_metrics);
    const RouteAddress address = addressOf(destination);
    std::memcpy(lookup.addresses(), &address, sizeof address);
    // An empty address after it, all zero, asks for that of the interface.
    const std::size_t length = sizeof header + sizeof address + addressUnit;
    header.rtm_msglen = static_cast<std::uint16_t>(length);
    std::memcpy(lookup.buffer, &header, sizeof header);
    return length;
}

/// Replies to other processes may arrive on the same socket, and changes of the routes too.
bool answersLastRequest(const RouteMessageHeader& header, pid_t process) noexcept {
    return header.rtm_type == routeLookup && header.rtm_seq == currentSequence() && header.rtm_pid == process;
}

/// Reads until the reply is in the buffer or the input ends. False if reading fails. At the end of the input
/// the buffer has what came last: if nothing came, the request, in which the interface's address is 0.
bool readReply(Lookup& lookup, pid_t process) noexcept {
    for (;;) {
        const std::ptrdiff_t count = transport().read(lookup.socket, lookup.buffer, sizeof lookup.buffer);
        if (count < 0) {
            return false;
        }
        if (count == 0 || answersLastRequest(lookup.header(), process)) {
            return true;
        }
    }
}

/// Splits the addresses. With an `end`, ignores those that begin at or after it: the sender's lengths are not
/// trusted, and only the message's own buffer may be read.
void splitAddresses(int mask, std::uint8_t* at, const std::uint8_t* end,
                    RoutingSocketAddress** table) noexcept {
    bool isOver = false;
    for (int i = 0; i < routeAddressCount; ++i) {
        table[i] = nullptr;
        if ((mask & 1 << i) == 0 || isOver) {
            continue;
        }
        table[i] = reinterpret_cast<RoutingSocketAddress*>(at);
        const std::size_t length = roundedLength(*at);
        isOver = end != nullptr && length >= static_cast<std::size_t>(end - at);
        at += isOver ? 0 : length;
    }
}

/// Gets the interface's address from the message in the buffer; false if there is none. It is copied as
/// bytes, because addresses in a message are aligned to 4 bytes only.
bool getInterfaceAddress(Lookup& lookup, std::uint32_t& address) noexcept {
    RoutingSocketAddress* table[routeAddressCount];
    splitAddresses(lookup.header().rtm_addrs, lookup.addresses(), lookup.end(), table);
    const auto* const found = reinterpret_cast<const std::uint8_t*>(table[routeInterfaceAddress]);
    constexpr std::size_t place = offsetof(RouteAddress, sin_addr);
    if (found == nullptr || static_cast<std::size_t>(lookup.end() - found) < place + sizeof address) {
        return false;
    }
    std::memcpy(&address, found + place, sizeof address);
    return true;
}

} // namespace

// The failures are reported by `warn`, and not as log lines: the line names the program and the reason in
// `errno`.
std::uint32_t getLocalIPAddressOfInterfaceOfRouteTo(const char* destination) {
    const detail::CallerState state;
    if (destination == nullptr) {
        warn("no IP address given");
        return 0;
    }
    const int socket = transport().open();
    if (socket < 0) {
        warn("cannot open routing socket");
        return 0;
    }
    // From here on neither the socket nor the buffer is released, whatever happens.
    Lookup& lookup = keptLookup(socket);
    const pid_t process = getpid();
    const std::size_t length = writeRequest(lookup, destination);
    const std::ptrdiff_t written = transport().write(socket, lookup.buffer, length);
    const bool receivingFailed = written == RouteTransport::receivingFailed;
    if (written < 0 && !receivingFailed) {
        warn("error in writing to routing socket");
        return 0;
    }
    if (receivingFailed || !readReply(lookup, process)) {
        warn("error in reading from routing socket");
        return 0;
    }
    std::uint32_t address = 0;
    if (!getInterfaceAddress(lookup, address)) {
        warn("routing socket reply does not contain the desired information");
        return 0;
    }
    return address;
}

void get_rtaddrs(int mask, RoutingSocketAddress* first, RoutingSocketAddress** table) {
    splitAddresses(mask, reinterpret_cast<std::uint8_t*>(first), nullptr, table);
}

} // namespace ZQFoundation
