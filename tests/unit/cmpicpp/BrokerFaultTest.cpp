// Every call on the broker fails once in its turn: each failure must come out as the CmpiStatus with the broker's code,
// and nothing made so far may be left behind.
#include "BrokerTest.h"
#include "cmpicpp/CmpiInstance.h"
#include "cmpicpp/CmpiInstanceProvider.h"
#include "cmpicpp/CmpiResults.h"

#include <optional>

using namespace CmpiCpp;
using namespace KDV::Host;

namespace {

constexpr CMPIrc injected = CMPI_RC_ERR_ACCESS_DENIED; // nothing here gives this code by itself
constexpr int mostCalls = 2000;

class BrokerFaultTest : public BrokerTest {
protected:
    // Calls body with the first, second, ... broker call failing, until it runs through. Gives the number of failures.
    template <class Body>
    int failEachCall(Body body)
    {
        int failures = 0;
        for (int n = 1; n < mostCalls; ++n) {
            broker.failAfter(static_cast<std::uint64_t>(n), injected);
            int code = 0;
            inRequest([&] { code = codeOf(body); });
            const bool fired = broker.faultFired();
            broker.failAfter(0, CMPI_RC_OK);
            expectClean();
            if (!fired) {
                EXPECT_EQ(code, 0);
                return failures;
            }
            EXPECT_EQ(code, injected) << "call " << n;
            ++failures;
        }
        ADD_FAILURE() << "never ran through";
        return failures;
    }

    CmpiInstance makeFullFan() const
    {
        CmpiInstance fan = makeCmpiInstance(cmpi(), makeFan("1"));
        fan.addProperty("HealthState", std::uint16_t{5});
        fan.addProperty("Caption", "a fan");
        fan.addDateTimeProperty("InstallDate", cmpi(), 1500000000000000u);
        CmpiArray info = makeCmpiArray(cmpi(), 6, CMPI_string);
        for (CMPICount i = 0; i < info.size(); ++i)
            info.setElementAt(i, "serial");
        fan.addProperty("OtherIdentifyingInfo", info);
        return fan;
    }
};
KDV_FOR_EACH_PROFILE(BrokerFaultTest);

TEST_P(BrokerFaultTest, LeavesNothingBehindWhileAnInstanceIsMade)
{
    EXPECT_GT(failEachCall([&] { makeFullFan(); }), 20);
}

TEST_P(BrokerFaultTest, LeavesNothingBehindUnderAPropertyList)
{
    const char* const wanted[] = {"Caption", "OtherIdentifyingInfo", nullptr};
    EXPECT_GT(failEachCall([&] {
                  const PropertyList list(wanted);
                  makeFullFan();
              }),
              15);
    EXPECT_EQ(PropertyList::current(), nullptr);
}

TEST_P(BrokerFaultTest, LeavesNothingBehindWhilePathsAreCompared)
{
    EXPECT_GT(failEachCall([&] {
                  CmpiObjectPath link = makePath("Cooling");
                  link.setHost("server");
                  link.addKey("Antecedent", makeFan("1"));
                  const CmpiObjectPath copy = link;
                  static_cast<void>(copy.fingerprint());
                  EXPECT_TRUE(copy == link);
                  EXPECT_FALSE(copy.str().empty());
                  static_cast<void>(link.keyText("Antecedent"));
                  const CmpiObjectPath made = remakeCmpiObjectPath(cmpi(), copy);
              }),
              40);
}

// A provider that answers with one full instance and one path.
class FullProvider : public CmpiInstanceProvider {
public:
    void enumInstances(const CmpiContext&, const CmpiObjectPath& classPath, const char* const* properties,
                       const CmpiInstanceResult& result) override
    {
        const PropertyList list(properties);
        CmpiObjectPath path = makeCmpiObjectPath(getBroker(), classPath.getNameSpace(), classPath.getClassName());
        path.addKey("DeviceID", "1");
        CmpiInstance fan = makeCmpiInstance(getBroker(), path);
        fan.addProperty("Caption", "a fan");
        result.returnInstance(fan);
    }
    void enumInstanceNames(const CmpiContext&, const CmpiObjectPath&, const CmpiObjectPathResult& result) override
    {
        result.returnObjectPath(*kept);
    }
    std::optional<CmpiObjectPath> kept;
};

TEST_P(BrokerFaultTest, ReachesTheServerAsTheStatusOfTheCall)
{
    FullProvider provider;
    provider.setBroker(cmpi());
    inRequest([&] { provider.kept = makeFan("1").copy(); });
    CMPIInstanceMI* mi = provider.getInstanceMI();
    bool ranThrough = false;
    for (std::uint64_t n = 1; n < mostCalls && !ranThrough; ++n) {
        RequestScope scope(broker, "root/vnr");
        PathObject& path = scope.path("root/vnr", "Fan");
        ResultObject instances(broker, sink, ResultKind::Instances);
        ResultObject names(broker, sink, ResultKind::ObjectPaths);
        broker.failAfter(n, injected);
        const CMPIStatus first = mi->ft->enumerateInstances(mi, &scope.context(), instances.cmpi(), &path, nullptr);
        const CMPIStatus second = mi->ft->enumerateInstanceNames(mi, &scope.context(), names.cmpi(), &path);
        ranThrough = !broker.faultFired();
        broker.failAfter(0, CMPI_RC_OK);
        EXPECT_EQ(first.rc + second.rc, ranThrough ? CMPI_RC_OK : injected) << "call " << n;
        EXPECT_EQ(instances.isDone() && names.isDone(), ranThrough);
    }
    EXPECT_TRUE(ranThrough);
    provider.kept.reset();
    const BrokerStatistics counted = broker.statistics();
    EXPECT_EQ(counted.liveClones, 0);
    EXPECT_EQ(counted.doubleReleases, 0u);
    EXPECT_EQ(counted.usesAfterRelease, 0u);
    EXPECT_EQ(counted.lentReleases, 0u);
    EXPECT_EQ(counted.foreignReleases, 0u);
}

} // namespace
