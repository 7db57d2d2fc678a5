#include "Catalogue.h"

#include "StandIn.h"
#include "broker/Broker.h"
#include "broker/CollectingSink.h"
#include "broker/InstanceObject.h"
#include "broker/RequestScope.h"
#include "common/KDVUtil.h"
#include "harness/LogCapture.h"
#include "harness/Schema.h"
#include "instances/InstanceLog.h"
#include "instances/KDV_SASStoragePool.h"
#include "instances/KDV_SASStorageVolume.h"
#include "machine/TestMachine.h"

#include <set>
#include <tuple>

#include <gtest/gtest.h>

namespace KDV::Test {
namespace {

using namespace CmpiCpp;
using namespace Host;
using Lines = std::vector<std::string>;

class EveryAssociation : public testing::TestWithParam<std::tuple<Profile, Entry>> {
protected:
    EveryAssociation()
        : entry(std::get<1>(GetParam())), broker(schema(), {std::get<0>(GetParam()), true}), scope(broker, "root/vnr")
    {
        KDVUtil::setBroker(broker.cmpi());
        CmpiObjectPath::setDefaultNameSpace("root/vnr");
        SasHbaRecord& hba = machine.addHba(1);
        for (std::uint32_t number = 0; number < 3; ++number)
            machine.addDrive(hba, number, memberUsage);
        SasLogicalDriveRecord& volume = machine.addVolume(hba, 7, {0, 1, 2});
        hosts = std::make_unique<CmpiObjectPath>(makeCmpiObjectPath(broker.cmpi(), "root/other", computerSystem));
        hosts->setHost("another.host");
        hosts->addKey("CreationClassName", computerSystem);
        hosts->addKey("Name", "another.host");

        const std::string second = entry.second;
        if (entry.first != std::string(computerSystem)) ends[0] = std::make_unique<StandIn>(logger, entry.first);
        if (second == "KDV_SASStoragePool")
            ends[1] = std::make_unique<KDV_SASStoragePool>(logger, "root/vnr", &hba);
        else if (second == "KDV_SASStorageVolume")
            ends[1] = std::make_unique<KDV_SASStorageVolume>(logger, "root/vnr", &hba, &volume);
        else
            ends[1] = std::make_unique<StandIn>(logger, second);
        link = entry.make(logger, {ends[0].get(), ends[1].get(), hosts.get()});
    }

    ~EveryAssociation() override
    {
        link.reset();
        hosts.reset();
    }

    CmpiObjectPath endPath(bool first) const { return first && !ends[0] ? *hosts : ends[first ? 0 : 1]->getPath(); }
    CmpiObjectPath rolePath() const { return endPath(entry.isFirst); }
    CmpiObjectPath otherRolePath() const { return endPath(!entry.isFirst); }

    // What the ends log when their paths are asked for, the fixed path nothing.
    Lines asked(bool first) const
    {
        return first && !ends[0] ? Lines{} : Lines{std::string(first ? entry.first : entry.second) + " getPath()"};
    }

    Lines linesOf(std::initializer_list<Lines> parts) const
    {
        Lines all;
        for (const Lines& part : parts)
            all.insert(all.end(), part.begin(), part.end());
        return all;
    }

    Lines saying(const char* operation, Says least) const
    {
        return entry.says >= least ? Lines{std::string(entry.className) + " " + operation} : Lines{};
    }

