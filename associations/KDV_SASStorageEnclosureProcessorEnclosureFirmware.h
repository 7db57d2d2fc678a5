// The firmware that an enclosure processor runs. Made for every storage box; owned by the collection, used under the
// provider's lock.
#pragma once

#include "associations/CIM_Dependency.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASStorageEnclosureProcessorEnclosureFirmware final : public CIM_Dependency {
public:
    KDV_SASStorageEnclosureProcessorEnclosureFirmware(const Logger& logger, const std::string& nameSpace,
                                                      const CmpiManagedInstance* firmware,
                                                      const CmpiManagedInstance* enclosureProcessor);
    ~KDV_SASStorageEnclosureProcessorEnclosureFirmware() override;

    CmpiCpp::CmpiInstance getInstance() override;

private:
    InstanceLog _log;
    [[maybe_unused]] const CmpiManagedInstance* _firmware;
    [[maybe_unused]] const CmpiManagedInstance* _enclosureProcessor;
};

} // namespace KDV
