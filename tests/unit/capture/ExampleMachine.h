// A machine with some of everything that a capture takes, and the secrets that it has: two adapters, a box with an
// expander, a drive with two ports, a SATA disk, a volume of the firmware, an md array, answers of the devices.
#pragma once

#include "FakeSysfs.h"
#include "LiveRecords.h"
#include "capture/CaptureMachine.h"

#include <string>
#include <vector>

namespace KdvSas {

void buildExampleMachine(KDV::FakeSysfs& sysfs);

// The secrets of that machine as texts, and its world-wide names.
const std::vector<std::string>& exampleSerials();
const std::vector<std::uint64_t>& exampleAddresses();

// A capture of a tree whose devices are asked through the pages beside it.
MachineCapture captureOf(const KDV::FakeSysfs& sysfs);

// Puts a capture into the folder of another tree.
void unpack(const std::vector<CapturedEntry>& entries, const KDV::FakeSysfs& to);

// All fields of all records, a line each, in the order of the records.
std::vector<std::string> recordLines(const KDV::LiveRecords& records);

} // namespace KdvSas
