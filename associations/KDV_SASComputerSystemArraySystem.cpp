#include "associations/KDV_SASComputerSystemArraySystem.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASComputerSystemArraySystem";
}

using Link = KDV_SASComputerSystemArraySystem;

Link::KDV_SASComputerSystemArraySystem(const Logger& logger, const std::string& nameSpace,
                                       const CmpiObjectPath& computerSystem, const CmpiManagedInstance* arraySystem)
    : CmpiManagedInstanceAssociation(className), _nameSpace(nameSpace), _log(logger, className),
      _computerSystem(computerSystem), _arraySystem(arraySystem)
{
    joins(ends().first, ends().second);
}

Link::~KDV_SASComputerSystemArraySystem() = default;

TwoEnds Link::ends() const { return {{"GroupComponent", nullptr, &_computerSystem}, {"PartComponent", _arraySystem}}; }

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
