#include "associations/TwoEnds.h"

#include "StandIn.h"
#include "associations/CIM_Dependency.h"
#include "associations/CIM_MemberOfCollection.h"
#include "associations/CIM_SystemDevice.h"
#include "broker/Broker.h"
#include "broker/RequestScope.h"
#include "cmpicpp/CmpiStatus.h"
#include "harness/LogCapture.h"

#include <gtest/gtest.h>

namespace KDV::Test {
namespace {

using namespace Host;
using Lines = std::vector<std::string>;

class GenericBase : public testing::Test {
protected:
    GenericBase() : broker(schema(), {Profile::Sfcb, true}), scope(broker, "root/vnr")
    {
        KDVUtil::setBroker(broker.cmpi());
    }

    LogCapture log;
    Logger logger{"test"};
    Broker broker;
    RequestScope scope;
    StandIn first{logger, "KDV_SASArraySystem"};
    StandIn second{logger, "KDV_SASDiskDrive"};
};

TEST_F(GenericBase, HasTheRolesOfItsKindInOrder)
{
    const CIM_Dependency dependency("root/vnr", "KDV_SASFirmwareArraySystem", &first, &second);
    EXPECT_STREQ(dependency.firstEnd().role, "Antecedent");
    EXPECT_STREQ(dependency.secondEnd().role, "Dependent");
    const CIM_SystemDevice device("root/vnr", "KDV_SASArraySystemDiskDrive", &first, &second);
    EXPECT_STREQ(device.firstEnd().role, "GroupComponent");
    EXPECT_STREQ(device.secondEnd().role, "PartComponent");
    const CIM_MemberOfCollection member("root/vnr", "KDV_SASStorageSpecificCollectionArraySystem", &first, &second);
    EXPECT_STREQ(member.firstEnd().role, "Member");
    EXPECT_STREQ(member.secondEnd().role, "Collection");
}

TEST_F(GenericBase, LogsNothingItselfAndAsksTheFirstEndFirst)
{
    CIM_SystemDevice device("root/vnr", "KDV_SASArraySystemDiskDrive", &first, &second);
    const auto path = first.getPath();
    log.clear();
    device.getPath();
    device.getInstance();
    device.getAssociatedPath(path);
    const Lines both{"KDV_SASArraySystem getPath()", "KDV_SASDiskDrive getPath()"};
    Lines expected;
    for (int i = 0; i < 4; ++i)
        expected.insert(expected.end(), both.begin(), both.end());
    EXPECT_EQ(log.lines(), expected);
}

TEST_F(GenericBase, LetsAFailureOfTheBrokerThrough)
{
    CIM_SystemDevice device("root/vnr", "KDV_SASArraySystemDiskDrive", &first, &second);
    const auto given = first.getPath();
    std::uint64_t failures = 0;
    for (std::uint64_t n = 1;; ++n) {
        broker.failAfter(n, CMPI_RC_ERR_FAILED);
        try {
            device.getInstance();
            device.getAssociatedPath(given);
        } catch (const CmpiCpp::CmpiStatus& status) {
            EXPECT_EQ(status.code(), CMPI_RC_ERR_FAILED);
            ++failures;
        }
        if (!broker.faultFired()) break;
    }
    broker.failAfter(0, CMPI_RC_OK);
    EXPECT_GT(failures, 10u);
    EXPECT_TRUE(broker.statistics().lifetimesClean());
    EXPECT_EQ(device.getAssociatedPath(given).str(), second.getPath().str());
}

} // namespace
} // namespace KDV::Test
