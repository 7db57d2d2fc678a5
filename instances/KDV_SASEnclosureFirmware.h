// The firmware of a storage box. Made by population and owned by the collection; reads its record under the provider's
// lock at each call.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <string>

namespace KDV {

class KDV_SASEnclosureFirmware final : public CmpiManagedInstance {
public:
    KDV_SASEnclosureFirmware(const Logger& logger, const std::string& nameSpace, const SasStorageBoxRecord* box);
    ~KDV_SASEnclosureFirmware() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;

private:
    std::string _nameSpace;
    InstanceLog _log;
    const SasStorageBoxRecord* _box;
};

} // namespace KDV
