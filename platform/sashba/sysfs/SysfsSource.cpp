#include "sashba/sysfs/SysfsSource.h"

#include "sashba/RecordTree.h"

#include <algorithm>
#include <utility>

namespace KDV {

std::vector<AskedDevice> devicesToAsk(const LiveMachine& live)
{
    std::vector<AskedDevice> devices;
    for (const ScsiDevice& device : live.devices) {
        const auto hba = std::find_if(live.hbas.begin(), live.hbas.end(),
                                      [&device](const LiveHba& h) { return h.host == device.address.host; });
        AskedDevice asked;
        if (hba == live.hbas.end()) continue;
        if (device.isDisk())
            asked.kind = isFirmwareVolume(device, *hba) ? AskedKind::FirmwareVolume : AskedKind::Disk;
        else if (device.type == ScsiDevice::enclosureServices)
            asked.kind = AskedKind::Enclosure;
        else
            continue;
        asked.key = askingKey(device);
        asked.path = device.path;
        if (!device.genericName.empty())
            asked.node = "/dev/" + device.genericName;
        else if (!device.blockName.empty())
            asked.node = "/dev/" + device.blockName;
        asked.transport = device.transport;
        asked.spins = device.rotation != std::uint16_t{1};
        for (const LiveEnclosure& enclosure : live.enclosures) {
            if (enclosure.device == device.path) asked.enclosure = enclosure.path;
        }
        devices.push_back(std::move(asked));
    }
    return devices;
}

SysfsSource::SysfsSource(const std::string& root, const SysfsSettings& settings, SysfsSurroundings surroundings)
    : _sysfs(std::make_shared<const SysfsTree>(root)), _settings(settings), _surroundings(std::move(surroundings))
{
}

SysfsSource::~SysfsSource() = default;

void SysfsSource::load(RecordTree& tree)
{
    const LiveMachine& live = _scan.scan();
    ask(live);
    if (_asking) _asking->waitForAll(_settings.firstAnswers);
    take(tree, live);
    if (_asking) _asking->tellOfNews(_surroundings.answersChanged);
}

void SysfsSource::refresh(RecordTree& tree)
{
    const LiveMachine& live = _scan.scan();
    ask(live);
    take(tree, live);
}

// Threads begin with the first adapter: a machine without one stays as it was.
void SysfsSource::ask(const LiveMachine& live)
{
    if (live.hbas.empty() && !_asking) return;
    if (_surroundings.listenToPlugs && !_plugs) _plugs = std::make_unique<PlugEvents>(_surroundings.requestPass);
    if (!_surroundings.opener) return;
    if (!_asking)
        _asking = std::make_unique<AskingThreads>(_sysfs, _surroundings.opener, _settings.asking,
                                                  _surroundings.reportError, _surroundings.reportInfo);
    _asking->setDevices(devicesToAsk(live));
}

void SysfsSource::take(RecordTree& tree, const LiveMachine& live)
{
    Machine machine = _builder.build(live, _asking ? _asking->answers() : DeviceAnswers());
    reportHbas(machine);
    _adapters.complete(machine);
    tree.take(machine);
    if (_builder.wantsAnotherPass()) _surroundings.requestPass();
}

// One line a change, not one a refresh.
void SysfsSource::reportHbas(const Machine& machine)
{
    std::string text = "no SAS adapter found below " + _sysfs->root() +
                       ", so there is no HBA; check that its driver is loaded (ls " + _sysfs->root() +
                       "/class/scsi_host), or try a scenario: set KDV_SAS_SCENARIO to the path of a scenario file";
    if (!machine.empty()) {
        text = std::to_string(machine.size()) + " SAS adapter(s) below " + _sysfs->root() + ":";
        for (const MachineHba& hba : machine)
            text += " [" + std::string(textOf(hba.hba.image.name)) + "]";
    }
    if (text == _reported) return;
    _surroundings.reportInfo(text);
    _reported = text;
}

} // namespace KDV
