// The boot loader image of the firmware that a smart drive carrier runs. It splits the inquiry text of its drive at
// each call, and stays when the drive is pulled from the carrier. Made by population and owned by the collection; reads
// its records under the provider's lock at each call.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <string>

namespace KDV {

class KDV_SASSmartDriveCarrierBootldrFirmware final : public CmpiManagedInstance {
public:
    KDV_SASSmartDriveCarrierBootldrFirmware(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba,
                                            const SasPhysicalDriveRecord* drive);
    ~KDV_SASSmartDriveCarrierBootldrFirmware() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;

private:
    std::string _nameSpace;
    InstanceLog _log;
    const SasHbaRecord* _hba;
    const SasPhysicalDriveRecord* _drive;
};

} // namespace KDV
