// The collection that sums up all states and the computer that hosts it, which somebody else publishes. Made once
// when there is an HBA; owned by the collection, used under the provider's lock.
#pragma once

#include "associations/TwoEnds.h"
#include "cmpicpp/CmpiInstance.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "common/CmpiManagedInstanceAssociation.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASStorageGroupHostedCollection final : public CmpiManagedInstanceAssociation {
public:
    KDV_SASStorageGroupHostedCollection(const Logger& logger, const std::string& nameSpace,
                                        const CmpiCpp::CmpiObjectPath& computerSystem,
                                        const CmpiManagedInstance* collection);
    ~KDV_SASStorageGroupHostedCollection() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;
    CmpiCpp::CmpiObjectPath getAssociatedPath(const CmpiCpp::CmpiObjectPath& given) const override;

private:
    TwoEnds ends() const;

    std::string _nameSpace;
    InstanceLog _log;
    CmpiCpp::CmpiObjectPath _computerSystem; // a copy of ours, returned as it was given
    const CmpiManagedInstance* _collection;
};

} // namespace KDV
