// The enclosure that houses an enclosure processor. Made for every storage box; owned by the collection, used under
// the provider's lock.
#pragma once

#include "associations/CIM_Dependency.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASStorageEnclosureStorageEnclosureProcessor final : public CIM_Dependency {
public:
    KDV_SASStorageEnclosureStorageEnclosureProcessor(const Logger& logger, const std::string& nameSpace,
                                                     const CmpiManagedInstance* enclosure,
                                                     const CmpiManagedInstance* enclosureProcessor);
    ~KDV_SASStorageEnclosureStorageEnclosureProcessor() override;

private:
    InstanceLog _log;
};

} // namespace KDV
