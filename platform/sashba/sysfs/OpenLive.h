// The source over a machine: the running one, or a captured tree with its devices' pages beside it. Throws
// std::bad_alloc only.
#pragma once

#include "sashba/sysfs/SysfsSource.h"

#include <functional>
#include <memory>
#include <string>

namespace KDV {

// An empty root is that of the running machine, /sys. Reports may come from any thread.
std::unique_ptr<Source> openLiveMachine(const std::string& root, const SysfsSettings& settings,
                                        std::function<void(const std::string&)> reportError,
                                        std::function<void(const std::string&)> reportInfo);

} // namespace KDV
