// An indication provider of the tests: writes down how its functions are called, refuses when told to, and delivers.
#pragma once

#include "broker/Broker.h"
#include "cmpi/ProviderTables.h"

#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace KDV::Host {

class RecordingProvider {
public:
    explicit RecordingProvider(Broker& broker, CMPIVersion version = CMPIVersion210);
    RecordingProvider(const RecordingProvider&) = delete;
    RecordingProvider& operator=(const RecordingProvider&) = delete;

    CMPIIndicationMI* table() { return &_table; }
    // What was called since the last time, such as "activate X_Alert as X_Alert first".
    std::vector<std::string> calls();
    void refuse(const std::string& function, CMPIrc rc) // "authorize" or "activate"
    {
        _refused = function;
        _rc = rc;
    }

    std::function<void()> whenActivated = [] {}; // runs inside of activateFilter
    std::function<void()> whenEnabled = [] {};   // runs inside of enableIndications

    // The code that deliverIndication gives.
    CMPIrc deliver(const std::string& eventId, unsigned severity = 3, const std::string& nameSpace = "root/vnr",
                   const std::string& className = "KDV_SASIndication");

private:
    struct Functions;
    friend struct Functions;
    CMPIStatus record(const std::string& function, const std::string& call);

    Broker& _broker;
    CMPIIndicationMIFT _functions{};
    CMPIIndicationMI _table{};
    std::mutex _mutex;
    std::vector<std::string> _calls;
    std::string _refused;
    CMPIrc _rc = CMPI_RC_OK;
};

} // namespace KDV::Host
