#include "associations/KDV_SASSmartDrvCarrierAppElementFirmwareIdentity.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASSmartDrvCarrierAppElementFirmwareIdentity";
}

using Link = KDV_SASSmartDrvCarrierAppElementFirmwareIdentity;

Link::KDV_SASSmartDrvCarrierAppElementFirmwareIdentity(const Logger& logger, const std::string& nameSpace,
                                                       const CmpiManagedInstance* diskDrive,
                                                       const CmpiManagedInstance* firmware)
    : CmpiManagedInstanceAssociation(className), _nameSpace(nameSpace), _log(logger, className), _firmware(firmware),
      _diskDrive(diskDrive)
{
    joins(ends().first, ends().second);
}

Link::~KDV_SASSmartDrvCarrierAppElementFirmwareIdentity() = default;

TwoEnds Link::ends() const { return {{"Dependent", _diskDrive}, {"Antecedent", _firmware}}; }

CmpiObjectPath Link::getPath() const { return ends().path(_nameSpace, className); }

CmpiInstance Link::getInstance()
{
    PropertyRows row = ends().rows(*this);
    // 2 Current, 6 Installed.
    row.uint16Array("ElementSoftwareStatus", {2, 6});
    row.uint16("UpgradeCondition", 3);
    return row.instance();
}

CmpiObjectPath Link::getAssociatedPath(const CmpiObjectPath& given) const { return ends().otherFromFirst(given); }

} // namespace KDV
