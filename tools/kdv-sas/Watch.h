// A subscription to every alert of the provider at a server, for as long as the object lives: it uses the server's
// ready filter when there is one, and takes away on destruction what it made.
#pragma once

#include "cim/Connection.h"

#include <string>
#include <vector>

namespace KdvSas {

class Subscription {
public:
    // url is where the alerts go. Throws Cim::Refused or Cim::Unreachable.
    Subscription(Cim::Connection& connection, const std::string& url);
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    ~Subscription(); // never throws: what cannot be removed is named on standard error

private:
    void findInterop();
    Cim::Path filter();
    Cim::Path create(const std::string& className, const std::vector<Cim::NewProperty>& properties);
    void removeAll() noexcept;

    Cim::Connection& _connection;
    std::string _interop;
    std::vector<Cim::Path> _made; // in order of creation
};

// An alert in one line: time, severity, what, where.
std::string alertLine(const Cim::Instance& alert);

} // namespace KdvSas
