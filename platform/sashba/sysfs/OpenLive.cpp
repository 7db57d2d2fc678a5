#include "sashba/sysfs/OpenLive.h"

#include "sashba/sysfs/CapturedDevice.h"
#include "sashba/sysfs/PassRequest.h"
#include "sashba/sysfs/SgDevice.h"

#include <utility>

namespace KDV {

// The device nodes of this machine are not those of a captured one's disks.
std::unique_ptr<Source> openLiveMachine(const std::string& root, const SysfsSettings& settings,
                                        std::function<void(const std::string&)> reportError,
                                        std::function<void(const std::string&)> reportInfo)
{
    const bool captured = !root.empty() && root != "/sys" && root != "/sys/";
    SysfsSurroundings surroundings;
    surroundings.reportError = std::move(reportError);
    surroundings.reportInfo = std::move(reportInfo);
    surroundings.requestPass = requestPassIfPossible;
    surroundings.opener = captured ? makeCaptureOpener(root) : makeSgOpener();
    surroundings.listenToPlugs = !captured;
    return std::make_unique<SysfsSource>(captured ? root : "/sys", settings, std::move(surroundings));
}

} // namespace KDV
