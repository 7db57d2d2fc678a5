#include "associations/KDV_SASStorageRedundancySetStorageExtent.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASStorageRedundancySetStorageExtent";
}

using Link = KDV_SASStorageRedundancySetStorageExtent;

Link::KDV_SASStorageRedundancySetStorageExtent(const Logger& logger, const std::string& nameSpace,
                                               const CmpiManagedInstance* redundancySet,
                                               const CmpiManagedInstance* extent)
    : CmpiManagedInstanceAssociation(className), _nameSpace(nameSpace), _log(logger, className),
      _redundancySet(redundancySet), _extent(extent)
{
    joins(ends().first, ends().second);
}

Link::~KDV_SASStorageRedundancySetStorageExtent() = default;

TwoEnds Link::ends() const { return {{"Collection", _redundancySet}, {"Member", _extent}}; }

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
    return ends().other(given);
}

} // namespace KDV
