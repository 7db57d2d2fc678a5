#include "common/HostAddress.h"

#include <arpa/inet.h>
#include <cstring>
#include <ifaddrs.h>
#include <memory>
#include <net/if.h>
#include <netinet/in.h>

namespace KDV {
namespace {

// Global: neither loopback (127/8) nor link-local (169.254/16, RFC 3927) nor unspecified.
bool isGlobal(const in_addr& address)
{
    const std::uint32_t bits = ntohl(address.s_addr);
    return (bits >> 24) != 127 && (bits >> 16) != 0xA9FE && bits != 0;
}

bool isGlobal(const in6_addr& address)
{
    return !IN6_IS_ADDR_LOOPBACK(&address) && !IN6_IS_ADDR_LINKLOCAL(&address) && !IN6_IS_ADDR_UNSPECIFIED(&address);
}

template <class SocketAddress, class Address>
std::string textIfGlobal(const ifaddrs& interface, Address SocketAddress::*member, int family)
{
    SocketAddress socketAddress;
    std::memcpy(&socketAddress, interface.ifa_addr, sizeof socketAddress);
    char text[INET6_ADDRSTRLEN] = "";
    if (isGlobal(socketAddress.*member)) ::inet_ntop(family, &(socketAddress.*member), text, sizeof text);
    return text;
}

std::string globalText(const ifaddrs& interface, int family)
{
    if (!interface.ifa_addr || interface.ifa_addr->sa_family != family || !(interface.ifa_flags & IFF_UP)) return {};
    return family == AF_INET ? textIfGlobal(interface, &sockaddr_in::sin_addr, family)
                             : textIfGlobal(interface, &sockaddr_in6::sin6_addr, family);
}

} // namespace

std::string firstGlobalAddress(const ifaddrs* interfaces)
{
    for (const int family : {AF_INET, AF_INET6}) {
        for (const ifaddrs* interface = interfaces; interface; interface = interface->ifa_next) {
            std::string text = globalText(*interface, family);
            if (!text.empty()) return text;
        }
    }
    return "127.0.0.1";
}

std::string hostAddress()
{
    ifaddrs* list = nullptr;
    if (::getifaddrs(&list) != 0) return firstGlobalAddress(nullptr);
    const std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> owner(list, ::freeifaddrs);
    return firstGlobalAddress(list);
}

} // namespace KDV
