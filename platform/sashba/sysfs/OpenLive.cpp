#include "sashba/sysfs/OpenLive.h"

#include "sashba/sysfs/CapturedDevice.h"
#include "sashba/sysfs/PassRequest.h"
#include "sashba/sysfs/SgDevice.h"

#include <sys/stat.h>
#include <utility>

namespace KDV {
namespace {

bool isFolder(const std::string& path)
{
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// Captures are unpacked as a folder with "sys" in it; that folder may be given as well.
std::string rootOf(const std::string& given)
{
    const bool isAbove =
        !isFolder(given + "/class") && !isFolder(given + "/devices") && isFolder(given + "/sys/devices");
    return isAbove ? given + "/sys" : given;
}

} // namespace

LivePlace livePlace(const std::string& given)
{
    const bool captured = !given.empty() && given != "/sys" && given != "/sys/";
    return {captured ? rootOf(given) : "/sys", captured};
}

// The device nodes of this machine are not those of a captured one's disks.
std::unique_ptr<DeviceOpener> openerOf(const LivePlace& place)
{
    return place.captured ? makeCaptureOpener(place.root) : makeSgOpener();
}

std::unique_ptr<Source> openLiveMachine(const std::string& root, const SysfsSettings& settings,
                                        std::function<void(const std::string&)> reportError,
                                        std::function<void(const std::string&)> reportInfo)
{
    const LivePlace place = livePlace(root);
    SysfsSurroundings surroundings;
    surroundings.reportError = std::move(reportError);
    surroundings.reportInfo = std::move(reportInfo);
    surroundings.requestPass = requestPassIfPossible;
    surroundings.opener = openerOf(place);
    surroundings.listenToPlugs = !place.captured;
    if (!place.captured) surroundings.answersChanged = requestPassIfPossible; // a capture has no newcomers
    return std::make_unique<SysfsSource>(place.root, settings, std::move(surroundings));
}

} // namespace KDV