    Entry entry;
    LogCapture log;
    Logger logger{"KDVSASHBA:1"};
    Broker broker;
    RequestScope scope;
    TestMachine machine;
    std::unique_ptr<CmpiObjectPath> hosts;
    std::unique_ptr<CmpiManagedInstance> ends[2];
    std::unique_ptr<CmpiManagedInstanceAssociation> link;
};

std::string quoted(const CmpiObjectPath& path)
{
    std::string text = "\"";
    for (const char c : path.str()) {
        if (c == '"' || c == '\\') text += '\\';
        text += c;
    }
    return text + "\"";
}

TEST_P(EveryAssociation, HasAPathOfItsTwoRolesAndNothingElse)
{
    EXPECT_EQ(link->getPath().str(), "//" + KDVUtil::getHostName() + "/root/vnr:" + entry.className + "." + entry.role +
                                         "=" + quoted(rolePath()) + "," + entry.otherRole + "=" +
                                         quoted(otherRolePath()));
}

TEST_P(EveryAssociation, PublishesItsRolesAndThenItsFurtherProperties)
{
    const CmpiInstance instance = link->getInstance();
    const CollectedInstance published = collect(*static_cast<const InstanceObject*>(instance.raw()));
    EXPECT_EQ(published.className, entry.className);
    Lines rows;
    for (const CollectedProperty& property : published.properties)
        if (!property.preset) rows.push_back(property.type + " " + property.name + " " + property.value);
    Lines expected{std::string("reference ") + entry.role + " " + quoted(rolePath()),
                   std::string("reference ") + entry.otherRole + " " + quoted(otherRolePath())};
    expected.insert(expected.end(), entry.further.begin(), entry.further.end());
    EXPECT_EQ(rows, expected);
}

TEST_P(EveryAssociation, LeadsFromEachEndToTheOther)
{
    EXPECT_EQ(link->getAssociatedPath(endPath(true)).str(), endPath(false).str());
    EXPECT_EQ(link->getAssociatedPath(endPath(false)).str(), endPath(true).str());
}

TEST_P(EveryAssociation, LeadsNowhereFromAStrangePath)
{
    EXPECT_TRUE(link->getAssociatedPath(link->getPath()).empty());
    const StandIn strange(logger, entry.second, "strange");
    EXPECT_TRUE(link->getAssociatedPath(strange.getPath()).empty());
    EXPECT_TRUE(link->getAssociatedPath(makeCmpiObjectPath(broker.cmpi())).empty());
}

TEST_P(EveryAssociation, KnowsAnEndWithoutHostAndInAnotherLetterCase)
{
    CmpiObjectPath path = endPath(false);
    path.setHost("");
    path.setNameSpace("ROOT/VNR");
    EXPECT_EQ(link->getAssociatedPath(path).str(), endPath(true).str());
}

TEST_P(EveryAssociation, DeclaresItsEndsToTheCollection)
{
    const auto& role = link->firstEnd();
    const auto& other = link->secondEnd();
    EXPECT_STREQ(role.role, entry.role);
    EXPECT_STREQ(other.role, entry.otherRole);
    EXPECT_EQ(role.instance, ends[entry.isFirst ? 0 : 1].get());
    EXPECT_EQ(other.instance, ends[entry.isFirst ? 1 : 0].get());
    for (const auto* end : {&role, &other}) {
        if (end->instance) continue;
        ASSERT_NE(end->path, nullptr);
        EXPECT_EQ(end->path->str(), hosts->str());
        EXPECT_NE(end->path, hosts.get()); // a copy of its own
    }
}

TEST_P(EveryAssociation, BearsTheNameOfItsClass)
{
    EXPECT_EQ(link->getClassName(), entry.className);
    EXPECT_TRUE(link->isVisible());
}

TEST_P(EveryAssociation, LogsItsLifeUnderItsClass)
{
    EXPECT_EQ(log.lines().back(), std::string(entry.className) + " cxtor()");
    EXPECT_EQ(log.sources().back(), std::string("KDVSASHBA:1:") + entry.className);
    log.clear();
    link.reset();
    EXPECT_EQ(log.lines(), Lines{std::string(entry.className) + " dxtor()"});
}

TEST_P(EveryAssociation, LogsItsOperationsAsItsKindDoesAndAsksTheEndsInOrder)
{
    const CmpiObjectPath strange = link->getPath();
    log.clear();
    link->getPath();
    const Lines path = linesOf({saying("getPath()", Says::Everything), asked(entry.isFirst), asked(!entry.isFirst)});
    EXPECT_EQ(log.lines(), path);
    log.clear();
    link->getInstance();
    EXPECT_EQ(log.lines(), linesOf({saying("getInstance()", Says::OnlyGetInstance), path, asked(entry.isFirst),
                                    asked(!entry.isFirst)}));
    log.clear();
    link->getAssociatedPath(strange);
    EXPECT_EQ(log.lines(), linesOf({saying("getAssociatedPath()", Says::Everything), asked(entry.asksFirst),
                                    asked(!entry.asksFirst)}));
}

std::string testName(const testing::TestParamInfo<std::tuple<Profile, Entry>>& info)
{
    return std::string(profileName(std::get<0>(info.param))) + "_" + std::get<1>(info.param).className;
}

INSTANTIATE_TEST_SUITE_P(Brokers, EveryAssociation,
                         testing::Combine(testing::ValuesIn(allProfiles), testing::ValuesIn(catalogue())), testName);

TEST(AssociationCatalogue, HasEachOfTheFortySixClassesOnce)
{
    std::set<std::string> names;
    for (const Entry& entry : catalogue())
        names.insert(entry.className);
    EXPECT_EQ(names.size(), 46u);
    EXPECT_EQ(catalogue().size(), 46u);
}

TEST(AssociationCatalogue, AgreesWithTheSchemaAboutRolesAndTypes)
{
    for (const Entry& entry : catalogue()) {
        const ClassInfo* const declared = schema().find("root/vnr", entry.className);
        ASSERT_NE(declared, nullptr) << entry.className;
        for (const char* role : {entry.role, entry.otherRole})
            EXPECT_GE(declared->property(role), 0) << entry.className << "." << role;
        EXPECT_EQ(declared->keys().size(), 2u) << entry.className;
    }
}

} // namespace
} // namespace KDV::Test
