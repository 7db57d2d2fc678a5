// What the path of a device directory says by itself: "devices/pci0000:00/0000:00:01.0/0000:01:00.0/host0/port-0:0/
// expander-0:0/port-0:0:1/end_device-0:0:1/target0:0:0/0:0:0:0" names function, host, port, expander and address. Pure.
#pragma once

#include "sashba/sysfs/LiveMachine.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace KDV {

struct DevicePath {
    std::string pciFunction;               // directory of the nearest PCI function above the host
    std::vector<std::string> pciFunctions; // addresses of it and its ancestors, nearest first
    std::string host;                      // directory of hostN
    std::string hbaPort;                   // directory of the port of the host
    std::string expander;                  // directory of the nearest expander
    std::string endDevice;                 // directory of the SAS end device
    std::string device;                    // directory of the SCSI device, when the path goes down to one
};

DevicePath splitDevicePath(const std::string& path);

std::optional<ScsiAddress> parseScsiAddress(std::string_view name); // "0:0:1:0"
std::optional<std::uint32_t> parseHostName(std::string_view name);  // "host0"
bool isPciFunction(std::string_view name);                          // "0000:01:00.0"

} // namespace KDV
