// SPDX-License-Identifier: MIT
// Converts the local address of a route to text.
#include "info/NetworkInfo.h"

#include <cstring>
#include <string>

#include "info/RoutingSocket.h"

namespace ZQFoundation {

NSString NetworkInfo::getLocalIPAddressStringOfInterfaceOfRouteTo(const NSString& destination) {
    const std::string text = destination.utf8();
    const std::uint32_t address = getLocalIPAddressOfInterfaceOfRouteTo(destination ? text.c_str() : nullptr);
    if (address == 0) {
        return nullptr;
    }
    std::uint8_t bytes[sizeof address]; // in network byte order, so in the order of memory
    std::memcpy(bytes, &address, sizeof address);
    return NSString::stringWithFormat("%u.%u.%u.%u", bytes[0], bytes[1], bytes[2], bytes[3]);
}

} // namespace ZQFoundation
