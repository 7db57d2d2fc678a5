// The network address by which others may know this host. Any thread.
#pragma once

#include "common/Export.h"

#include <string>

struct ifaddrs;

namespace KDV {

// The first global address among the interfaces, in their order, IPv4 before IPv6; "127.0.0.1" when there is none.
KDV_COMMON_API std::string hostAddress();

// The same from a given list, for those who have one.
KDV_COMMON_API std::string firstGlobalAddress(const ifaddrs* interfaces);

} // namespace KDV
