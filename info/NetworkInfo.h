// SPDX-License-Identifier: MIT
// Declares the local address of a route as text.
#ifndef ZQFOUNDATION_INFO_NETWORKINFO_H
#define ZQFOUNDATION_INFO_NETWORKINFO_H

#include "../foundation/objects/NSString.h"

namespace ZQFoundation {

/// The local address that a route uses.
class ZQFOUNDATION_EXPORT NetworkInfo {
public:
    NetworkInfo() = delete;

    /// The local IPv4 address of the interface that a route to the destination ("192.0.2.1") uses, as
    /// "192.168.1.20"; nil on failure, with a line on standard error, and for the address 0.0.0.0.
    ///
    /// **Each call leaks one descriptor, which stays open until the process ends.** Two threads must not call
    /// it at once.
    static NSString getLocalIPAddressStringOfInterfaceOfRouteTo(const NSString& destination);
};

} // namespace ZQFoundation

#endif
