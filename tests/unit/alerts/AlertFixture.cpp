#include "AlertFixture.h"

#include <cstdlib>

namespace KDV::Test {

Host::Outcome CaughtAlerts::deliver(const CMPIContext*, std::string_view nameSpace,
                                    const Host::InstanceObject& indication)
{
    alerts.push_back(Host::collect(indication));
    nameSpaces.emplace_back(nameSpace);
    return {answer, ""};
}

AlertFixture::AlertFixture() : hba(machine.addHba(1))
{
    ::setenv("KDV_CONFIG_DIR", KDV_SOURCE_DIR "/alerts/events", 1);
    broker.setIndicationSink(&caught);
}

AlertFixture::~AlertFixture()
{
    broker.setIndicationSink(nullptr);
    ::unsetenv("KDV_CONFIG_DIR");
}

void AlertFixture::watch()
{
    makeProvider();
    EXPECT_EQ(requests().enableIndications().rc, CMPI_RC_OK);
}

std::vector<std::string> AlertFixture::eventsOfPass()
{
    caught.alerts.clear();
    log.clear();
    const Reply reply = requests().pass();
    EXPECT_EQ(reply.rc, CMPI_RC_OK) << reply.message;
    Events events;
    for (const Host::CollectedInstance& alert : caught.alerts) {
        const std::string quoted = alert.value("EventID");
        events.push_back(quoted.substr(1, quoted.size() - 2));
    }
    return events;
}

} // namespace KDV::Test
