// SPDX-License-Identifier: MIT
// A network of a test's own: a child process in a network namespace, with interfaces, addresses and routes
// made by netlink messages. Nothing is ever sent.
#ifndef ZQFOUNDATION_TESTS_INFO_NETWORKSCENE_H
#define ZQFOUNDATION_TESTS_INFO_NETWORKSCENE_H

#include <arpa/inet.h>
#include <linux/if_link.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <linux/veth.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/socket.h>

#include <cstdint>
#include <optional>
#include <string>

#include "tests/kit/Child.h"

namespace networkscene {

/// The dotted text of the address from which a packet to `destination` would come, by the system's own means:
/// a datagram socket is connected, which sends nothing. "none" without a route.
inline std::string sourceOfConnection(const std::string& destination) {
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(9);
    ::inet_pton(AF_INET, destination.c_str(), &address.sin_addr);
    socklen_t length = sizeof address;
    const bool known = ::connect(socket, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
                       ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length) == 0;
    ::close(socket);
    char text[INET_ADDRSTRLEN] = {};
    return known ? ::inet_ntop(AF_INET, &address.sin_addr, text, sizeof text) : "none";
}

/// One netlink request that is being put together.
class Request {
public:
    Request(std::uint16_t type, std::uint16_t flags) {
        nlmsghdr header{};
        header.nlmsg_type = type;
        header.nlmsg_flags = static_cast<std::uint16_t>(flags | NLM_F_REQUEST | NLM_F_ACK);
        add(header);
    }

    template <class Value>
    Request& add(const Value& value) {
        bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
        return pad();
    }

    Request& attribute(std::uint16_t type, const std::string& value) {
        const rtattr head{static_cast<std::uint16_t>(sizeof(rtattr) + value.size()), type};
        bytes_.append(reinterpret_cast<const char*>(&head), sizeof head);
        bytes_ += value;
        return pad();
    }

    template <class Value>
    Request& number(std::uint16_t type, const Value& value) {
        return attribute(type, std::string(reinterpret_cast<const char*>(&value), sizeof value));
    }

    Request& address(std::uint16_t type, const char* text) {
        in_addr value{};
        return ::inet_pton(AF_INET, text, &value) == 1 ? number(type, value) : *this;
    }

    std::size_t begin(std::uint16_t type) {
        const std::size_t at = bytes_.size();
        attribute(type, "");
        return at;
    }
    void end(std::size_t at) {
        const auto length = static_cast<std::uint16_t>(bytes_.size() - at);
        bytes_.replace(at, sizeof length, reinterpret_cast<const char*>(&length), sizeof length);
    }

    /// 0, or the error by which the kernel refuses it.
    int carryOut() {
        const auto length = static_cast<std::uint32_t>(bytes_.size());
        bytes_.replace(0, sizeof length, reinterpret_cast<const char*>(&length), sizeof length);
        const int socket = ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE);
        struct {
            nlmsghdr header;
            nlmsgerr error;
            char rest[1024];
        } answer{};
        const bool answered =
            ::send(socket, bytes_.data(), bytes_.size(), 0) == static_cast<ssize_t>(bytes_.size()) &&
            ::recv(socket, &answer, sizeof answer, 0) > 0 && answer.header.nlmsg_type == NLMSG_ERROR;
        ::close(socket);
        return answered ? -answer.error.error : EIO;
    }

private:
    Request& pad() {
        bytes_.resize((bytes_.size() + 3) / 4 * 4, '\0');
        return *this;
    }

    std::string bytes_;
};

/// A pair of interfaces with a cable between them, both down.
inline int makePair(const std::string& name, const std::string& peer) {
    Request request(RTM_NEWLINK, NLM_F_CREATE | NLM_F_EXCL);
    request.add(ifinfomsg{}).attribute(IFLA_IFNAME, name + '\0');
    const std::size_t information = request.begin(IFLA_LINKINFO);
    request.attribute(IFLA_INFO_KIND, "veth");
    const std::size_t data = request.begin(IFLA_INFO_DATA);
    const std::size_t other = request.begin(VETH_INFO_PEER);
    request.add(ifinfomsg{}).attribute(IFLA_IFNAME, peer + '\0');
    request.end(other);
    request.end(data);
    request.end(information);
    return request.carryOut();
}

inline int raise(const std::string& name) {
    ifinfomsg link{};
    link.ifi_index = static_cast<int>(::if_nametoindex(name.c_str()));
    link.ifi_flags = IFF_UP;
    link.ifi_change = IFF_UP;
    return Request(RTM_NEWLINK, 0).add(link).carryOut();
}

inline int addAddress(const std::string& name, const char* address, std::uint8_t bits) {
    ifaddrmsg body{};
    body.ifa_family = AF_INET;
    body.ifa_prefixlen = bits;
    body.ifa_index = ::if_nametoindex(name.c_str());
    return Request(RTM_NEWADDR, NLM_F_CREATE | NLM_F_EXCL)
        .add(body)
        .address(IFA_LOCAL, address)
        .address(IFA_ADDRESS, address)
        .carryOut();
}

struct Route {
    const char* destination;
    std::uint8_t bits;
    const char* interface = nullptr;
    const char* gateway = nullptr;
    const char* source = nullptr;
    std::uint8_t type = RTN_UNICAST;
};

inline int addRoute(const Route& route) {
    rtmsg body{};
    body.rtm_family = AF_INET;
    body.rtm_dst_len = route.bits;
    body.rtm_table = RT_TABLE_MAIN;
    body.rtm_protocol = RTPROT_STATIC;
    body.rtm_type = route.type;
    body.rtm_scope =
        route.gateway == nullptr && route.interface != nullptr ? RT_SCOPE_LINK : RT_SCOPE_UNIVERSE;
    Request request(RTM_NEWROUTE, NLM_F_CREATE | NLM_F_EXCL);
    request.add(body).address(RTA_DST, route.destination);
    if (route.interface != nullptr) {
        request.number(RTA_OIF, static_cast<std::uint32_t>(::if_nametoindex(route.interface)));
    }
    if (route.gateway != nullptr) {
        request.address(RTA_GATEWAY, route.gateway);
    }
    if (route.source != nullptr) {
        request.address(RTA_PREFSRC, route.source);
    }
    return request.carryOut();
}

/// Leaves for a network namespace without any interface but a loopback that is down. False where the system
/// does not let this process.
inline bool enterNamespace() {
    return ::unshare(CLONE_NEWNET) == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0;
}

/// What `body`, which returns a text, returns in a child process with a network of its own in which it may
/// make pairs of interfaces; nothing where the system does not allow it.
template <class Body>
std::optional<std::string> inNetworkOfItsOwn(const Body& body) {
    constexpr char allowed = 'a';
    const std::string text = ZQFoundation::kit::textFromChild([&body] {
        return enterNamespace() && makePair("probe0", "probe1") == 0 ? allowed + body() : std::string();
    });
    return text.starts_with(allowed) ? std::optional(text.substr(1)) : std::nullopt;
}

} // namespace networkscene

#endif
