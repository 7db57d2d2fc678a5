#include "associations/KDV_SASSmartDrvCarrierAppInstalledFirmwareIdentity.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASSmartDrvCarrierAppInstalledFirmwareIdentity";
}

using Link = KDV_SASSmartDrvCarrierAppInstalledFirmwareIdentity;

Link::KDV_SASSmartDrvCarrierAppInstalledFirmwareIdentity(const Logger& logger, const std::string& nameSpace,
                                                         const CmpiManagedInstance* arraySystem,
                                                         const CmpiManagedInstance* firmware)
    : CmpiManagedInstanceAssociation(className), _nameSpace(nameSpace), _log(logger, className),
      _arraySystem(arraySystem), _firmware(firmware)
{
    joins(ends().first, ends().second);
}

Link::~KDV_SASSmartDrvCarrierAppInstalledFirmwareIdentity() = default;

TwoEnds Link::ends() const { return {{"System", _arraySystem}, {"InstalledSoftware", _firmware}}; }

CmpiObjectPath Link::getPath() const { return ends().path(_nameSpace, className); }

CmpiInstance Link::getInstance() { return ends().rows(*this).instance(); }

CmpiObjectPath Link::getAssociatedPath(const CmpiObjectPath& given) const { return ends().other(given); }

} // namespace KDV
