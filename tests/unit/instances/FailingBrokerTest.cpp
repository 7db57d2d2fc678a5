// Every call of the broker fails once: the failure reaches the caller as a CmpiStatus, and nothing is left behind.
#include "InstanceFixture.h"
#include "cmpicpp/CmpiStatus.h"
#include "golden/PublishedClasses.h"

namespace KDV::Test {
namespace {

using FailingBroker = InstanceFixture;

TEST_F(FailingBroker, GivesNoHalfInstanceAndLeavesNothingBehind)
{
    put(drive->inquiry, "ACME    DRIVE 9");
    for (const PublishedClass& published : publishedClasses()) {
        const auto object = published.make(logger, given);
        std::uint64_t failures = 0;
        for (bool fired = true; fired; ++failures) {
            broker.resetStatistics();
            broker.failAfter(failures + 1, CMPI_RC_ERR_FAILED);
            {
                const Host::RequestScope request(broker, "root/vnr");
                try {
                    object->getInstance();
                    EXPECT_FALSE(broker.faultFired()) << published.name << ", call " << failures + 1;
                } catch (const CmpiCpp::CmpiStatus& status) {
                    EXPECT_EQ(status.code(), CMPI_RC_ERR_FAILED);
                }
            }
            fired = broker.faultFired();
            broker.failAfter(0, CMPI_RC_OK);
            EXPECT_EQ(broker.statistics().leftToScope, 0u) << published.name << ", call " << failures + 1;
            EXPECT_TRUE(broker.statistics().lifetimesClean());
        }
        EXPECT_GT(failures, 8u) << published.name;
    }
}

} // namespace
} // namespace KDV::Test
