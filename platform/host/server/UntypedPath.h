// Reads an object path in its text form, as DSP0207 writes it: "//host/root/vnr:KDV_X.Key=\"text\",Number=3". Some
// clients send a reference key as such a text. What cannot be read is a CimError with 4.
#pragma once

#include "hostxml/CimRequest.h"

#include <string_view>

namespace KDV::Host {

RequestPath readUntypedPath(std::string_view text);

} // namespace KDV::Host
