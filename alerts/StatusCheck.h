// Compares the status that was last seen with the status that the data library has just written, for every HBA, volume,
// disk and box element, and raises one alert for each change that matters. All memory of the last look is in the
// records' old-status bytes, which nobody else writes. Runs on the thread of a pass under the provider's mutex. An
// exception from a sender ends the check: that element's old byte stays as it was, the elements after it are unchecked.
#pragma once

#include "alerts/KDV_SASIndication.h"
#include "cmpicpp/CmpiContext.h"
#include "logger/Logger.h"
#include "sasdata/SasHba.h"

#include <cstdint>
#include <string>
#include <vector>

namespace KDV {

// Old 0 means never checked: then only a status above the threshold counts, so that a healthy first sight is silent.
constexpr bool _isStatusChanged(std::uint32_t oldStatus, std::uint32_t newStatus, std::uint32_t threshold) noexcept
{
    return oldStatus == 0 ? newStatus > threshold : newStatus != oldStatus;
}

class StatusCheck {
public:
    // All three must outlive the object.
    StatusCheck(const Logger& logger, const std::string& nameSpace, const std::vector<SasHba*>& hbas);

    void _checkSasIndications(const CmpiCpp::CmpiContext& context) const;

private:
    void _checkHbaIndications(const CmpiCpp::CmpiContext& context) const;
    void _checkLogDrvIndications(const CmpiCpp::CmpiContext& context) const;
    void _checkPhyDrvIndications(const CmpiCpp::CmpiContext& context) const;
    void _checkStorageBoxIndications(const CmpiCpp::CmpiContext& context) const;

    void checkBoxElement(const SasStorageBox& box, StorageBoxElement element, std::uint8_t& oldStatus,
                         std::uint8_t newStatus, const CmpiCpp::CmpiContext& context) const;

    const Logger& _logger;
    const std::string& _nameSpace;
    const std::vector<SasHba*>& _hbas;
};

} // namespace KDV
