// The command that makes a capture of a machine for a bug report. Returns the exit status; throws std::exception.
#pragma once

#include <string>

namespace KdvSas {

struct CaptureOptions {
    std::string file;
    bool withSerialNumbers = false;
};

// The tree's root is that of the environment's KDV_SYSFS_ROOT, or that of the running machine.
int runCapture(const CaptureOptions& options);

} // namespace KdvSas
