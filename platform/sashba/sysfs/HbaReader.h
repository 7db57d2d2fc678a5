// Finds the SAS adapters among the SCSI hosts: those that a SAS driver made, and any that has the SAS transport. Sends
// no command. Any thread; throws std::bad_alloc only.
#pragma once

#include "sashba/sysfs/LiveMachine.h"
#include "sashba/sysfs/SysfsTree.h"

#include <vector>

namespace KDV {

std::vector<LiveHba> readHbas(const SysfsTree& tree); // by PCI address, then by host number

} // namespace KDV
