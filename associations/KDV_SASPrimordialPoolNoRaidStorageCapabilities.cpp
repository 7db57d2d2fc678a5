#include "associations/KDV_SASPrimordialPoolNoRaidStorageCapabilities.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASPrimordialPoolNoRaidStorageCapabilities";
}

using Link = KDV_SASPrimordialPoolNoRaidStorageCapabilities;

Link::KDV_SASPrimordialPoolNoRaidStorageCapabilities(const Logger& logger, const std::string& nameSpace,
                                                     const CmpiManagedInstance* capabilities,
                                                     const CmpiManagedInstance* pool)
    : CmpiManagedInstanceAssociation(className), _nameSpace(nameSpace), _log(logger, className),
      _capabilities(capabilities), _pool(pool)
{
    joins(ends().first, ends().second);
}

Link::~KDV_SASPrimordialPoolNoRaidStorageCapabilities() = default;

TwoEnds Link::ends() const { return {{"Capabilities", _capabilities}, {"ManagedElement", _pool}}; }

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
