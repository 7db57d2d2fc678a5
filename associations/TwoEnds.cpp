#include "associations/TwoEnds.h"

#include "common/KDVUtil.h"
#include "instances/DevicePath.h"

using namespace CmpiCpp;
namespace KDV {
namespace {

using End = CmpiManagedInstanceAssociation::End;

CmpiObjectPath pathOf(const End& end) { return end.instance ? end.instance->getPath() : *end.path; }

CmpiObjectPath otherOf(const CmpiObjectPath& given, const End& asked, const End& remaining)
{
    CmpiObjectPath askedPath = pathOf(asked);
    CmpiObjectPath remainingPath = pathOf(remaining);
    if (given == askedPath) return remainingPath;
    if (given == remainingPath) return askedPath;
    return makeCmpiObjectPath(KDVUtil::getBroker());
}

} // namespace

CmpiObjectPath TwoEnds::path(const std::string& nameSpace, const std::string& className) const
{
    CmpiObjectPath path = hostPath(nameSpace, className);
    path.addKey(first.role, pathOf(first));
    path.addKey(second.role, pathOf(second));
    return path;
}

PropertyRows TwoEnds::rows(const CmpiManagedInstance& association) const
{
    PropertyRows row(association);
    row.reference(first.role, pathOf(first));
    row.reference(second.role, pathOf(second));
    return row;
}

CmpiObjectPath TwoEnds::other(const CmpiObjectPath& given) const { return otherOf(given, second, first); }

CmpiObjectPath TwoEnds::otherFromFirst(const CmpiObjectPath& given) const { return otherOf(given, first, second); }

} // namespace KDV
