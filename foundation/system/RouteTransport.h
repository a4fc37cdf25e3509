// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_ROUTETRANSPORT_H
#define ZQFOUNDATION_SYSTEM_ROUTETRANSPORT_H

#include <cstddef>

/// Sends routing messages to the kernel and receives its replies. They have the layout of a BSD routing
/// socket; on systems without one, the transport uses the kernel's own interface and converts to and from
/// that layout.
namespace ZQFoundation::detail::system {

class RouteTransport {
public:
    /// A socket for route lookups, close-on-exec; -1 with `errno` on failure.
    virtual int open() noexcept = 0;

    /// What `write` returns when the request was sent, but receiving failed before it was known whether the
    /// kernel refused it.
    static constexpr std::ptrdiff_t receivingFailed = -2;

    /// Sends one request of `count` bytes. Negative with `errno` on failure, including a refusal by the
    /// kernel.
    virtual std::ptrdiff_t write(int socket, const void* message, std::size_t count) noexcept = 0;

    /// The next message, cut to `capacity` bytes. 0 at the end of input, negative with `errno` on failure.
    virtual std::ptrdiff_t read(int socket, void* message, std::size_t capacity) noexcept = 0;

protected:
    ~RouteTransport() = default;
};

/// The transport to the kernel.
RouteTransport& routeTransport() noexcept;

} // namespace ZQFoundation::detail::system

#endif
