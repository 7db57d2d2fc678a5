// The slot that a host bus adapter sits in. Its element text is that of the construction, while the slot number is read
// at each call, also where it is a key: as a plain number, 0 for an embedded adapter and 255 where it is unknown. Made
// by population and owned by the collection; reads its record under the provider's lock at each call.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <cstdint>
#include <string>

namespace KDV {

class KDV_SASArraySystemLocation final : public CmpiManagedInstance {
public:
    KDV_SASArraySystemLocation(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba);
    ~KDV_SASArraySystemLocation() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;

private:
    std::string _nameSpace;
    InstanceLog _log;
    const SasHbaRecord* _hba;
    [[maybe_unused]] std::uint32_t _hbaNumber;
    std::string _modelText;
    std::string _slotText;
};

} // namespace KDV
