#include "InstanceFixture.h"
#include "golden/PublishedClasses.h"

namespace KDV::Test {
namespace {

using InstancePaths = InstanceFixture;

TEST_F(InstancePaths, NameHostNamespaceAndClassOfEveryObject)
{
    for (const PublishedClass& published : publishedClasses()) {
        const auto object = published.make(logger, given);
        const CmpiCpp::CmpiObjectPath path = object->getPath();
        EXPECT_EQ(path.getHost(), KDVUtil::getHostName()) << published.name;
        EXPECT_EQ(path.getNameSpace(), "root/vnr") << published.name;
        EXPECT_EQ(path.getClassName(), published.name);
        EXPECT_EQ(object->getClassName(), published.name);
        EXPECT_TRUE(object->isVisible()) << published.name;
    }
}

TEST_F(InstancePaths, LeaveNothingBehindInTheBroker)
{
    for (const PublishedClass& published : publishedClasses()) {
        const auto object = published.make(logger, given);
        broker.resetStatistics();
        {
            const Host::RequestScope request(broker, "root/vnr");
            object->getPath();
            object->getInstance();
        }
        EXPECT_EQ(broker.statistics().leftToScope, 0u) << published.name;
        EXPECT_TRUE(broker.statistics().lifetimesClean()) << published.name;
    }
}

TEST_F(InstancePaths, AreThoseOfTheInstanceThatIsMade)
{
    for (const PublishedClass& published : publishedClasses()) {
        const auto object = published.make(logger, given);
        EXPECT_EQ(InstanceFixture::published(*object).path, object->getPath().str());
    }
}

} // namespace
} // namespace KDV::Test
