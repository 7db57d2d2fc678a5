// Makes the records' contents of what the scan found and the devices answered. Keeps the numbers of drives and boxes
// from one refresh to the next. One thread at a time; throws std::bad_alloc only.
#pragma once

#include "sashba/Machine.h"
#include "sashba/sysfs/BoxPlan.h"
#include "sashba/sysfs/DeviceAnswer.h"
#include "sashba/sysfs/DrivePlan.h"
#include "sashba/sysfs/LiveMachine.h"
#include "sashba/sysfs/Numbering.h"
#include "sashba/sysfs/SysfsTree.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace KDV {

// A device that the adapter's firmware makes of others, not one that can be pulled.
bool isFirmwareVolume(const ScsiDevice& device, const LiveHba& hba);

class MachineBuilder {
public:
    explicit MachineBuilder(const SysfsTree& tree) : _tree(tree) {}

    Machine build(const LiveMachine& live, const DeviceAnswers& answers);

    // A drive took the number of another one that has just gone; it is there at the next build.
    bool wantsAnotherPass() const noexcept { return _wantsAnotherPass; }

private:
    struct Numbers {
        DriveNumbering drives;
        BoxNumbering boxes;
        std::string plainName, name; // of the adapter: with its address where the plain one was not unique
    };

    const std::string& nameOf(const LiveHba& hba, const std::vector<LiveHba>& all);
    std::vector<const DrivePlan*> numberDrives(const LiveHba& hba, const std::vector<BoxPlan>& boxes,
                                               std::vector<DrivePlan>& drives, PortNames& ports);

    const SysfsTree& _tree;
    std::map<std::uint32_t, Numbers> _numbers; // by host
    bool _wantsAnotherPass = false;
};

} // namespace KDV
