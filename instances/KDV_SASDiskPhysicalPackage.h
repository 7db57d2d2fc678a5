// The housing of a physical drive. Vendor and model are those of the construction. Made by population and owned by the
// collection; reads its record under the provider's lock at each call.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <cstdint>
#include <string>

namespace KDV {

class KDV_SASDiskPhysicalPackage final : public CmpiManagedInstance {
public:
    KDV_SASDiskPhysicalPackage(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba,
                               const SasPhysicalDriveRecord* drive);
    ~KDV_SASDiskPhysicalPackage() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;

private:
    std::string _nameSpace;
    InstanceLog _log;
    const SasPhysicalDriveRecord* _drive;
    [[maybe_unused]] std::uint32_t _hbaNumber;
    std::string _vendorText;
    std::string _modelText;
};

} // namespace KDV
