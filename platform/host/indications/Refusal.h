// A client's wish that cannot be met: the status code of DSP0200 and a text for the client. Thrown inside this folder
// and turned into an Outcome where the server calls in.
#pragma once

#include "cmpi/Types.h"

#include <stdexcept>
#include <string>

namespace KDV::Host {

class Refusal : public std::runtime_error {
public:
    Refusal(CMPIrc rc, const std::string& what) : std::runtime_error(what), _rc(rc) {}
    CMPIrc rc() const noexcept { return _rc; }

private:
    CMPIrc _rc;
};

} // namespace KDV::Host
