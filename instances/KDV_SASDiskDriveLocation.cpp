#include "instances/KDV_SASDiskDriveLocation.h"

#include "instances/CimValues.h"
#include "instances/DevicePath.h"
#include "instances/DriveText.h"
#include "instances/Joined.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr char className[] = "KDV_SASDiskDriveLocation";

std::string locationName(const SasPhysicalDriveRecord& drive)
{
    return joined({className, "-", drive.hbaNumber, "-", drive.driveNumber});
}

} // namespace

KDV_SASDiskDriveLocation::KDV_SASDiskDriveLocation(const Logger& logger, const std::string& nameSpace,
                                                   const SasPhysicalDriveRecord* drive)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _drive(drive)
{
    keysReadFrom(&drive->hbaNumber, sizeof drive->hbaNumber);
    keysReadFrom(&drive->driveNumber, sizeof drive->driveNumber);
    keysReadFrom(&drive->location, sizeof drive->location);
}

KDV_SASDiskDriveLocation::~KDV_SASDiskDriveLocation() = default;

CmpiObjectPath KDV_SASDiskDriveLocation::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("Name", locationName(*_drive));
    path.addKey("PhysicalPosition", drivePositionText(parseDriveLocation(textOf(_drive->location))));
    return path;
}

CmpiInstance KDV_SASDiskDriveLocation::getInstance()
{
    _log.info("getInstance()");
    const DriveLocation location = parseDriveLocation(textOf(_drive->location));
    PropertyRows row(*this);
    row.string("Caption", _drive->location);
    row.string("Description", _drive->location);
    row.string("ElementName", _drive->location);
    row.string("Name", locationName(*_drive));
    if (location.inBay()) {
        row.string("ElementLocationTag", std::string(location.bay));
        row.uint16("ElementLocationTagDesc", LocationTag::Bay);
    } else if (!location.device.empty()) {
        row.string("ElementLocationTag", std::string(location.device));
        row.uint16("ElementLocationTagDesc", LocationTag::Device);
    }
    row.string("PhysicalPosition", drivePositionText(location));
    return row.instance();
}

} // namespace KDV
