// What the program says when it is ready: what it serves, where, and how to ask it.
#pragma once

#include "hostserver/CimHost.h"

#include <iosfwd>
#include <vector>

namespace KDV::Host {

void writeSummary(std::ostream& out, CimHost& host, const std::vector<Endpoint>& endpoints,
                  const std::string& alertStream);

// "address:port" with brackets around IPv6 addresses.
std::string hostPort(const Endpoint& endpoint);

} // namespace KDV::Host
