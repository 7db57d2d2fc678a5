// The pool that the volumes of a host bus adapter are made from. Its total is summed once, when it is made, and stays
// whatever becomes of the disks. Made by population and owned by the collection; reads its record under the provider's
// lock at each call.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <cstdint>
#include <string>

namespace KDV {

class KDV_SASStoragePool final : public CmpiManagedInstance {
public:
    KDV_SASStoragePool(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba);
    ~KDV_SASStoragePool() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;

    // In the unit of the drive records' sizes.
    std::uint64_t totalManagedSpace() const noexcept { return _totalManagedSpace; }

private:
    std::string _nameSpace;
    InstanceLog _log;
    const SasHbaRecord* _hba;
    std::uint32_t _hbaNumber;         // kept from construction
    std::uint64_t _totalManagedSpace; // as it was at construction
};

} // namespace KDV
