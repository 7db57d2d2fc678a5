// A provider over a test's machine whose alerts are caught, with the shipped event database.
#pragma once

#include "broker/CollectingSink.h"
#include "broker/Upcalls.h"
#include "fixture/ProviderFixture.h"

#include <string>
#include <vector>

namespace KDV::Test {

// Keeps what is delivered and answers what the test wants.
class CaughtAlerts : public Host::IndicationSink {
public:
    Host::Outcome deliver(const CMPIContext*, std::string_view nameSpace,
                          const Host::InstanceObject& indication) override;

    std::vector<Host::CollectedInstance> alerts;
    std::vector<std::string> nameSpaces;
    CMPIrc answer = CMPI_RC_OK;
};

class AlertFixture : public ProviderFixture {
protected:
    AlertFixture();
    ~AlertFixture() override;

    // Makes the provider and enables indications.
    void watch();

    // One pass; gives the event IDs of its alerts in order.
    std::vector<std::string> eventsOfPass();

    // The log lines of the last pass that contain the text.
    std::vector<std::string> linesWith(const std::string& part) const { return log.linesWith(part); }

    CaughtAlerts caught;
    SasHbaRecord& hba;
};

using Events = std::vector<std::string>;
using Lines = std::vector<std::string>;

} // namespace KDV::Test
