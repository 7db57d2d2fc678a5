// The source over a machine: the running one, or a captured tree with its devices' pages beside it. Throws
// std::bad_alloc only.
#pragma once

#include "sashba/sysfs/SysfsSource.h"

#include <functional>
#include <memory>
#include <string>

namespace KDV {

// Where a machine is read: the tree, and whether it is one that was captured.
struct LivePlace {
    std::string root;
    bool captured = false;
};

// Of what a user gives: nothing for the running machine, a tree, or the folder above it.
LivePlace livePlace(const std::string& given);

std::unique_ptr<DeviceOpener> openerOf(const LivePlace& place);

// An empty root is that of the running machine, /sys. Reports may come from any thread.
std::unique_ptr<Source> openLiveMachine(const std::string& root, const SysfsSettings& settings,
                                        std::function<void(const std::string&)> reportError,
                                        std::function<void(const std::string&)> reportInfo);

} // namespace KDV
