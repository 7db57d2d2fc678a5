#include "associations/KDV_SASSmartDrvCarrierBootldrInstalledFirmwareIdentity.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASSmartDrvCarrierBootldrInstalledFirmwareIdentity";
}

using Link = KDV_SASSmartDrvCarrierBootldrInstalledFirmwareIdentity;

Link::KDV_SASSmartDrvCarrierBootldrInstalledFirmwareIdentity(const Logger& logger, const std::string& nameSpace,
                                                             const CmpiManagedInstance* arraySystem,
                                                             const CmpiManagedInstance* firmware)
    : CmpiManagedInstanceAssociation(className), _nameSpace(nameSpace), _log(logger, className),
      _arraySystem(arraySystem), _firmware(firmware)
{
    joins(ends().first, ends().second);
}

Link::~KDV_SASSmartDrvCarrierBootldrInstalledFirmwareIdentity() = default;

TwoEnds Link::ends() const { return {{"System", _arraySystem}, {"InstalledSoftware", _firmware}}; }

CmpiObjectPath Link::getPath() const { return ends().path(_nameSpace, className); }

CmpiInstance Link::getInstance() { return ends().rows(*this).instance(); }

CmpiObjectPath Link::getAssociatedPath(const CmpiObjectPath& given) const { return ends().other(given); }

} // namespace KDV
