// What associations with the roles Antecedent and Dependent share: one element that another depends on or is served
// by. It writes no log lines; the classes built on it log their own life. The ends belong to the collection, which
// disposes of the association with or before them. Used under the provider's lock; failures of the broker pass
// through as CmpiStatus.
#pragma once

#include "associations/TwoEnds.h"
#include "cmpicpp/CmpiInstance.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "common/CmpiManagedInstanceAssociation.h"

#include <string>

namespace KDV {

class CIM_Dependency : public CmpiManagedInstanceAssociation {
public:
    CIM_Dependency(const std::string& nameSpace, const std::string& className, const CmpiManagedInstance* antecedent,
                   const CmpiManagedInstance* dependent);
    ~CIM_Dependency() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;
    CmpiCpp::CmpiObjectPath getAssociatedPath(const CmpiCpp::CmpiObjectPath& given) const override;

private:
    TwoEnds ends() const;

    std::string _nameSpace;
    std::string _className;
    const CmpiManagedInstance* _antecedent;
    const CmpiManagedInstance* _dependent;
};

} // namespace KDV
