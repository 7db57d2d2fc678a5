// Texts that the broker composes for providers: messages with their inserts, and descriptions of objects.
#pragma once

#include "broker/ObjectHead.h"
#include "cmpi/Types.h"

#include <cstdarg>
#include <string>

namespace KDV::Host {

// Replaces $0 to $9 by the `count` pairs of type and value in `values`; false for a type that is no insert.
bool fillMessage(const char* text, CMPICount count, va_list values, std::string& filled);
// Paths, instances, strings, arguments; false for other kinds.
bool describe(const ObjectHead& head, const void* object, std::string& text);

} // namespace KDV::Host
