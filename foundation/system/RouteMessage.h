// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_ROUTEMESSAGE_H
#define ZQFOUNDATION_SYSTEM_ROUTEMESSAGE_H

#include <cstddef>
#include <cstdint>
#include <type_traits>

/// The layout of messages on a BSD routing socket, the same on every system: this header, then the socket
/// addresses that `rtm_addrs` names, in the order of their bits. Numbers are in the machine's byte order,
/// addresses in that of the network.
namespace ZQFoundation::detail::system {

struct RouteMessageHeader {
    std::uint16_t rtm_msglen;
    std::uint8_t rtm_version;
    std::uint8_t rtm_type;
    std::uint16_t rtm_index;
    std::uint16_t gap;
    std::int32_t rtm_flags;
    std::int32_t rtm_addrs;
    std::int32_t rtm_pid;
    std::int32_t rtm_seq;
    std::int32_t rtm_errno;
    std::int32_t rtm_use;
    std::uint32_t rtm_inits;
    std::uint8_t rtm_rmx[56];
};

/// An IPv4 address in such a message.
struct RouteAddress {
    std::uint8_t sin_len;
    std::uint8_t sin_family;
    std::uint16_t sin_port;
    std::uint32_t sin_addr;
    std::uint8_t sin_zero[8];
};

// Other programs and kernels rely on these offsets.
static_assert(sizeof(RouteMessageHeader) == 92 && std::is_trivially_copyable_v<RouteMessageHeader>);
static_assert(offsetof(RouteMessageHeader, rtm_msglen) == 0);
static_assert(offsetof(RouteMessageHeader, rtm_version) == 2);
static_assert(offsetof(RouteMessageHeader, rtm_type) == 3);
static_assert(offsetof(RouteMessageHeader, rtm_index) == 4);
static_assert(offsetof(RouteMessageHeader, rtm_flags) == 8);
static_assert(offsetof(RouteMessageHeader, rtm_addrs) == 12);
static_assert(offsetof(RouteMessageHeader, rtm_pid) == 16);
static_assert(offsetof(RouteMessageHeader, rtm_seq) == 20);
static_assert(offsetof(RouteMessageHeader, rtm_errno) == 24);
static_assert(offsetof(RouteMessageHeader, rtm_use) == 28);
static_assert(offsetof(RouteMessageHeader, rtm_inits) == 32);
static_assert(offsetof(RouteMessageHeader, rtm_rmx) == 36);
static_assert(sizeof(RouteAddress) == 16 && std::is_trivially_copyable_v<RouteAddress>);
static_assert(offsetof(RouteAddress, sin_family) == 1);
static_assert(offsetof(RouteAddress, sin_port) == 2);
static_assert(offsetof(RouteAddress, sin_addr) == 4);
static_assert(offsetof(RouteAddress, sin_zero) == 8);

inline constexpr std::uint8_t routeMessageVersion = 5;
inline constexpr std::uint8_t routeLookup = 4; ///< a request for one route, and its reply
inline constexpr std::uint8_t routeAddressFamily = 2;

inline constexpr std::int32_t routeIsUp = 0x1;
inline constexpr std::int32_t routeHasGateway = 0x2;
inline constexpr std::int32_t routeToHost = 0x4;
inline constexpr std::int32_t routeIsDone = 0x40; ///< the kernel has accepted the request
inline constexpr std::int32_t routeIsStatic = 0x800;

/// Numbers of the socket addresses: bit n of `rtm_addrs` means address n.
inline constexpr int routeDestination = 0;
inline constexpr int routeInterfaceAddress = 5;
inline constexpr int routeAddressCount = 8;

} // namespace ZQFoundation::detail::system

#endif
