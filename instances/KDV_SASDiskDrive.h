// A physical drive as a device of its array system. Made by population and owned by the collection; reads its records
// under the provider's lock at each call.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <string>

namespace KDV {

class KDV_SASDiskDrive final : public CmpiManagedInstance {
public:
    KDV_SASDiskDrive(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba,
                     const SasPhysicalDriveRecord* drive);
    ~KDV_SASDiskDrive() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;

private:
    std::string _nameSpace;
    InstanceLog _log;
    const SasHbaRecord* _hba;
    const SasPhysicalDriveRecord* _drive;
};

} // namespace KDV
