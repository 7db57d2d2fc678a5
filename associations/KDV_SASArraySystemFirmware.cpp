#include "associations/KDV_SASArraySystemFirmware.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASArraySystemFirmware";
}

using Link = KDV_SASArraySystemFirmware;

Link::KDV_SASArraySystemFirmware(const Logger& logger, const std::string& nameSpace,
                                 const CmpiManagedInstance* arraySystem, const CmpiManagedInstance* firmware)
    : CmpiManagedInstanceAssociation(className), _nameSpace(nameSpace), _log(logger, className),
      _arraySystem(arraySystem), _firmware(firmware)
{
    joins(ends().first, ends().second);
}

Link::~KDV_SASArraySystemFirmware() = default;

TwoEnds Link::ends() const { return {{"InstalledSoftware", _firmware}, {"System", _arraySystem}}; }

CmpiObjectPath Link::getPath() const
{
    _log.info("getPath()");
    return ends().path(_nameSpace, className);
}

CmpiInstance Link::getInstance()
{
    _log.info("getInstance()");
    return ends().rows(*this).instance();
}

CmpiObjectPath Link::getAssociatedPath(const CmpiObjectPath& given) const
{
    _log.info("getAssociatedPath()");
    return ends().otherFromFirst(given);
}

} // namespace KDV
