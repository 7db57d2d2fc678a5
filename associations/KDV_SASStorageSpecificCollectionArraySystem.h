// An array system as a member of the collection that sums up all states. Made for every HBA after all of them are
// published; owned by the collection, used under the provider's lock.
#pragma once

#include "associations/CIM_MemberOfCollection.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASStorageSpecificCollectionArraySystem final : public CIM_MemberOfCollection {
public:
    KDV_SASStorageSpecificCollectionArraySystem(const Logger& logger, const std::string& nameSpace,
                                                const CmpiManagedInstance* arraySystem,
                                                const CmpiManagedInstance* collection);
    ~KDV_SASStorageSpecificCollectionArraySystem() override;

private:
    InstanceLog _log;
};

} // namespace KDV
