// The firmware of a physical drive. Vendor and model are those of the construction. Made by population and owned by the
// collection; reads its record under the provider's lock at each call.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <string>

namespace KDV {

class KDV_SASDiskDriveFirmware final : public CmpiManagedInstance {
public:
    KDV_SASDiskDriveFirmware(const Logger& logger, const std::string& nameSpace, const SasPhysicalDriveRecord* drive);
    ~KDV_SASDiskDriveFirmware() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;

private:
    std::string _nameSpace;
    InstanceLog _log;
    const SasPhysicalDriveRecord* _drive;
    std::string _vendorText;
    std::string _modelText;
};

} // namespace KDV
