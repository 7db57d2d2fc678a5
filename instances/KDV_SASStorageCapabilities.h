// What redundancy a pool of a host bus adapter offers; one for each kind of pool: 0 primordial, 1 primordial without
// RAID, 2 storage pool. Another kind has an empty identity and says nothing of redundancy. Made by population and owned
// by the collection; reads its record under the provider's lock at each call.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <cstdint>
#include <string>

namespace KDV {

class KDV_SASStorageCapabilities final : public CmpiManagedInstance {
public:
    KDV_SASStorageCapabilities(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba,
                               std::uint32_t poolKind);
    ~KDV_SASStorageCapabilities() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;

private:
    std::string _nameSpace;
    InstanceLog _log;
    const SasHbaRecord* _hba;
    std::uint32_t _hbaNumber; // kept from construction
    std::uint32_t _poolKind;
};

} // namespace KDV
