#include "sashba/sysfs/SysfsScan.h"

#include "sashba/sysfs/DevicePath.h"
#include "sashba/sysfs/DeviceReader.h"
#include "sashba/sysfs/DeviceText.h"
#include "sashba/sysfs/HbaReader.h"
#include "sashba/sysfs/MdReader.h"

#include <algorithm>
#include <set>
#include <tuple>

namespace KDV {
namespace {

constexpr std::size_t readAgainAtOnce = 64;

// Directories of all SCSI devices, whichever of the two lists the tree has.
std::set<std::string> devicePaths(const SysfsTree& tree)
{
    std::set<std::string> paths;
    for (const char* folder : {"class/scsi_device", "bus/scsi/devices"}) {
        for (const std::string& name : tree.names(folder)) {
            if (!parseScsiAddress(name)) continue;
            const std::string device = splitDevicePath(tree.target(std::string(folder) + "/" + name)).device;
            if (!device.empty() && lastOf(device) == name) paths.insert(device);
        }
        if (!paths.empty()) break;
    }
    return paths;
}

std::set<std::uint32_t> hostsOf(const LiveMachine& machine)
{
    std::set<std::uint32_t> hosts;
    for (const LiveHba& hba : machine.hbas)
        hosts.insert(hba.host);
    return hosts;
}

} // namespace

LiveMachine SysfsScan::scan()
{
    ++_scans;
    LiveMachine machine;
    machine.hbas = readHbas(_tree);
    if (machine.hbas.empty()) {
        _known.clear();
        return machine;
    }
    readDevices(machine);
    readExpanders(machine);
    readEnclosures(machine);
    machine.arrays = readMdArrays(_tree);
    return machine;
}

void SysfsScan::readDevices(LiveMachine& machine)
{
    const std::set<std::uint32_t> hosts = hostsOf(machine);
    std::vector<std::string> paths;
    for (const std::string& path : devicePaths(_tree)) {
        if (hosts.count(parseScsiAddress(lastOf(path))->host) != 0) paths.push_back(path);
    }
    auto turn = std::upper_bound(paths.begin(), paths.end(), _again);
    std::set<std::string> again;
    for (std::size_t i = 0; i < std::min(readAgainAtOnce, paths.size()); ++i) {
        if (turn == paths.end()) turn = paths.begin();
        again.insert(_again = *turn++);
    }
    for (const std::string& path : paths) {
        if (const ScsiDevice* device = read(path, again.count(path) != 0)) machine.devices.push_back(*device);
    }
    for (auto known = _known.begin(); known != _known.end();)
        known = known->second.scan == _scans ? std::next(known) : _known.erase(known);
    std::sort(machine.devices.begin(), machine.devices.end(), [](const ScsiDevice& left, const ScsiDevice& right) {
        const auto key = [](const ScsiDevice& device) {
            return std::tie(device.address.host, device.address.channel, device.address.target, device.address.lun);
        };
        return key(left) < key(right);
    });
}

// A device that came anew at the path of another one is another device, by the identity of its directory.
const ScsiDevice* SysfsScan::read(const std::string& path, bool again)
{
    const auto found = _known.find(path);
    if (found != _known.end() && !again && _tree.identity(path) == found->second.device.identity) {
        found->second.device.state = _tree.text(path + "/state");
        found->second.scan = _scans;
        return &found->second.device;
    }
    std::optional<ScsiDevice> device = readScsiDevice(_tree, path);
    if (!device) return nullptr;
    Known& known = _known[path];
    known = {std::move(*device), _scans};
    return &known.device;
}

void SysfsScan::readExpanders(LiveMachine& machine) const
{
    const std::set<std::uint32_t> hosts = hostsOf(machine);
    for (const std::string& name : _tree.names("class/sas_expander")) {
        const std::string attributes = _tree.target("class/sas_expander/" + name);
        const DevicePath split = splitDevicePath(attributes);
        const std::optional<std::uint32_t> host = parseHostName(lastOf(split.host));
        if (split.expander.empty() || !host || hosts.count(*host) == 0) continue;
        LiveExpander expander;
        expander.path = parentOf(parentOf(attributes));
        expander.host = *host;
        expander.hbaPort = split.hbaPort;
        expander.vendor = _tree.text(attributes + "/vendor_id");
        expander.model = _tree.text(attributes + "/product_id");
        expander.revision = _tree.text(attributes + "/product_rev");
        expander.level = _tree.number(attributes + "/level").value_or(0);
        expander.sasAddress = _tree.number(expander.path + "/sas_device/" + name + "/sas_address").value_or(0);
        machine.expanders.push_back(std::move(expander));
    }
}

void SysfsScan::readEnclosures(LiveMachine& machine) const
{
    for (const std::string& name : _tree.names("class/enclosure")) {
        const std::string path = _tree.target("class/enclosure/" + name);
        const DevicePath split = splitDevicePath(path);
        if (path.empty() || split.device.empty()) continue;
        LiveEnclosure enclosure;
        enclosure.path = path;
        enclosure.device = split.device;
        enclosure.id = _tree.number(path + "/id").value_or(0);
        enclosure.components = _tree.number(path + "/components");
        machine.enclosures.push_back(std::move(enclosure));
    }
}

} // namespace KDV
