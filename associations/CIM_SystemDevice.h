// What associations with the roles GroupComponent and PartComponent share: a whole and one of its parts. It writes
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

class CIM_SystemDevice : public CmpiManagedInstanceAssociation {
public:
    CIM_SystemDevice(const std::string& nameSpace, const std::string& className,
                     const CmpiManagedInstance* groupComponent, const CmpiManagedInstance* partComponent);
    ~CIM_SystemDevice() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;
    CmpiCpp::CmpiObjectPath getAssociatedPath(const CmpiCpp::CmpiObjectPath& given) const override;

private:
    TwoEnds ends() const;

    std::string _nameSpace;
    std::string _className;
    const CmpiManagedInstance* _groupComponent;
    const CmpiManagedInstance* _partComponent;
};

} // namespace KDV
