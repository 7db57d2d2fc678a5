// Asks devices through their nodes with the SG_IO request of Linux. The few commands that are needed are written here,
// so that the library loads on machines without a library for them. Any thread; throws std::bad_alloc only.
#pragma once

#include "sashba/sysfs/DeviceLink.h"

#include <memory>

namespace KDV {

std::unique_ptr<DeviceOpener> makeSgOpener();

// What the status of a command means: the host's status as the kernel gives it, and sense data in either format.
ReadyReply judgeReply(std::uint8_t scsiStatus, std::uint16_t hostStatus, ByteView sense);

} // namespace KDV
