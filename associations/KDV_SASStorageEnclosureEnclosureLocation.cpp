#include "associations/KDV_SASStorageEnclosureEnclosureLocation.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASStorageEnclosureEnclosureLocation";
}

using Link = KDV_SASStorageEnclosureEnclosureLocation;

Link::KDV_SASStorageEnclosureEnclosureLocation(const Logger& logger, const std::string& nameSpace,
                                               const CmpiManagedInstance* enclosure,
                                               const CmpiManagedInstance* location)
    : CmpiManagedInstanceAssociation(className), _nameSpace(nameSpace), _log(logger, className), _enclosure(enclosure),
      _location(location)
{
    joins(ends().first, ends().second);
}

Link::~KDV_SASStorageEnclosureEnclosureLocation() = default;

TwoEnds Link::ends() const { return {{"PhysicalLocation", _location}, {"Element", _enclosure}}; }

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
