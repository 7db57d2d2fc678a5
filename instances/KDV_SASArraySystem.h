// A SAS host bus adapter as the system that scopes every device behind it, with the status of adapter and storage
// together. Its name and texts are those of its construction: what refers to it must find it whatever happens to the
// record. Made by population and owned by the collection; reads its record under the provider's lock at each call.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <cstdint>
#include <string>

namespace KDV {

class KDV_SASArraySystem final : public CmpiManagedInstance {
public:
    KDV_SASArraySystem(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba);
    ~KDV_SASArraySystem() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;

private:
    std::string _nameSpace;
    InstanceLog _log;
    const SasHbaRecord* _hba;
    [[maybe_unused]] std::uint32_t _hbaNumber;
    std::string _modelText;
    std::string _slotText;
    std::string _name;
};

} // namespace KDV
