// Reads the Linux md arrays and which SCSI devices they are made of. Sends no command. Any thread; throws
// std::bad_alloc only.
#pragma once

#include "sashba/sysfs/LiveMachine.h"
#include "sashba/sysfs/SysfsTree.h"

#include <vector>

namespace KDV {

std::vector<MdArray> readMdArrays(const SysfsTree& tree); // by name

} // namespace KDV
