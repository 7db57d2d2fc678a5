// Holds every association of a small machine against the tables beside this file.
#include "Links.h"
#include "fixture/ProviderFixture.h"

namespace KDV::Test {
namespace {

class GoldenLinks : public ProviderFixture {
protected:
    GoldenLinks()
    {
        log.stop();
        buildGoldenMachine(machine);
        makeProvider();
    }
};

TEST_P(GoldenLinks, AreWhatEveryAssociationClassPublishes)
{
    broker.resetStatistics();
    for (const std::string& className : associationClasses())
        EXPECT_EQ(publishedLinks(requests(), className), expectedLinks(className)) << className;
    EXPECT_EQ(broker.statistics().refusedProperties, 0u);
    EXPECT_EQ(broker.statistics().droppedProperties, 0u);
}

TEST_P(GoldenLinks, AreFoundByTheirOwnPaths)
{
    for (const std::string& className : associationClasses())
        EXPECT_EQ(requests().instanceNames(className.c_str()).paths.size(), expectedLinks(className).size())
            << className;
}

KDV_UNDER_EVERY_BROKER(GoldenLinks);

TEST(GoldenLinkFiles, ExistForEachOfTheFortySixClassesAndAreNotEmpty)
{
    const std::vector<std::string> classes = associationClasses();
    EXPECT_EQ(classes.size(), 46u);
    for (const std::string& className : classes) {
        const auto links = expectedLinks(className);
        EXPECT_FALSE(links.empty()) << className;
        for (const PublishedRows& link : links)
            EXPECT_GE(link.size(), 2u) << className;
    }
}

} // namespace
} // namespace KDV::Test
