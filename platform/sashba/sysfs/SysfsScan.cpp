#include "sashba/sysfs/SysfsScan.h"

#include "sashba/sysfs/DevicePath.h"
#include "sashba/sysfs/DeviceReader.h"
#include "sashba/sysfs/DeviceText.h"
#include "sashba/sysfs/HbaReader.h"
#include "sashba/sysfs/MdReader.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

namespace KDV {
namespace {

constexpr std::size_t readAgainAtOnce = 64; // as many as a small machine has

std::set<std::uint32_t> hostsOf(const LiveMachine& machine)
{
    std::set<std::uint32_t> hosts;
    for (const LiveHba& hba : machine.hbas)
        hosts.insert(hba.host);
    return hosts;
}

auto orderOf(const ScsiAddress& address)
{
    return std::tie(address.host, address.channel, address.target, address.lun);
}

} // namespace

const LiveMachine& SysfsScan::scan()
{
    _machine.hbas = readHbas(_tree);
    if (_machine.hbas.empty()) {
        _machine = LiveMachine();
        _listed.clear();
        return _machine;
    }
    readDevices();
    readExpanders();
    readEnclosures();
    _machine.arrays = readMdArrays(_tree);
    return _machine;
}

// The SCSI devices of the adapters, whichever of the two lists the tree has.
std::vector<SysfsScan::Listed> SysfsScan::listDevices() const
{
    const std::set<std::uint32_t> hosts = hostsOf(_machine);
    std::vector<Listed> listed;
    bool any = false;
    for (const std::string folder : {"class/scsi_device", "bus/scsi/devices"}) {
        if (any) break;
        for (const TreeEntry& entry : _tree.entries(folder)) {
            const std::optional<ScsiAddress> address = parseScsiAddress(entry.name);
            any = any || address;
            if (address && hosts.count(address->host) != 0)
                listed.push_back({*address, folder + "/" + entry.name, entry.identity});
        }
    }
    if (!any) listByParts(hosts, listed);
    std::stable_sort(listed.begin(), listed.end(), [](const Listed& left, const Listed& right) {
        return orderOf(left.address) < orderOf(right.address);
    });
    listed.erase(std::unique(listed.begin(), listed.end(),
                             [](const Listed& left, const Listed& right) {
                                 return orderOf(left.address) == orderOf(right.address);
                             }),
                 listed.end());
    return listed;
}

// A captured tree may have neither list, but lists of what belongs to devices.
void SysfsScan::listByParts(const std::set<std::uint32_t>& hosts, std::vector<Listed>& listed) const
{
    for (const std::string folder : {"class/scsi_generic", "block", "class/block", "class/enclosure"}) {
        for (const TreeEntry& entry : _tree.entries(folder)) {
            const std::string link = folder + "/" + entry.name;
            const std::optional<ScsiAddress> address =
                parseScsiAddress(lastOf(splitDevicePath(_tree.target(link)).device));
            if (address && hosts.count(address->host) != 0) listed.push_back({*address, link, entry.identity});
        }
    }
}

// Both lists are in the order of addresses: those that were there go along with those that are there now.
void SysfsScan::readDevices()
{
    std::vector<Listed> listed = listDevices();
    std::vector<Listed> keptListed;
    std::vector<ScsiDevice> kept;
    keptListed.reserve(listed.size());
    kept.reserve(listed.size());
    std::size_t known = 0;
    const std::size_t again = _again < listed.size() ? _again : 0;
    for (std::size_t i = 0; i < listed.size(); ++i) {
        while (known < _listed.size() && orderOf(_listed[known].address) < orderOf(listed[i].address))
            ++known;
        const bool itsTurn = (i >= again ? i - again : i + listed.size() - again) < readAgainAtOnce;
        if (!itsTurn && stillThere(known, listed[i])) {
            kept.push_back(std::move(_machine.devices[known]));
            kept.back().state = _tree.text(kept.back().path + "/state");
        } else if (std::optional<ScsiDevice> device = readDevice(listed[i])) {
            kept.push_back(std::move(*device));
        } else {
            continue;
        }
        keptListed.push_back(std::move(listed[i]));
    }
    _again = again + readAgainAtOnce;
    _machine.devices = std::move(kept);
    _listed = std::move(keptListed);
}

// The kernel makes the link anew with every device, so another device has another link.
bool SysfsScan::stillThere(std::size_t known, const Listed& listed) const
{
    return known < _listed.size() && _listed[known].link == listed.link && _listed[known].identity == listed.identity;
}

std::optional<ScsiDevice> SysfsScan::readDevice(const Listed& listed) const
{
    const std::string path = splitDevicePath(_tree.target(listed.link)).device;
    const std::optional<ScsiAddress> address = parseScsiAddress(lastOf(path));
    if (!address || orderOf(*address) != orderOf(listed.address)) return std::nullopt;
    return readScsiDevice(_tree, path);
}

// Those of the class, and those that lead to devices, should the tree lack the class.
void SysfsScan::readExpanders()
{
    _machine.expanders.clear();
    const std::set<std::uint32_t> hosts = hostsOf(_machine);
    std::set<std::string> seen;
    const auto add = [&](const std::string& path) {
        if (path.empty() || !seen.insert(path).second) return; // hundreds of disks have one and the same
        const DevicePath split = splitDevicePath(path);
        const std::optional<std::uint32_t> host = parseHostName(lastOf(split.host));
        if (split.expander != path || !host || hosts.count(*host) == 0) return;
        _machine.expanders.push_back(readExpander(path));
        _machine.expanders.back().host = *host;
        _machine.expanders.back().hbaPort = split.hbaPort;
    };
    for (const std::string& name : _tree.names("class/sas_expander"))
        add(parentOf(parentOf(_tree.target("class/sas_expander/" + name))));
    for (const ScsiDevice& device : _machine.devices)
        add(device.expander);
}

LiveExpander SysfsScan::readExpander(const std::string& path) const
{
    const std::string name = lastOf(path);
    const std::string attributes = path + "/sas_expander/" + name + "/";
    LiveExpander expander;
    expander.path = path;
    expander.vendor = _tree.text(attributes + "vendor_id");
    expander.model = _tree.text(attributes + "product_id");
    expander.revision = _tree.text(attributes + "product_rev");
    expander.level = _tree.number(attributes + "level").value_or(0);
    expander.sasAddress = _tree.number(path + "/sas_device/" + name + "/sas_address").value_or(0);
    return expander;
}

void SysfsScan::readEnclosures()
{
    _machine.enclosures.clear();
    const auto add = [this](const std::string& path, const std::string& device) {
        if (path.empty() || device.empty()) return;
        LiveEnclosure enclosure;
        enclosure.path = path;
        enclosure.device = device;
        enclosure.id = _tree.number(path + "/id").value_or(0);
        enclosure.components = _tree.number(path + "/components");
        _machine.enclosures.push_back(std::move(enclosure));
    };
    const std::vector<std::string> names = _tree.names("class/enclosure");
    for (const std::string& name : names) {
        const std::string path = _tree.target("class/enclosure/" + name);
        add(path, splitDevicePath(path).device);
    }
    if (!names.empty()) return;
    for (const ScsiDevice& device : _machine.devices) { // the tree may lack the class
        if (device.type != ScsiDevice::enclosureServices) continue;
        for (const std::string& name : _tree.names(device.path + "/enclosure"))
            add(_tree.target(device.path + "/enclosure/" + name), device.path);
    }
}

} // namespace KDV
