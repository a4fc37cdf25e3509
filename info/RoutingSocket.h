// SPDX-License-Identifier: MIT
// Declares the lookup of a route by routing messages, and the layout of these.
#ifndef ZQFOUNDATION_INFO_ROUTINGSOCKET_H
#define ZQFOUNDATION_INFO_ROUTINGSOCKET_H

#include <cstdint>

#include "../foundation/text/Export.h"

namespace ZQFoundation {

/// A socket address as routing messages carry it: its own length first, which counts these two bytes too.
struct RoutingSocketAddress {
    std::uint8_t sa_len;      ///< bytes of the whole address, including these two
    std::uint8_t sa_family;   ///< address family: `AF_INET` and the like
    std::uint8_t sa_data[14]; ///< the address, as its family lays it out
};

/// What the kernel knows of a route's quality; 56 bytes of every routing message.
struct RouteMetrics {
    std::uint32_t rmx_locks;     ///< bits of the values that the kernel leaves alone
    std::uint32_t rmx_mtu;       ///< largest packet, in bytes
    std::uint32_t rmx_hopcount;  ///< hops to the destination
    std::int32_t rmx_expire;     ///< when the route ends
    std::uint32_t rmx_recvpipe;  ///< bandwidth times delay, inbound
    std::uint32_t rmx_sendpipe;  ///< bandwidth times delay, outbound
    std::uint32_t rmx_ssthresh;  ///< gateway buffer limit, outbound
    std::uint32_t rmx_rtt;       ///< estimated round-trip time
    std::uint32_t rmx_rttvar;    ///< estimated variance of that
    std::uint32_t rmx_pksent;    ///< packets sent on the route
    std::uint32_t rmx_state;     ///< state of the route
    std::uint32_t rmx_filler[3]; ///< unused
};

/// Room for a socket address of any family.
union RoutingSocketAddressStorage {
    RoutingSocketAddress address; ///< its length, family and first bytes
    std::uint8_t bytes[128];      ///< the whole room
};

extern "C" {

/// Copied into every request of a route lookup. All zero; the library never writes it.
extern ZQFOUNDATION_EXPORT RouteMetrics rt_metrics;

/// All zero, and used by no operation; kept for hosts that link to it.
extern ZQFOUNDATION_EXPORT RoutingSocketAddressStorage so_dst;

/// All zero, and used by no operation; kept for hosts that link to it.
extern ZQFOUNDATION_EXPORT RoutingSocketAddressStorage so_ifa;

/// All zero, and used by no operation; kept for hosts that link to it.
extern ZQFOUNDATION_EXPORT RoutingSocketAddressStorage so_ifp;

/// The local IPv4 address, in network byte order, of the interface through which the kernel would send to the
/// destination, given as dotted text ("192.0.2.1"). Any other text asks for the route to 0.0.0.0.
///
/// 0 on failure, with a line on standard error that names the step. **Each call leaks one descriptor and 604
/// bytes until the process ends.** Two threads must not call it at once.
ZQFOUNDATION_EXPORT std::uint32_t getLocalIPAddressOfInterfaceOfRouteTo(const char* destination);

/// Splits the socket addresses of a routing message. For each bit of the mask from bit 0 to bit 7 that is
/// set, the entry of the table points at the next address, else it is null. Each address is as long as its
/// first byte says, rounded up to a multiple of 4, and 4 for 0; nothing is checked against the message's end.
///
/// The table has room for 8 entries, which point into the message.
ZQFOUNDATION_EXPORT void get_rtaddrs(int mask, RoutingSocketAddress* first, RoutingSocketAddress** table);

} // extern "C"

} // namespace ZQFoundation

#endif
