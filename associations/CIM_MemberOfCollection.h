// What associations with the roles Member and Collection share: a member and the collection that it is in. It writes
// no log lines; the classes built on it log their own life. The ends belong to the collection, which disposes of the
// association with or before them. Used under the provider's lock; failures of the broker pass through as
// CmpiStatus.
#pragma once

#include "associations/TwoEnds.h"
#include "cmpicpp/CmpiInstance.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "common/CmpiManagedInstanceAssociation.h"

#include <string>

namespace KDV {

class CIM_MemberOfCollection : public CmpiManagedInstanceAssociation {
public:
    CIM_MemberOfCollection(const std::string& nameSpace, const std::string& className,
                           const CmpiManagedInstance* member, const CmpiManagedInstance* collection);
    ~CIM_MemberOfCollection() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;
    CmpiCpp::CmpiObjectPath getAssociatedPath(const CmpiCpp::CmpiObjectPath& given) const override;

private:
    TwoEnds ends() const;

    std::string _nameSpace;
    std::string _className;
    const CmpiManagedInstance* _member;
    const CmpiManagedInstance* _collection;
};

} // namespace KDV
