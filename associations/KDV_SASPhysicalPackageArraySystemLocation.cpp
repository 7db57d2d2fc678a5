#include "associations/KDV_SASPhysicalPackageArraySystemLocation.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASPhysicalPackageArraySystemLocation";
}

using Link = KDV_SASPhysicalPackageArraySystemLocation;

Link::KDV_SASPhysicalPackageArraySystemLocation(const Logger& logger, const std::string& nameSpace,
                                                const CmpiManagedInstance* package, const CmpiManagedInstance* location)
    : CmpiManagedInstanceAssociation(className), _nameSpace(nameSpace), _log(logger, className), _package(package),
      _location(location)
{
    joins(ends().first, ends().second);
}

Link::~KDV_SASPhysicalPackageArraySystemLocation() = default;

TwoEnds Link::ends() const { return {{"PhysicalLocation", _location}, {"Element", _package}}; }

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
