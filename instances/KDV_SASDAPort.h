// The port through which the host reaches the disks of a host bus adapter. Made by population and owned by the
// collection; reads its record under the provider's lock at each call.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <cstdint>
#include <string>

namespace KDV {

class KDV_SASDAPort final : public CmpiManagedInstance {
public:
    KDV_SASDAPort(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba);
    ~KDV_SASDAPort() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;

private:
    std::string _nameSpace;
    InstanceLog _log;
    const SasHbaRecord* _hba;
    [[maybe_unused]] std::uint32_t _hbaNumber;
};

} // namespace KDV
