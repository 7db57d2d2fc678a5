#include "sashba/sysfs/DriveStatus.h"

#include <algorithm>

namespace KDV {
namespace {

bool isOffline(const std::string& state) { return state == "offline" || state == "transport-offline"; }

bool boxSaysFailed(const DriveFacts& facts)
{
    constexpr std::uint64_t sensed = 4; // bit of "fault": the box found it; 2 would be somebody's request for the light
    if (facts.slot && facts.slot->failed) return true;
    if (!facts.slotState) return false;
    return facts.slotState->status == "critical" || facts.slotState->status == "unrecoverable" ||
           (facts.slotState->fault.value_or(0) & sensed) != 0;
}

bool anyAnswer(const DriveFacts& facts, bool (*matches)(const DeviceAnswer&))
{
    return std::any_of(facts.paths.begin(), facts.paths.end(), [matches](const DrivePathFacts& path) {
        return path.answer && !path.answer->hung && matches(*path.answer);
    });
}

bool isUnreachable(const DrivePathFacts& path)
{
    const bool noConnect = path.answer && !path.answer->hung && path.answer->readiness == Readiness::NoConnect;
    return noConnect || isOffline(path.device->state);
}

bool usable(const DrivePathFacts& path) { return path.device->state == "running" && path.answer && !path.answer->hung; }

} // namespace

std::uint8_t driveStatus(const DriveFacts& facts)
{
    if (facts.paths.empty()) return DriveStatus::unknown;
    if (std::all_of(facts.paths.begin(), facts.paths.end(),
                    [](const DrivePathFacts& path) { return isOffline(path.device->state); }))
        return DriveStatus::offline;
    const bool answers = std::any_of(facts.paths.begin(), facts.paths.end(), [](const DrivePathFacts& path) {
        return usable(path) &&
               (path.answer->readiness == Readiness::Ready || path.answer->readiness == Readiness::Asleep);
    });
    if (std::all_of(facts.paths.begin(), facts.paths.end(), isUnreachable)) return DriveStatus::noConnect;
    if (!answers && anyAnswer(facts, [](const DeviceAnswer& a) { return a.readiness == Readiness::NotReady; }))
        return DriveStatus::notReady;
    if (boxSaysFailed(facts)) return DriveStatus::failedByBox;
    if ((facts.slot && facts.slot->failurePredicted) ||
        anyAnswer(facts, [](const DeviceAnswer& a) { return a.failurePredicted.value_or(false); }))
        return DriveStatus::failurePredicted;
    if (anyAnswer(facts, [](const DeviceAnswer& a) { return a.enduranceUsed.value_or(0) >= 100; }))
        return DriveStatus::wornOut;
    if (anyAnswer(facts, [](const DeviceAnswer& a) { return a.warned; })) return DriveStatus::degraded;
    return answers ? DriveStatus::ok : DriveStatus::unknown;
}

} // namespace KDV
