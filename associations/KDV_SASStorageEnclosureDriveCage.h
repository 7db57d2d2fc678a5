// The drive cage inside a storage enclosure. Made for every storage box; owned by the collection, used under the
// provider's lock.
#pragma once

#include "associations/CIM_SystemDevice.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASStorageEnclosureDriveCage final : public CIM_SystemDevice {
public:
    KDV_SASStorageEnclosureDriveCage(const Logger& logger, const std::string& nameSpace,
                                     const CmpiManagedInstance* enclosure, const CmpiManagedInstance* driveCage);
    ~KDV_SASStorageEnclosureDriveCage() override;

private:
    InstanceLog _log;
};

} // namespace KDV
