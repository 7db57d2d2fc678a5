// Asks captured pages instead of devices. Beside a captured tree ".../sys" lie ".../pages/0:0:1:0/" and so on, one
// folder a device: "ready" holds one of the words ready, asleep, "not ready", "no connect", denied, hung, and a second
// line "failure predicted" where the answer said so; "log_2f" and "ses_02" hold pages as the device gave them,
// "smartctl.json" the tool's output. Any thread; throws std::bad_alloc only.
#pragma once

#include "sashba/sysfs/DeviceLink.h"

#include <memory>
#include <string>

namespace KDV {

std::unique_ptr<DeviceOpener> makeCaptureOpener(const std::string& sysfsRoot);

} // namespace KDV
