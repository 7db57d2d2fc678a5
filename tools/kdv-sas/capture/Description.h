// The text file of a capture that says what made it, on what, and what could not be read. Pure.
#pragma once

#include "capture/CaptureMachine.h"

#include <string>

namespace KdvSas {

struct CaptureCircumstances {
    std::string program;        // with its version
    std::string kernel;         // "Linux 6.1.0 x86_64"
    bool ofCapture = false;     // a captured tree was read, not a running machine
    bool privileged = false;    // by root
    bool serialNumbers = false; // left as they are
};

std::string describeCapture(const MachineCapture& made, const CaptureCircumstances& circumstances);

} // namespace KdvSas
