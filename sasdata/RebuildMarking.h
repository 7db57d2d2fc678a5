// Marks the physical drives that are being rebuilt, from what the logical drive records say, so that their extents
// report it. On purpose nothing calls it: clients of this system have never seen a rebuilding extent, only a rebuilding
// volume. The caller would hold the provider's mutex.
#pragma once

#include "sasdata/SasHba.h"

#include <vector>

namespace KDV {

// Clears every mark first. A logical drive that names a drive of another HBA, or none, marks nothing.
void markRebuildingDrives(const std::vector<SasHba*>& hbas) noexcept;

} // namespace KDV
