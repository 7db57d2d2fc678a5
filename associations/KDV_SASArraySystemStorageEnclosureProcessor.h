// An enclosure processor and the array system that manages it. Made for every storage box; owned by the collection,
// used under the provider's lock.
#pragma once

#include "associations/CIM_SystemDevice.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASArraySystemStorageEnclosureProcessor final : public CIM_SystemDevice {
public:
    KDV_SASArraySystemStorageEnclosureProcessor(const Logger& logger, const std::string& nameSpace,
                                                const CmpiManagedInstance* arraySystem,
                                                const CmpiManagedInstance* enclosureProcessor);
    ~KDV_SASArraySystemStorageEnclosureProcessor() override;

private:
    InstanceLog _log;
};

} // namespace KDV
