#include "instances/KDV_SASStorageRedundancySet.h"

#include "instances/CodeMap.h"
#include "instances/DevicePath.h"
#include "instances/Joined.h"
#include "instances/Rows.h"

#include <optional>

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr char className[] = "KDV_SASStorageRedundancySet";

// Fully Redundant and Redundancy Lost; nothing is said of any other state, rebuilding among them.
constexpr CodeMap<std::optional<std::uint16_t>, 2> redundancyStatus{{{2, 2}, {3, 4}}, std::nullopt};

std::string instanceId(const SasLogicalDriveRecord& logicalDrive)
{
    return joined({className, "-", logicalDrive.hbaNumber, "-", logicalDrive.logicalDriveNumber});
}

} // namespace

KDV_SASStorageRedundancySet::KDV_SASStorageRedundancySet(const Logger& logger, const std::string& nameSpace,
                                                         const SasLogicalDriveRecord* logicalDrive)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _logicalDrive(logicalDrive)
{
    keysReadFrom(&logicalDrive->hbaNumber, sizeof logicalDrive->hbaNumber);
    keysReadFrom(&logicalDrive->logicalDriveNumber, sizeof logicalDrive->logicalDriveNumber);
}

KDV_SASStorageRedundancySet::~KDV_SASStorageRedundancySet() = default;

CmpiObjectPath KDV_SASStorageRedundancySet::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("InstanceID", instanceId(*_logicalDrive));
    return path;
}

CmpiInstance KDV_SASStorageRedundancySet::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(*this);
    row.string("ElementName", "Storage Redundancy Set");
    row.string("InstanceID", instanceId(*_logicalDrive));
    row.uint16("LoadBalanceAlgorithm", 2); // No Load Balancing
    row.uint32("MaxNumberSupported", 0);
    row.uint32("MinNumberSupported", 0);
    if (const auto status = redundancyStatus[_logicalDrive->redundancyState]) row.uint16("RedundancyStatus", *status);
    row.uint16Array("TypeOfSet", {5}); // Limited Sparing
    return row.instance();
}

} // namespace KDV
