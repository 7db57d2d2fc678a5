#include "associations/KDV_SASArraySystemPortController.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASArraySystemPortController";
}

using Link = KDV_SASArraySystemPortController;

Link::KDV_SASArraySystemPortController(const Logger& logger, const std::string& nameSpace,
                                       const CmpiManagedInstance* arraySystem,
                                       const CmpiManagedInstance* portController)
    : CmpiManagedInstanceAssociation(className), _nameSpace(nameSpace), _log(logger, className),
      _arraySystem(arraySystem), _portController(portController)
{
    joins(ends().first, ends().second);
}

Link::~KDV_SASArraySystemPortController() = default;

TwoEnds Link::ends() const { return {{"SameElement", _arraySystem}, {"SystemElement", _portController}}; }

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
