#include "cmpicpp/CmpiInstance.h"

#include "BrokerTest.h"
#include "cmpicpp/CmpiResults.h"

#include <map>
#include <thread>

using namespace CmpiCpp;
using namespace KDV::Host;
using testing::ElementsAre;
using testing::Pair;

namespace {

using Properties = std::map<std::string, std::string>;

class CmpiInstanceTest : public BrokerTest {
protected:
    // Name -> value of what was set, as the server sees it when the instance is returned.
    Properties returned(const CmpiInstance& instance)
    {
        ResultObject result(broker, sink, ResultKind::Instances);
        CmpiInstanceResult(result.cmpi()).returnInstance(instance);
        Properties properties;
        for (const CollectedProperty& property : sink.instances.back().properties) {
            if (!property.preset) properties[property.name] = property.type + " " + property.value;
        }
        return properties;
    }
};
KDV_FOR_EACH_PROFILE(CmpiInstanceTest);

const Properties fanKeys = {
    {"CreationClassName", "string \"Fan\""}, {"DeviceID", "string \"1\""}, {"SystemName", "string \"box\""}};

TEST_P(CmpiInstanceTest, HasTheKeysOfItsPathAsProperties)
{
    inRequest([&] { EXPECT_EQ(returned(makeCmpiInstance(cmpi(), makeFan("1"))), fanKeys); });
    expectClean();
    EXPECT_THAT(sink.instances[0].path, testing::HasSubstr("DeviceID=\"1\""));
}

TEST_P(CmpiInstanceTest, HasReferenceKeysAsProperties)
{
    inRequest([&] {
        CmpiObjectPath path = makePath("Cooling");
        path.addKey("Antecedent", makeFan("1"));
        path.addKey("Dependent", makeFan("2"));
        const Properties properties = returned(makeCmpiInstance(cmpi(), path));
        EXPECT_EQ(properties.size(), 2u);
        EXPECT_THAT(properties.at("Antecedent"), testing::HasSubstr("DeviceID"));
        EXPECT_NE(properties.at("Antecedent"), properties.at("Dependent"));
    });
    expectClean();
}

TEST_P(CmpiInstanceTest, TakesEveryTypeExactly)
{
    Properties properties;
    inRequest([&] {
        CmpiInstance fan = makeCmpiInstance(cmpi(), makeFan("1"));
        fan.addProperty("Enabled", true);
        fan.addProperty("Bay", std::uint8_t{200});
        fan.addProperty("HealthState", std::uint16_t{5});
        fan.addProperty("Speed", std::uint32_t{4000000000u});
        fan.addProperty("Size", std::uint64_t{1} << 40);
        fan.addProperty("Wear", std::int8_t{-7});
        fan.addProperty("Caption", "a fan");
        fan.addDateTimeProperty("InstallDate", cmpi(), 1500000000000000u);
        CmpiArray status = makeCmpiArray(cmpi(), 2, CMPI_uint16);
        status.setElementAt(0, 2);
        status.setElementAt(1, 6);
        fan.addProperty("OperationalStatus", status);
        CmpiArray info = makeCmpiArray(cmpi(), 1, CMPI_string);
        info.setElementAt(0, "serial");
        fan.addProperty("OtherIdentifyingInfo", info);
        properties = returned(fan);
    });
    expectClean();
    for (const auto& key : fanKeys)
        properties.erase(key.first);
    const std::string date = properties["InstallDate"];
    properties.erase("InstallDate");
    EXPECT_THAT(date, testing::StartsWith("datetime "));
    EXPECT_THAT(date, testing::HasSubstr("20170714")); // 02:40 UTC, and the same day in zones up to two hours west
    EXPECT_THAT(properties,
                ElementsAre(Pair("Bay", "uint8 200"), Pair("Caption", "string \"a fan\""),
                            Pair("Enabled", "boolean true"), Pair("HealthState", "uint16 5"),
                            Pair("OperationalStatus", "uint16[] {2, 6}"),
                            Pair("OtherIdentifyingInfo", "string[] {\"serial\"}"), Pair("Size", "uint64 1099511627776"),
                            Pair("Speed", "uint32 4000000000"), Pair("Wear", "sint8 -7")));
}

TEST_P(CmpiInstanceTest, ReplacesAKeyByALaterProperty)
{
    inRequest([&] {
        CmpiInstance fan = makeCmpiInstance(cmpi(), makeFan("1"));
        fan.addProperty("DeviceID", std::string("2"));
        fan.addProperty("Caption", static_cast<const char*>(nullptr));
        const Properties properties = returned(fan);
        EXPECT_EQ(properties.at("DeviceID"), "string \"2\"");
        EXPECT_EQ(properties.at("Caption"), "string \"\"");
    });
    expectClean();
}

TEST_P(CmpiInstanceTest, CopesWithNumericKeysOfAnotherType)
{
    inRequest([&] {
        PathObject& parameter = RequestScope::current(broker)->path("root/vnr", "Numbered");
        ASSERT_TRUE(parameter.addNumericKey("Number", "7"));
        CmpiInstance numbered = makeCmpiInstance(cmpi(), CmpiObjectPath::lent(&parameter));
        numbered.addProperty("Number", std::uint16_t{7});
        numbered.addProperty("Caption", "x");
        const Properties properties = returned(numbered);
        EXPECT_EQ(properties.at("Number"), "uint16 7");
        EXPECT_EQ(properties.at("Caption"), "string \"x\"");
    });
    EXPECT_TRUE(broker.statistics().lifetimesClean());
}

TEST_P(CmpiInstanceTest, HandsOnOnlyWhatAListAsksFor)
{
    const char* const wanted[] = {"healthstate", "Caption", "NoSuchProperty", nullptr};
    Properties properties;
    inRequest([&] {
        const PropertyList list(wanted);
        CmpiInstance fan = makeCmpiInstance(cmpi(), makeFan("1"));
        EXPECT_TRUE(fan.wants("HealthState"));
        EXPECT_TRUE(fan.wants("DEVICEID")); // a key
        EXPECT_FALSE(fan.wants("Speed"));
        fan.addProperty("HealthState", std::uint16_t{5});
        fan.addProperty("Speed", std::uint32_t{1});
        fan.addProperty("SystemName", "box");
        CmpiArray status = makeCmpiArray(cmpi(), 1, CMPI_uint16);
        fan.addProperty("OperationalStatus", status);
        fan.addDateTimeProperty("InstallDate", cmpi(), 1);
        fan.addProperty("Caption", "a fan");
        properties = returned(fan);
    });
    expectClean();
    EXPECT_EQ(broker.statistics().of(broker.statistics().made, ObjectKind::DateTime), 0u);
    EXPECT_EQ(properties.at("HealthState"), "uint16 5");
    EXPECT_EQ(properties.at("Caption"), "string \"a fan\"");
    EXPECT_EQ(properties.count("Speed") + properties.count("OperationalStatus") + properties.count("InstallDate"), 0u);
    // The keys reach the path also where the server drops them from the properties.
    for (const char* key : {"CreationClassName=\"Fan\"", "DeviceID=\"1\"", "SystemName=\"box\""})
        EXPECT_THAT(sink.instances[0].path, testing::HasSubstr(key));
}

TEST_P(CmpiInstanceTest, HandsOnKeysAloneForAnEmptyList)
{
    const char* const wanted[] = {nullptr};
    inRequest([&] {
        const PropertyList list(wanted);
        CmpiInstance fan = makeCmpiInstance(cmpi(), makeFan("1"));
        fan.addProperty("Caption", "a fan");
        EXPECT_EQ(returned(fan).count("Caption"), 0u);
    });
    expectClean();
    EXPECT_THAT(sink.instances[0].path, testing::HasSubstr("DeviceID=\"1\""));
}

TEST_P(CmpiInstanceTest, HandsOnEverythingWithoutAList)
{
    inRequest([&] {
        const PropertyList list(nullptr);
        CmpiInstance fan = makeCmpiInstance(cmpi(), makeFan("1"));
        EXPECT_TRUE(fan.wants("Anything"));
        fan.addProperty("Caption", "a fan");
        EXPECT_EQ(returned(fan).size(), 4u);
    });
}

TEST_P(CmpiInstanceTest, FiltersClassesOfManyKeysToo)
{
    const char* const wanted[] = {"Caption", nullptr};
    inRequest([&] {
        const PropertyList list(wanted);
        CmpiObjectPath path = makePath("ManyKeys");
        for (int i = 0; i < 10; ++i)
            path.addKey("K" + std::to_string(i), std::to_string(i));
        CmpiInstance many = makeCmpiInstance(cmpi(), path);
        EXPECT_TRUE(many.wants("K9"));
        many.addProperty("Caption", "x");
        many.addProperty("K9", "9");
        EXPECT_EQ(returned(many).at("Caption"), "string \"x\"");
    });
    expectClean();
    EXPECT_THAT(sink.instances[0].path, testing::HasSubstr("K9=\"9\""));
}

TEST_P(CmpiInstanceTest, ReportsWhatTheBrokerRefuses)
{
    inRequest([&] {
        CmpiInstance fan = makeCmpiInstance(cmpi(), makeFan("1"));
        EXPECT_EQ(codeOf([&] { fan.addProperty("Undeclared", "x"); }),
                  isStandard() ? CMPI_RC_ERR_INVALID_PARAMETER : CMPI_RC_OK);
        EXPECT_EQ(codeOf([&] { fan.addProperty("Caption", std::uint16_t{1}); }),
                  isPegasus() ? CMPI_RC_ERR_INVALID_DATA_TYPE : CMPI_RC_ERR_TYPE_MISMATCH);
        EXPECT_EQ(codeOf([&] { fan.addProperty("Caption", makeCmpiObjectPath(cmpi())); }), CMPI_RC_ERR_INVALID_HANDLE);
    });
    EXPECT_TRUE(broker.statistics().lifetimesClean());
}

TEST_P(CmpiInstanceTest, NeedsAPathAndABroker)
{
    inRequest([&] {
        EXPECT_EQ(codeOf([&] { makeCmpiInstance(cmpi(), makeCmpiObjectPath(cmpi())); }), CMPI_RC_ERR_INVALID_HANDLE);
        EXPECT_EQ(codeOf([&] { makeCmpiInstance(nullptr, makeFan("1")); }), CMPI_RC_ERR_INVALID_HANDLE);
    });
    expectClean();
}

TEST_P(CmpiInstanceTest, HoldsNoMoreObjectsForManyInstancesThanForOne)
{
    inRequest([&] {
        ResultObject result(broker, sink, ResultKind::Instances);
        for (int i = 0; i < 200; ++i) {
            CmpiInstance fan = makeCmpiInstance(cmpi(), makeFan("1"));
            CmpiArray info = makeCmpiArray(cmpi(), 1, CMPI_string);
            info.setElementAt(0, "serial");
            fan.addProperty("OtherIdentifyingInfo", info);
            CmpiInstanceResult(result.cmpi()).returnInstance(fan);
        }
    });
    expectClean();
    EXPECT_EQ(sink.instances.size(), 200u);
    EXPECT_LE(broker.statistics().maxLiveAll, 5u); // path, instance, array, text
}

TEST(PropertyList, NestsAndEndsWithItsObject)
{
    const char* const outer[] = {"A", nullptr};
    const char* const inner[] = {"B", nullptr};
    EXPECT_EQ(PropertyList::current(), nullptr);
    {
        const PropertyList first(outer);
        {
            const PropertyList second(inner);
            EXPECT_EQ(PropertyList::current(), inner);
            const PropertyList third(nullptr);
            EXPECT_EQ(PropertyList::current(), nullptr);
        }
        EXPECT_EQ(PropertyList::current(), outer);
    }
    EXPECT_EQ(PropertyList::current(), nullptr);
}

TEST(PropertyList, IsInForceOnItsThreadOnly)
{
    const char* const names[] = {"A", nullptr};
    const PropertyList list(names);
    const char* const* elsewhere = names;
    std::thread([&] { elsewhere = PropertyList::current(); }).join();
    EXPECT_EQ(elsewhere, nullptr);
    EXPECT_EQ(PropertyList::current(), names);
}

} // namespace
