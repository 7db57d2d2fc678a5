// Where a physical drive is. Its name uses the numbers in its own record, its position is parsed from the location text
// at each call. Made by population and owned by the collection; reads its record under the provider's lock at each
// call.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <string>

namespace KDV {

class KDV_SASDiskDriveLocation final : public CmpiManagedInstance {
public:
    KDV_SASDiskDriveLocation(const Logger& logger, const std::string& nameSpace, const SasPhysicalDriveRecord* drive);
    ~KDV_SASDiskDriveLocation() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;

private:
    std::string _nameSpace;
    InstanceLog _log;
    const SasPhysicalDriveRecord* _drive;
};

} // namespace KDV
