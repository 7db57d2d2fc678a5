// Takes everything that belongs into a capture of a machine: its part of sysfs and what its devices answer. Each device
// and each attribute has its time, after which the capture goes on without it and says so. One thread; throws
// std::bad_alloc, std::system_error.
#pragma once

#include "capture/Captured.h"
#include "capture/PatientReader.h"
#include "sashba/sysfs/AskingThreads.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace KdvSas {

struct CaptureSettings {
    std::string root;                          // of the tree
    std::shared_ptr<KDV::DeviceOpener> opener; // how its devices are asked
    KDV::AskingSettings asking;
    std::chrono::milliseconds patience = std::chrono::seconds(5); // for an attribute, and for looking at the whole tree
    PatientReader::Read read;                                     // empty: from the tree's files
    std::function<void(const std::string&)> tell = [](const std::string&) {}; // any thread, and late ones afterwards
};

struct MachineCapture {
    Captured captured;
    std::size_t adapters = 0;
    std::size_t devices = 0; // asked
};

MachineCapture captureMachine(const CaptureSettings& settings);

} // namespace KdvSas
