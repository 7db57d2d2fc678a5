// The running Linux machine as a source: a scan of sysfs at every refresh, and what its devices answered meanwhile.
// Used under the provider's mutex; never waits for a device.
#pragma once

#include "sashba/source/Source.h"
#include "sashba/sysfs/MachineBuilder.h"
#include "sashba/sysfs/SysfsScan.h"
#include "sashba/sysfs/SysfsTree.h"

#include <functional>
#include <memory>
#include <string>

namespace KDV {

// What the source takes from its surroundings; tests put their own in place.
struct SysfsSurroundings {
    std::function<void(const std::string&)> reportError;
    std::function<void(const std::string&)> reportInfo;
    std::function<void()> requestPass = [] {};
};

class SysfsSource final : public Source {
public:
    SysfsSource(const std::string& root, SysfsSurroundings surroundings);
    ~SysfsSource() override;

    void load(RecordTree& tree) override;
    void refresh(RecordTree& tree) override;

private:
    void take(RecordTree& tree);
    void reportHbas(const Machine& machine);

    SysfsTree _sysfs;
    SysfsSurroundings _surroundings;
    SysfsScan _scan{_sysfs};
    MachineBuilder _builder{_sysfs};
    std::string _reported;
};

} // namespace KDV
