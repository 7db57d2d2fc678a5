#include "provider/KDV_AutoStartSASHBA.h"

#include "broker/Broker.h"
#include "broker/CollectingSink.h"
#include "broker/InstanceObject.h"
#include "broker/RequestScope.h"
#include "common/KDVUtil.h"
#include "fixture/ProviderFixture.h"
#include "harness/LogCapture.h"
#include "harness/Schema.h"

#include <gtest/gtest.h>

namespace KDV::Test {
namespace {

using namespace Host;

class KDV_AutoStart : public testing::TestWithParam<Profile> {
protected:
    KDV_AutoStart() : broker(schema(), {GetParam(), true}), scope(broker, "root/vnr")
    {
        KDVUtil::setBroker(broker.cmpi());
    }

    LogCapture log;
    Broker broker;
    RequestScope scope;
};

TEST_P(KDV_AutoStart, PublishesExactlyFourPropertiesInOrder)
{
    KDV_AutoStartSASHBA worker(Logger("KDVSASHBA:4711"), "root/vnr");
    const CmpiCpp::CmpiInstance instance = worker.getInstance();
    std::vector<std::string> rows;
    for (const CollectedProperty& property : collect(*static_cast<const InstanceObject*>(instance.raw())).properties)
        if (!property.preset) rows.push_back(property.type + " " + property.name + " " + property.value);
    EXPECT_EQ(rows, (std::vector<std::string>{R"(string ProviderName "KDVSASHBA")",
                                              R"(string WorkerMethodNameSpace "root/vnr")",
                                              "uint16 WorkerPollInterval 30", "uint16 WorkerPollIntervalStagger 28"}));
}

TEST_P(KDV_AutoStart, NamesTheLocalHostAndHasOnlyTheProviderNameAsKey)
{
    const KDV_AutoStartSASHBA worker(Logger("KDVSASHBA:4711"), "root/vnr");
    EXPECT_EQ(worker.getPath().str(),
              "//" + KDVUtil::getHostName() + "/root/vnr:KDV_AutoStartSASHBA.ProviderName=\"KDVSASHBA\"");
}

TEST_P(KDV_AutoStart, PublishesTheNamespaceThatItWasGiven)
{
    KDV_AutoStartSASHBA worker(Logger("KDVSASHBA:4711"), "Root/VNR");
    const CmpiCpp::CmpiInstance instance = worker.getInstance();
    EXPECT_EQ(collect(*static_cast<const InstanceObject*>(instance.raw())).value("WorkerMethodNameSpace"),
              "\"Root/VNR\"");
}

TEST_P(KDV_AutoStart, LogsItsLifeUnderTheProcessSource)
{
    {
        KDV_AutoStartSASHBA worker(Logger("KDVSASHBA:4711"), "root/vnr");
        worker.getInstance();
    }
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"KDV_AutoStartSASHBA cxtor()", "KDV_AutoStartSASHBA getInstance()",
                                                     "KDV_AutoStartSASHBA getPath()", "KDV_AutoStartSASHBA dxtor()"}));
    for (const std::string& source : log.sources())
        EXPECT_EQ(source, "KDVSASHBA:4711:KDV_AutoStartSASHBA");
}

KDV_UNDER_EVERY_BROKER(KDV_AutoStart);

} // namespace
} // namespace KDV::Test
