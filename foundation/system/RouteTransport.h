// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_ROUTETRANSPORT_H
#define ZQFOUNDATION_SYSTEM_ROUTETRANSPORT_H

#include <cstddef>

/// How routing messages get to the kernel and back. They have the layout of a BSD routing socket; on systems
/// that have none, the transport puts the question in the kernel's own way and answers in that layout.
namespace ZQFoundation::detail::system {

class RouteTransport {
public:
    /// A socket for route lookups, close-on-exec; -1 with `errno` on failure.
    virtual int open() noexcept = 0;

    /// What `write` returns when the request went out, but receiving failed before anything said whether the
    /// kernel refuses it.
    static constexpr std::ptrdiff_t receivingFailed = -2;

    /// Sends one request of `count` bytes. Negative with `errno` on failure, a refusal by the kernel
    /// included.
    virtual std::ptrdiff_t write(int socket, const void* message, std::size_t count) noexcept = 0;

    /// The next message, cut to `capacity` bytes. 0 at the end of input, negative with `errno` on failure.
    virtual std::ptrdiff_t read(int socket, void* message, std::size_t capacity) noexcept = 0;

protected:
    ~RouteTransport() = default;
};

/// The kernel's.
RouteTransport& routeTransport() noexcept;

} // namespace ZQFoundation::detail::system

#endif
