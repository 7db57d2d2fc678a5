// Reads one SCSI device directory. None of these attributes sends a command to the device: the kernel keeps them all in
// memory. What is missing stays empty. Any thread; throws std::bad_alloc only.
#pragma once

#include "sashba/sysfs/LiveMachine.h"
#include "sashba/sysfs/SysfsTree.h"

#include <optional>
#include <string>

namespace KDV {

// Nothing when the path is no SCSI device or it vanished meanwhile.
std::optional<ScsiDevice> readScsiDevice(const SysfsTree& tree, const std::string& path);

// A disk's name by what it is, not by where: its world-wide name, else its serial number, else its SAS address; empty
// when it has none of them.
std::string diskIdentity(const ScsiDevice& device);

// The eight-byte name in "naa.5000..."; 0 for any other form.
std::uint64_t naaOf(const std::string& wwid);

} // namespace KDV
