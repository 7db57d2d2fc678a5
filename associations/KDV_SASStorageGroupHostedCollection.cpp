#include "associations/KDV_SASStorageGroupHostedCollection.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASStorageGroupHostedCollection";
}

using Link = KDV_SASStorageGroupHostedCollection;

Link::KDV_SASStorageGroupHostedCollection(const Logger& logger, const std::string& nameSpace,
                                          const CmpiObjectPath& computerSystem, const CmpiManagedInstance* collection)
    : CmpiManagedInstanceAssociation(className), _nameSpace(nameSpace), _log(logger, className),
      _computerSystem(computerSystem), _collection(collection)
{
    joins(ends().first, ends().second);
}

Link::~KDV_SASStorageGroupHostedCollection() = default;

TwoEnds Link::ends() const { return {{"Antecedent", nullptr, &_computerSystem}, {"Dependent", _collection}}; }

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
