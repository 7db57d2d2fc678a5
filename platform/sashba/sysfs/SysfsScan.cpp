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
    for (const std::string folder : {"class/scsi_device", "bus/scsi/devices"}) {
        bool any = false;
        for (const TreeEntry& entry : _tree.entries(folder)) {
            const std::optional<ScsiAddress> address = parseScsiAddress(entry.name);
            any = any || address;
            if (address && hosts.count(address->host) != 0)
                listed.push_back({*address, folder + "/" + entry.name, entry.identity});
        }
        if (any) break;
    }
    std::sort(listed.begin(), listed.end(),
              [](const Listed& left, const Listed& right) { return orderOf(left.address) < orderOf(right.address); });
    return listed;
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
    if (path.empty() || lastOf(path) != lastOf(listed.link)) return std::nullopt;
    return readScsiDevice(_tree, path);
}

void SysfsScan::readExpanders()
{
    _machine.expanders.clear();
    const std::set<std::uint32_t> hosts = hostsOf(_machine);
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
        _machine.expanders.push_back(std::move(expander));
    }
}

void SysfsScan::readEnclosures()
{
    _machine.enclosures.clear();
    for (const std::string& name : _tree.names("class/enclosure")) {
        const std::string path = _tree.target("class/enclosure/" + name);
        const DevicePath split = splitDevicePath(path);
        if (path.empty() || split.device.empty()) continue;
        LiveEnclosure enclosure;
        enclosure.path = path;
        enclosure.device = split.device;
        enclosure.id = _tree.number(path + "/id").value_or(0);
        enclosure.components = _tree.number(path + "/components");
        _machine.enclosures.push_back(std::move(enclosure));
    }
}

} // namespace KDV
