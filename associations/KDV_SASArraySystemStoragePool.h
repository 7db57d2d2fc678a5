// The pool that volumes are made from, hosted by the array system. Made for every HBA; owned by the collection, used
// under the provider's lock.
#pragma once

#include "associations/CIM_SystemDevice.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASArraySystemStoragePool final : public CIM_SystemDevice {
public:
    KDV_SASArraySystemStoragePool(const Logger& logger, const std::string& nameSpace,
                                  const CmpiManagedInstance* arraySystem, const CmpiManagedInstance* pool);
    ~KDV_SASArraySystemStoragePool() override;

private:
    InstanceLog _log;
};

} // namespace KDV
