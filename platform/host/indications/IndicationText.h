// An indication as people and programs on this machine read it: a line of JSON for the local stream, fields for the
// journal. Pure functions over an instance of the broker, which they only read.
#pragma once

#include "broker/InstanceObject.h"
#include "indications/JournalSocket.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace KDV::Host {

// {"time": ..., "namespace": ..., "class": ..., "properties": {...}}; properties that are NULL are left out.
std::string indicationLine(std::string_view nameSpace, const InstanceObject& indication, std::int64_t microseconds);

JournalFields indicationFields(std::string_view identifier, std::string_view nameSpace,
                               const InstanceObject& indication);

// "20260131235959.123456+000", in UTC.
std::string dateTimeText(std::int64_t microseconds);

} // namespace KDV::Host
