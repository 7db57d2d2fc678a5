// Any bytes as the output of smartctl.
#include "sashba/sysfs/SmartctlOutput.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto report = KDV::parseSmartctlOutput({reinterpret_cast<const char*>(data), size});
    if (report && (report->serial.size() > size || report->exitStatus < 0 || report->exitStatus > 255)) std::abort();
    return 0;
}
