#include "associations/CIM_MemberOfCollection.h"

using namespace CmpiCpp;
namespace KDV {

CIM_MemberOfCollection::CIM_MemberOfCollection(const std::string& nameSpace, const std::string& className,
                                               const CmpiManagedInstance* member, const CmpiManagedInstance* collection)
    : CmpiManagedInstanceAssociation(className), _nameSpace(nameSpace), _className(className), _member(member),
      _collection(collection)
{
    joins(ends().first, ends().second);
}

CIM_MemberOfCollection::~CIM_MemberOfCollection() = default;

TwoEnds CIM_MemberOfCollection::ends() const { return {{"Member", _member}, {"Collection", _collection}}; }

CmpiObjectPath CIM_MemberOfCollection::getPath() const { return ends().path(_nameSpace, _className); }

CmpiInstance CIM_MemberOfCollection::getInstance() { return ends().rows(*this).instance(); }

CmpiObjectPath CIM_MemberOfCollection::getAssociatedPath(const CmpiObjectPath& given) const
{
    return ends().otherFromFirst(given);
}

} // namespace KDV
