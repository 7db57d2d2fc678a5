// All questions to one device in their order, and the few attributes of sysfs for which the kernel sends a command to
// it. Blocks as long as the device does: for the asking threads. Throws std::bad_alloc only.
#pragma once

#include "sashba/sysfs/DeviceLink.h"
#include "sashba/sysfs/SysfsTree.h"

namespace KDV {

DeviceAnswer askDevice(const AskedDevice& device, DeviceOpener& opener, const SysfsTree& tree,
                       std::chrono::milliseconds deadline);

} // namespace KDV
