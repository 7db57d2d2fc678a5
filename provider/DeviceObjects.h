// The memory of the device objects: whatever population and the passes made, in place and never moved, also the
// objects of disks that were pulled since. The lists that are in use are those of the provider and of each SasHba.
// Filled under the provider's lock.
#pragma once

#include "sasdata/SasHba.h"
#include "sasdata/SasLogicalDrive.h"
#include "sasdata/SasPhysicalDrive.h"
#include "sasdata/SasStorageBox.h"

#include <deque>
#include <memory>

namespace KDV {

struct DeviceObjects {
    std::deque<SasHba> hbas;
    std::deque<SasLogicalDrive> logicalDrives;
    std::deque<SasStorageBox> storageBoxes;
    std::deque<SasPhysicalDrive> physicalDrives;

    // From here on they live until the process ends, as the records do that they point at.
    static void keepForever(std::unique_ptr<DeviceObjects> devices);
};

} // namespace KDV
