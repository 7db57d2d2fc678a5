#include "capture/Selection.h"

#include "sashba/sysfs/DevicePath.h"
#include "sashba/sysfs/SysfsTree.h"

#include <algorithm>
#include <array>
#include <set>

namespace KdvSas {
namespace {

bool startsWith(std::string_view text, std::string_view start) { return text.substr(0, start.size()) == start; }

// Each holds one folder for each thing of its class.
constexpr std::array<std::string_view, 13> classFolders{
    "block",   "enclosure", "raid_devices", "sas_device", "sas_end_device", "sas_expander", "sas_host",
    "sas_phy", "sas_port",  "scsi_device",  "scsi_disk",  "scsi_generic",   "scsi_host"};

bool isClassFolder(std::string_view name)
{
    return std::find(classFolders.begin(), classFolders.end(), name) != classFolders.end();
}

const std::set<std::string_view>& attributes()
{
    static const std::set<std::string_view> names{
        // Adapters.
        "active_mode", "aic_revision", "bios_build", "bios_version", "board_assembly", "board_name", "board_tracer",
        "can_queue", "cmd_per_lun", "driver_version", "firmware_revision", "firmware_version", "fw_version",
        "host_busy", "host_sas_address", "interface_rev", "ioc_reset_count", "isci_id", "lockup_detected", "model",
        "nr_hw_queues", "pcba_sn", "proc_name", "product_family", "prot_capabilities", "reply_queue_count",
        "sas_spec_support", "serial_number", "sg_tablesize", "state", "supported_mode", "transport_mode", "unique_id",
        "vendor", "version_bios", "version_fw", "version_mpi", "version_nvdata_default", "version_nvdata_persistent",
        "version_product",
        // SCSI devices.
        "access_state", "dh_state", "inquiry", "iodone_cnt", "ioerr_cnt", "iorequest_cnt", "iotmo_cnt", "lunid",
        "path_info", "queue_depth", "queue_type", "raid_level", "rev", "sas_address", "sas_device_handle",
        "sas_ncq_prio_enable", "scsi_level", "ssd_smart_path_enabled", "timeout", "type", "wwid",
        // Their block devices.
        "FUA", "hp_ssd_smart_path_enabled", "cache_type", "dev", "hidden", "hw_sector_size", "logical_block_size",
        "partition", "physical_block_size", "protection_type", "provisioning_mode", "removable", "ro", "rotational",
        "size", "start", "write_cache", "zoned",
        // The SAS transport.
        "component_id", "component_revision_id", "component_vendor_id", "device_type", "enable",
        "initiator_port_protocols", "invalid_dword_count", "level", "loss_of_dword_sync_count", "maximum_linkrate",
        "maximum_linkrate_hw", "minimum_linkrate", "minimum_linkrate_hw", "negotiated_linkrate", "num_phys",
        "phy_identifier", "phy_reset_problem_count", "product_id", "product_rev", "running_disparity_error_count",
        "scsi_target_id", "target_port_protocols", "vendor_id",
        // Enclosures. These and the place of a drive may cost a command to a device.
        "active", "bay_identifier", "components", "enclosure_identifier", "fault", "id", "locate", "power_status",
        "slot", "status",
        // Volumes of adapters and md arrays.
        "array_state", "chunk_size", "component_size", "degraded", "errors", "last_sync_action", "layout",
        "metadata_version", "mismatch_cnt", "offset", "raid_disks", "recovery_start", "resync", "sync_action",
        "sync_completed", "uuid"};
    return names;
}

} // namespace

const std::vector<std::string>& linkFolders()
{
    static const std::vector<std::string> folders = [] {
        std::vector<std::string> made{"block", "class/block", "bus/scsi/devices"};
        for (const std::string_view name : classFolders) {
            if (name != "block") made.push_back("class/" + std::string(name));
        }
        return made;
    }();
    return folders;
}

bool takesFolder(const std::string& parentPath, std::string_view name)
{
    const std::string parent = KDV::lastOf(parentPath);
    const std::string above = KDV::lastOf(KDV::parentOf(parentPath));
    if (isClassFolder(name) || isClassFolder(parent)) return true;
    if (above == "enclosure") return name != "power"; // its slots, by whatever names the box has for them
    if (above == "block")                             // and its partitions
        return name == "queue" || name == "md" || name == "slaves" || startsWith(name, parent);
    for (const std::string_view start : {"port-", "phy-", "expander-", "end_device-", "target", "dev-"}) {
        if (startsWith(name, start)) return true;
    }
    return KDV::parseScsiAddress(name).has_value();
}

bool takesFile(std::string_view name) { return startsWith(name, "vpd_pg") || attributes().count(name) != 0; }

bool takesLink(std::string_view name)
{
    for (const std::string_view other :
         {"bdi", "bsg", "firmware_node", "iommu", "iommu_group", "of_node", "subsystem"}) {
        if (name == other) return false;
    }
    return true;
}

bool mayAskDevice(const std::string& path)
{
    const std::string name = KDV::lastOf(path);
    if (name == "bay_identifier" || name == "enclosure_identifier") return true;
    return path.find("/enclosure/") != std::string::npos || path.find("/raid_devices/") != std::string::npos;
}

const std::vector<std::string>& functionFiles()
{
    static const std::vector<std::string> names{
        "class", "device", "label", "revision", "subsystem_device", "subsystem_vendor", "vendor"};
    return names;
}

const std::vector<std::string>& moduleFiles()
{
    static const std::vector<std::string> names{"srcversion", "version"};
    return names;
}

const std::vector<std::string>& makerFiles()
{
    static const std::vector<std::string> names{"bios_version", "product_name", "sys_vendor"};
    return names;
}

} // namespace KdvSas
