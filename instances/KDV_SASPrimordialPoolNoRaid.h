// The raw capacity behind a host bus adapter that is outside any RAID volume. Made by population and owned by the
// collection; reads its record under the provider's lock at each call.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <cstdint>
#include <string>

namespace KDV {

class KDV_SASPrimordialPoolNoRaid final : public CmpiManagedInstance {
public:
    KDV_SASPrimordialPoolNoRaid(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba);
    ~KDV_SASPrimordialPoolNoRaid() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;

private:
    std::string _nameSpace;
    InstanceLog _log;
    const SasHbaRecord* _hba;
    std::uint32_t _hbaNumber; // kept from construction
};

} // namespace KDV
