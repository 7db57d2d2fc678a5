// Which computer system the storage belongs to: class and namespace of the instance that the server, not this library,
// publishes. From computer-system.conf in the configuration directory, read once for the process.
#pragma once

#include "common/Export.h"

#include <string>
#include <string_view>
#include <vector>

namespace KDV {

struct ComputerSystemSettings {
    std::string className = "KDV_ComputerSystem";
    std::string nameSpace = "root/vnr";
};

// Lines "class = ..." and "namespace = ..."; '#' starts a comment line. Each mistake adds one text with its line number
// and leaves the setting as it was.
KDV_COMMON_API void parseComputerSystemSettings(std::string_view text, ComputerSystemSettings& settings,
                                                std::vector<std::string>& mistakes);

// Those of this process. Mistakes are logged as errors, once. Any thread.
const ComputerSystemSettings& computerSystemSettings();

} // namespace KDV
