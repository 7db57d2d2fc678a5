// The controller on a host bus adapter: the electronics without the storage. Keyed like a system, not like a device.
// Made by population and owned by the collection; reads its record under the provider's lock at each call.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <cstdint>
#include <string>

namespace KDV {

class KDV_SASArrayController final : public CmpiManagedInstance {
public:
    KDV_SASArrayController(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba);
    ~KDV_SASArrayController() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;

private:
    std::string _nameSpace;
    InstanceLog _log;
    [[maybe_unused]] std::uint32_t _hbaNumber;
    const SasHbaRecord* _hba;
};

} // namespace KDV
