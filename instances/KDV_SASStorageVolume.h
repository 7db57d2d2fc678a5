// A logical drive as a volume that the host sees. Texts and keys come from the records at each call; the logical drive
// number of the construction is kept beside them for associations. Made by population and owned by the collection;
// reads its records under the provider's lock at each call.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <cstdint>
#include <string>

namespace KDV {

class KDV_SASStorageVolume final : public CmpiManagedInstance {
public:
    KDV_SASStorageVolume(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba,
                         const SasLogicalDriveRecord* logicalDrive);
    ~KDV_SASStorageVolume() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;

    std::uint32_t logicalDriveNumber() const noexcept { return _logicalDriveNumber; }

    // The size as the record has it now.
    std::uint32_t sizeMiB() const noexcept { return _logicalDrive->size; }

private:
    std::string _nameSpace;
    InstanceLog _log;
    const SasHbaRecord* _hba;
    const SasLogicalDriveRecord* _logicalDrive;
    [[maybe_unused]] std::uint32_t _hbaNumber;
    std::uint32_t _logicalDriveNumber; // kept from construction
};

} // namespace KDV
