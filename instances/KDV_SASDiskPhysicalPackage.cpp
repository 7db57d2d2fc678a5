#include "instances/KDV_SASDiskPhysicalPackage.h"

#include "instances/CimValues.h"
#include "instances/DevicePath.h"
#include "instances/DriveText.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr char className[] = "KDV_SASDiskPhysicalPackage";

constexpr std::uint8_t hotSwappableCode = 2;

} // namespace

KDV_SASDiskPhysicalPackage::KDV_SASDiskPhysicalPackage(const Logger& logger, const std::string& nameSpace,
                                                       const SasHbaRecord* hba, const SasPhysicalDriveRecord* drive)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _drive(drive),
      _hbaNumber(hba->hbaNumber), _vendorText(splitVendorModel(textOf(drive->inquiry)).vendor),
      _modelText(splitVendorModel(textOf(drive->inquiry)).model)
{
    keysReadFrom(&drive->serialNumber, sizeof drive->serialNumber);
}

KDV_SASDiskPhysicalPackage::~KDV_SASDiskPhysicalPackage() = default;

CmpiObjectPath KDV_SASDiskPhysicalPackage::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("CreationClassName", className);
    path.addKey("Tag", FieldText(_drive->serialNumber).c_str());
    return path;
}

CmpiInstance KDV_SASDiskPhysicalPackage::getInstance()
{
    _log.info("getInstance()");
    const bool hotSwappable = _drive->hotPlug == hotSwappableCode;
    PropertyRows row(*this);
    row.string("ElementName", _drive->location);
    row.string("Description", "SAS HBA Disk Drive Physical Package");
    row.string("Name", _drive->location);
    row.string("CreationClassName", className);
    row.string("Caption", _drive->location);
    row.string("Manufacturer", _vendorText); // also when empty, as the model
    row.string("Model", _modelText);
    row.string("PartNumber", "N/A");
    row.string("SerialNumber", _drive->serialNumber);
    row.string("Tag", _drive->serialNumber);
    row.string("Version", "N/A");
    row.boolean("HotSwappable", hotSwappable);
    row.uint16("RemovalConditions",
               hotSwappable ? RemovalConditions::RemovableWhenOnOrOff : RemovalConditions::RemovableWhenOff);
    return row.instance();
}

} // namespace KDV
