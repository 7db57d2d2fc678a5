// Which parts of sysfs belong into a capture: what the data library reads and what explains it, by the names that the
// kernel gives. Everything else stays out, so that a capture is small and tells nothing of the rest of the machine.
// Pure.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace KdvSas {

// Folders whose links lead to the devices of a capture.
const std::vector<std::string>& linkFolders();

// Below a SCSI host or a block device: whether to descend into a folder, take a file, take a link.
bool takesFolder(const std::string& parentPath, std::string_view name);
bool takesFile(std::string_view name);
bool takesLink(std::string_view name);

// For these the kernel may send a command to a device before it answers.
bool mayAskDevice(const std::string& path);

// Of the PCI functions above a host, of the driver's module, and of the machine as its maker calls it.
const std::vector<std::string>& functionFiles();
const std::vector<std::string>& moduleFiles();
const std::vector<std::string>& makerFiles();

} // namespace KdvSas
