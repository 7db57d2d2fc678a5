// The cage in a storage box that holds its drives. Known by the numbers of its adapter and box at construction. Made by
// population and owned by the collection; reads its record under the provider's lock at each call.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <cstdint>
#include <string>

namespace KDV {

class KDV_SASDriveCage final : public CmpiManagedInstance {
public:
    KDV_SASDriveCage(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba,
                     const SasStorageBoxRecord* box);
    ~KDV_SASDriveCage() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;

private:
    std::string _nameSpace;
    InstanceLog _log;
    [[maybe_unused]] const SasHbaRecord* _hba;
    const SasStorageBoxRecord* _box;
    std::uint32_t _hbaNumber; // kept from construction
    std::uint32_t _boxNumber; // kept from construction
};

} // namespace KDV
