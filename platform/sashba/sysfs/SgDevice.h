// Asks devices through their nodes with the SCSI pass-through library of the sg3 utilities, and reads their sense data
// with it. Any thread; throws std::bad_alloc only.
#pragma once

#include "sashba/sysfs/DeviceLink.h"

#include <memory>

namespace KDV {

std::unique_ptr<DeviceOpener> makeSgOpener();

// What the status of a command means: the host's status as the kernel gives it, and sense data in either format.
ReadyReply judgeReply(std::uint8_t scsiStatus, std::uint16_t hostStatus, ByteView sense);

} // namespace KDV
