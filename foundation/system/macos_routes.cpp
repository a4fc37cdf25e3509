// SPDX-License-Identifier: MIT
// The transport of routing messages. The system has routing sockets; messages are passed to and from the
// kernel unchanged.
// Each constant of this library's layout is compared with the system's own when it is compiled.
#include <cerrno>

#include <fcntl.h>
#include <net/route.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "foundation/system/RouteMessage.h"
#include "foundation/system/RouteTransport.h"
#include "foundation/system/StandardStreams.h"

namespace ZQFoundation::detail::system {

namespace {

static_assert(sizeof(rt_msghdr) == sizeof(RouteMessageHeader));
static_assert(offsetof(rt_msghdr, rtm_msglen) == offsetof(RouteMessageHeader, rtm_msglen));
static_assert(offsetof(rt_msghdr, rtm_version) == offsetof(RouteMessageHeader, rtm_version));
static_assert(offsetof(rt_msghdr, rtm_type) == offsetof(RouteMessageHeader, rtm_type));
static_assert(offsetof(rt_msghdr, rtm_index) == offsetof(RouteMessageHeader, rtm_index));
static_assert(offsetof(rt_msghdr, rtm_flags) == offsetof(RouteMessageHeader, rtm_flags));
static_assert(offsetof(rt_msghdr, rtm_addrs) == offsetof(RouteMessageHeader, rtm_addrs));
static_assert(offsetof(rt_msghdr, rtm_pid) == offsetof(RouteMessageHeader, rtm_pid));
static_assert(offsetof(rt_msghdr, rtm_seq) == offsetof(RouteMessageHeader, rtm_seq));
static_assert(offsetof(rt_msghdr, rtm_errno) == offsetof(RouteMessageHeader, rtm_errno));
static_assert(offsetof(rt_msghdr, rtm_use) == offsetof(RouteMessageHeader, rtm_use));
static_assert(offsetof(rt_msghdr, rtm_inits) == offsetof(RouteMessageHeader, rtm_inits));
static_assert(offsetof(rt_msghdr, rtm_rmx) == offsetof(RouteMessageHeader, rtm_rmx));
static_assert(sizeof(rt_metrics) == sizeof(RouteMessageHeader::rtm_rmx));
static_assert(sizeof(sockaddr_in) == sizeof(RouteAddress));
static_assert(offsetof(sockaddr_in, sin_len) == offsetof(RouteAddress, sin_len));
static_assert(offsetof(sockaddr_in, sin_family) == offsetof(RouteAddress, sin_family));
static_assert(offsetof(sockaddr_in, sin_port) == offsetof(RouteAddress, sin_port));
static_assert(offsetof(sockaddr_in, sin_addr) == offsetof(RouteAddress, sin_addr));
static_assert(offsetof(sockaddr_in, sin_zero) == offsetof(RouteAddress, sin_zero));
static_assert(RTM_VERSION == routeMessageVersion && RTM_GET == routeLookup);
static_assert(AF_INET == routeAddressFamily);
static_assert(RTF_UP == routeIsUp && RTF_GATEWAY == routeHasGateway && RTF_HOST == routeToHost);
static_assert(RTF_DONE == routeIsDone && RTF_STATIC == routeIsStatic);
static_assert(RTAX_DST == routeDestination && RTAX_IFA == routeInterfaceAddress);
static_assert(RTAX_MAX == routeAddressCount);

class RoutingSocketTransport final : public RouteTransport {
public:
    int open() noexcept override {
        // No flag for close-on-exec exists when a socket is made; a fork in between would hand it on.
        const int descriptor = keepOffStandardStreams(::socket(PF_ROUTE, SOCK_RAW, 0));
        if (descriptor >= 0) {
            ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
        }
        return descriptor;
    }

    /// A request is one datagram: it is written whole or not at all.
    std::ptrdiff_t write(int socket, const void* message, std::size_t count) noexcept override {
        std::ptrdiff_t written;
        do {
            written = ::write(socket, message, count);
        } while (written < 0 && errno == EINTR);
        return written;
    }

    std::ptrdiff_t read(int socket, void* message, std::size_t capacity) noexcept override {
        std::ptrdiff_t count;
        do {
            count = ::read(socket, message, capacity);
        } while (count < 0 && errno == EINTR);
        return count;
    }
};

constinit RoutingSocketTransport kernelTransport;

} // namespace

RouteTransport& routeTransport() noexcept { return kernelTransport; }

} // namespace ZQFoundation::detail::system
