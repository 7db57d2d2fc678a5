#include "sashba/sysfs/HbaReader.h"

#include "sashba/sysfs/DevicePath.h"
#include "sashba/sysfs/DeviceText.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>
#include <tuple>
#include <utility>

namespace KDV {
namespace {

// A host of another driver counts when it has the SAS transport.
constexpr std::string_view sasDrivers[] = {"mpt3sas", "mpt2sas", "mptsas", "smartpqi", "hpsa",   "megaraid_sas",
                                           "aic94xx", "isci",    "mvsas",  "pm80xx",   "pm8001", "mpi3mr"};

bool isSasDriver(const std::string& name)
{
    return name.compare(0, 8, "hisi_sas") == 0 || // followed by the generation
           std::find(std::begin(sasDrivers), std::end(sasDrivers), name) != std::end(sasDrivers);
}

// proc_name, or where a driver has not set it and the kernel prints "(null)", the driver of the device.
std::string driverOf(const SysfsTree& tree, const std::string& attributes, const std::string& host)
{
    std::string name = tree.text(attributes + "proc_name");
    if (!name.empty() && name.front() != '(' && name.front() != '<') return name;
    return lastOf(tree.target(parentOf(host) + "/driver"));
}

std::string firstText(const SysfsTree& tree, const std::string& folder, std::initializer_list<const char*> names)
{
    for (const char* name : names) {
        std::string text = tree.text(folder + name);
        if (!text.empty()) return text;
    }
    return {};
}

// Boards whose serial number was never written have blanks, zeros or erased memory there.
std::string serialOf(const SysfsTree& tree, const std::string& folder)
{
    for (const char* name : {"board_tracer", "serial_number", "pcba_sn"}) {
        std::string text = tree.text(folder + name);
        const bool says = text.find_first_not_of("0 ") != std::string::npos;
        if (says && std::all_of(text.begin(), text.end(), [](char letter) { return letter >= ' ' && letter <= '~'; }))
            return text;
    }
    return {};
}

// The number of the slot that holds the function or a bridge above it. The kernel gives a slot's address without the
// function; slots of which the firmware only counts have the name "0", which says nothing.
std::optional<std::uint8_t> slotOf(const SysfsTree& tree, const std::vector<std::string>& functions)
{
    std::vector<std::pair<std::string, std::string>> slots; // address, name
    for (const std::string& name : tree.names("bus/pci/slots"))
        slots.emplace_back(tree.text("bus/pci/slots/" + name + "/address"), name);
    for (const std::string& function : functions) {
        for (const auto& [address, name] : slots) {
            if (address.empty() || address != function.substr(0, function.size() - 2)) continue;
            const std::optional<std::uint64_t> number = wholeNumber(name);
            if (number && *number >= 1 && *number <= 254) return static_cast<std::uint8_t>(*number);
        }
    }
    return std::nullopt;
}

// The adapter's own address. Phys tell it only where they do not show the attached disk's address instead, as those of
// the oldest driver do.
std::uint64_t addressOf(const SysfsTree& tree, const LiveHba& hba, const std::string& attributes)
{
    const std::uint64_t own = tree.number(attributes + "host_sas_address").value_or(0);
    if (own != 0) return own;
    if (hba.driver == "mptsas") return 0;
    std::uint64_t lowest = 0;
    for (const std::string& name : tree.names(hba.path)) {
        if (name.compare(0, 4, "phy-") != 0) continue;
        const std::uint64_t address =
            tree.number(hba.path + "/" + name + "/sas_phy/" + name + "/sas_address").value_or(0);
        if (address != 0 && (lowest == 0 || address < lowest)) lowest = address;
    }
    return lowest;
}

std::optional<LiveHba> readHba(const SysfsTree& tree, const std::string& list, const std::string& name)
{
    const std::optional<std::uint32_t> host = parseHostName(name);
    const std::string found = host ? tree.target(list + "/" + name) : std::string();
    if (found.empty()) return std::nullopt;
    const DevicePath split = splitDevicePath(found);
    if (split.host.empty() || lastOf(split.host) != name) return std::nullopt;
    const std::string attributes = split.host + "/scsi_host/" + name + "/";
    LiveHba hba;
    hba.host = *host;
    hba.path = split.host;
    hba.driver = driverOf(tree, attributes, split.host);
    if (!isSasDriver(hba.driver) && tree.target("class/sas_host/" + name).empty() &&
        tree.identity(split.host + "/sas_host") == 0)
        return std::nullopt;
    hba.pciAddress = lastOf(split.pciFunction);
    hba.model = firstText(tree, attributes, {"board_name", "model"});
    hba.serial = serialOf(tree, attributes);
    hba.firmware = firstText(tree, attributes, {"version_fw", "firmware_version", "fw_version", "firmware_revision"});
    hba.state = tree.text(attributes + "state");
    hba.slot = slotOf(tree, split.pciFunctions);
    hba.sasAddress = addressOf(tree, hba, attributes);
    return hba;
}

} // namespace

std::vector<LiveHba> readHbas(const SysfsTree& tree)
{
    std::vector<LiveHba> hbas;
    for (const char* list : {"class/scsi_host", "class/sas_host", "bus/scsi/devices"}) {
        const std::vector<std::string> names = tree.names(list); // a captured tree may lack some of them
        for (const std::string& name : names) {
            if (std::optional<LiveHba> hba = readHba(tree, list, name)) hbas.push_back(std::move(*hba));
        }
        if (!names.empty()) break;
    }
    std::sort(hbas.begin(), hbas.end(), [](const LiveHba& left, const LiveHba& right) {
        return std::tie(left.pciAddress, left.host) < std::tie(right.pciAddress, right.host);
    });
    return hbas;
}

} // namespace KDV
