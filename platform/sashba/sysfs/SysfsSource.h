// The running Linux machine as a source: a scan of sysfs at every refresh, and what its devices answered meanwhile to
// threads of the source's own. Used under the provider's mutex. A refresh never waits for a device and opens none; only
// the first filling gives them a short while, so that the first instances know more than nothing.
#pragma once

#include "sashba/source/Source.h"
#include "sashba/sysfs/AdapterMemory.h"
#include "sashba/sysfs/AskingThreads.h"
#include "sashba/sysfs/MachineBuilder.h"
#include "sashba/sysfs/PlugEvents.h"
#include "sashba/sysfs/SysfsScan.h"
#include "sashba/sysfs/SysfsTree.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace KDV {

struct SysfsSettings {
    AskingSettings asking;
    std::chrono::milliseconds firstAnswers = std::chrono::milliseconds(1500);
};

// What the source takes from its surroundings; tests put their own in place. The call-backs may come from any thread.
struct SysfsSurroundings {
    std::function<void(const std::string&)> reportError;
    std::function<void(const std::string&)> reportInfo;
    std::function<void()> requestPass = [] {};
    std::function<void()> answersChanged = [] {}; // devices said something new after the first filling
    std::shared_ptr<DeviceOpener> opener;         // null: no device is asked
    bool listenToPlugs = false;
};

class SysfsSource final : public Source {
public:
    SysfsSource(const std::string& root, const SysfsSettings& settings, SysfsSurroundings surroundings);
    ~SysfsSource() override;

    void load(RecordTree& tree) override;
    void refresh(RecordTree& tree) override;

private:
    void take(RecordTree& tree, const LiveMachine& live);
    void ask(const LiveMachine& live);
    void reportHbas(const Machine& machine);

    std::shared_ptr<const SysfsTree> _sysfs;
    SysfsSettings _settings;
    SysfsSurroundings _surroundings;
    SysfsScan _scan{*_sysfs};
    MachineBuilder _builder{*_sysfs};
    AdapterMemory _adapters;
    std::unique_ptr<AskingThreads> _asking; // from the first adapter on
    std::unique_ptr<PlugEvents> _plugs;
    std::string _reported;
};

// What there is to ask on a machine: its disks, enclosures and firmware volumes.
std::vector<AskedDevice> devicesToAsk(const LiveMachine& live);

} // namespace KDV
