// A member disk's capacity in the redundancy set of its volume. Made for every physical drive that is a member of a
// volume with spares; owned by the collection, used under the provider's lock.
#pragma once

#include "associations/TwoEnds.h"
#include "cmpicpp/CmpiInstance.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "common/CmpiManagedInstanceAssociation.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASStorageRedundancySetStorageExtent final : public CmpiManagedInstanceAssociation {
public:
    KDV_SASStorageRedundancySetStorageExtent(const Logger& logger, const std::string& nameSpace,
                                             const CmpiManagedInstance* redundancySet,
                                             const CmpiManagedInstance* extent);
    ~KDV_SASStorageRedundancySetStorageExtent() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;
    CmpiCpp::CmpiObjectPath getAssociatedPath(const CmpiCpp::CmpiObjectPath& given) const override;

private:
    TwoEnds ends() const;

    std::string _nameSpace;
    InstanceLog _log;
    const CmpiManagedInstance* _redundancySet;
    const CmpiManagedInstance* _extent;
};

} // namespace KDV
