// Finds what in a capture tells one machine from another: in the attributes and pages that are known to hold serial
// numbers and world-wide names, and names of the usual form anywhere. Pages may be truncated or nonsense. Pure; throws
// std::bad_alloc only.
#pragma once

#include "capture/Captured.h"
#include "capture/Secrets.h"

namespace KdvSas {

Secrets secretsOf(const std::vector<CapturedEntry>& entries);

} // namespace KdvSas
