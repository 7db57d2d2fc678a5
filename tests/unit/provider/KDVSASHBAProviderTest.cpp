#include "broker/RequestScope.h"
#include "cmpicpp/CmpiStatus.h"
#include "common/KDVUtil.h"
#include "fixture/ProviderFixture.h"

#include <atomic>
#include <thread>

namespace KDV::Test {
namespace {

using namespace Host;

class Provider : public ProviderFixture {
protected:
    Provider() : hba(machine.addHba(1)), drive(machine.addDrive(hba, 5, unassignedUsage)) {}

    SasHbaRecord& hba;
    SasPhysicalDriveRecord& drive;
};

TEST_P(Provider, LogsItsLife)
{
    makeProvider();
    EXPECT_EQ(log.lines().front(), "KDVSASHBA cxtor() loading provider");
    log.clear();
    dropProvider();
    EXPECT_EQ(log.lines().front(), "KDVSASHBA dxtor() unloading provider");
}

TEST_P(Provider, GivesItsBrokerToTheInstances)
{
    makeProvider();
    EXPECT_EQ(provider->getBroker(), broker.cmpi());
    EXPECT_EQ(KDVUtil::getBroker(), broker.cmpi());
}

TEST_P(Provider, AnswersEveryReadOperation)
{
    makeProvider();
    const Requests ask = requests();
    EXPECT_EQ(ask.instanceNames("KDV_SASDiskDrive").paths.size(), 1u);
    EXPECT_EQ(ask.instances("KDV_SASDiskDrive").instances.size(), 1u);
    const Reply one = ask.get(diskDriveName(hba, drive));
    ASSERT_EQ(one.instances.size(), 1u);
    EXPECT_EQ(one.instances[0].value("DeviceID"), "\"SN1-5\"");
    const Filters link{"KDV_SASArraySystemDiskDrive"};
    EXPECT_EQ(ask.associatorNames(diskDriveName(hba, drive), link).paths.size(), 1u);
    EXPECT_EQ(ask.associators(diskDriveName(hba, drive), link).instances.size(), 1u);
    const Filters reference{nullptr, "KDV_SASArraySystemDiskDrive"};
    EXPECT_EQ(ask.referenceNames(diskDriveName(hba, drive), reference).paths.size(), 1u);
    EXPECT_EQ(ask.references(diskDriveName(hba, drive), reference).instances.size(), 1u);
}

TEST_P(Provider, TakesAPathWithoutNamespaceForOneOfItsOwn)
{
    makeProvider();
    ObjectName name = diskDriveName(hba, drive);
    const Reply reply = requests().associatorNames(name, {"KDV_SASArraySystemDiskDrive"});
    name.nameSpace.clear();
    EXPECT_EQ(requests().associatorNames(name, {"KDV_SASArraySystemDiskDrive"}).paths, reply.paths);
    EXPECT_EQ(reply.paths.size(), 1u);
}

TEST_P(Provider, AnswersNotFoundForAnInstanceThatItDoesNotHold)
{
    makeProvider();
    ObjectName name = diskDriveName(hba, drive);
    name.keys[1].second = "nobody";
    const Reply reply = requests().get(name);
    EXPECT_EQ(reply.rc, CMPI_RC_ERR_NOT_FOUND);
    EXPECT_TRUE(reply.instances.empty());
    EXPECT_EQ(requests().get(diskDriveName(hba, drive)).rc, CMPI_RC_OK); // the lock was given back
}

TEST_P(Provider, RefusesWritesAndQueriesAsNotSupported)
{
    makeProvider();
    const ObjectName name = diskDriveName(hba, drive);
    EXPECT_EQ(requests().create(name).rc, CMPI_RC_ERR_NOT_SUPPORTED);
    EXPECT_EQ(requests().modify(name).rc, CMPI_RC_ERR_NOT_SUPPORTED);
    EXPECT_EQ(requests().remove(name).rc, CMPI_RC_ERR_NOT_SUPPORTED);
    EXPECT_EQ(requests().query().rc, CMPI_RC_ERR_NOT_SUPPORTED);
    EXPECT_EQ(count("KDV_SASDiskDrive"), 1u);
}

TEST_P(Provider, AgreesToCleanupOnlyWhenTheServerIsEnding)
{
    makeProvider();
    RequestScope scope(broker, "root/vnr");
    const CmpiCpp::CmpiContext context(&scope.context());
    EXPECT_TRUE(provider->cleanup(context, true));
    EXPECT_FALSE(provider->cleanup(context, false));
    EXPECT_TRUE(provider->unloadOK(context));
}

TEST_P(Provider, RunsAPassForPerformWorkAndReturnsZero)
{
    makeProvider();
    const unsigned before = machine.updated();
    EXPECT_EQ(requests().invoke("PerformWork").values, std::vector<std::string>{"0"});
    EXPECT_EQ(machine.updated(), before + 1);
}

TEST_P(Provider, TakesTheMethodNameInAnyLetterCase)
{
    makeProvider();
    const unsigned before = machine.updated();
    EXPECT_EQ(requests().invoke("performWORK").values, std::vector<std::string>{"0"});
    EXPECT_EQ(machine.updated(), before + 1);
}

TEST_P(Provider, ReturnsOneForAnotherMethodAndRunsNoPass)
{
    makeProvider();
    const unsigned before = machine.updated();
    const Reply reply = requests().invoke("PerformWor");
    EXPECT_EQ(reply.rc, CMPI_RC_OK);
    EXPECT_EQ(reply.values, std::vector<std::string>{"1"});
    EXPECT_EQ(requests().invoke("").values, std::vector<std::string>{"1"});
    EXPECT_EQ(machine.updated(), before);
    EXPECT_TRUE(log.linesWith("_backgroundWorker").empty());
}

TEST_P(Provider, DoesNotLookAtTheClassThatAMethodIsCalledOn)
{
    makeProvider();
    const unsigned before = machine.updated();
    EXPECT_EQ(requests().invoke("PerformWork", "KDV_SASDiskDrive").values, std::vector<std::string>{"0"});
    EXPECT_EQ(machine.updated(), before + 1);
}

class ProviderFlag : public Provider {
protected:
    bool checksStates()
    {
        log.clear();
        EXPECT_EQ(requests().pass().rc, CMPI_RC_OK);
        return !log.linesWith("KDVSASHBA _checkSasIndications").empty();
    }
};

TEST_P(ProviderFlag, ChecksNoStatesUntilSomebodyListens)
{
    makeProvider();
    EXPECT_FALSE(checksStates());
    EXPECT_EQ(requests().authorizeFilter().rc, CMPI_RC_OK);
    EXPECT_EQ(requests().mustPoll().rc, CMPI_RC_OK);
    EXPECT_FALSE(checksStates());
}

TEST_P(ProviderFlag, ChecksStatesAfterEnableIndicationsUntilTheyAreDisabled)
{
    makeProvider();
    EXPECT_EQ(requests().enableIndications().rc, CMPI_RC_OK);
    EXPECT_TRUE(checksStates());
    EXPECT_EQ(requests().disableIndications().rc, CMPI_RC_OK);
    EXPECT_FALSE(checksStates());
}

TEST_P(ProviderFlag, StaysEnabledWhenTheLastFilterIsDeactivated)
{
    makeProvider();
    EXPECT_EQ(requests().activateFilter().rc, CMPI_RC_OK);
    EXPECT_TRUE(checksStates());
    EXPECT_EQ(requests().deactivateFilter().rc, CMPI_RC_OK);
    EXPECT_TRUE(checksStates());
    EXPECT_EQ(requests().disableIndications().rc, CMPI_RC_OK);
    EXPECT_FALSE(checksStates());
}

TEST_P(Provider, LosesTheTextOfAStandardExceptionDuringPopulationToTheLog)
{
    machine.whenCreated = [](SasDataRoot&) { throw std::runtime_error("no adapter answers"); };
    try {
        makeProvider();
        FAIL() << "the provider was made";
    } catch (const std::exception& failure) {
        EXPECT_STREQ(failure.what(), std::exception().what());
    }
    EXPECT_EQ(log.linesWith("error:"),
              std::vector<std::string>{
                  "KDVSASHBA error: :_cmpiManagedInstanceFactory() has raised exception: no adapter answers"});
}

TEST_P(Provider, LetsEveryOtherExceptionDuringPopulationThrough)
{
    machine.whenCreated = [](SasDataRoot&) { throw 42; };
    EXPECT_THROW(makeProvider(), int);
    machine.whenCreated = [](SasDataRoot&) { throw CmpiCpp::CmpiStatus(4, "the broker is ending"); };
    try {
        makeProvider();
        FAIL() << "the provider was made";
    } catch (const CmpiCpp::CmpiStatus& status) {
        EXPECT_EQ(status.code(), 4);
        EXPECT_STREQ(status.str(), "the broker is ending");
    }
    EXPECT_TRUE(log.linesWith("error:").empty());
}

TEST_P(Provider, DestroysEveryInstanceThatWasMadeBeforePopulationFailed)
{
    std::size_t brokerCalls = 0;
    for (std::size_t n = 1;; ++n) {
        log.clear();
        broker.failAfter(n, CMPI_RC_ERR_FAILED);
        try {
            makeProvider();
            break;
        } catch (const CmpiCpp::CmpiStatus&) {
            ++brokerCalls;
        }
        EXPECT_FALSE(log.linesWith("SASHBA cxtor()").empty());
        EXPECT_EQ(log.linesWith(" cxtor()").size(), log.linesWith(" dxtor()").size() + 1); // the provider has no dxtor
    }
    broker.failAfter(0, CMPI_RC_OK);
    EXPECT_GT(brokerCalls, 0u);
    EXPECT_EQ(count("KDV_SASDiskDrive"), 1u);
}

TEST_P(Provider, ServesRequestsFromManyThreadsWhilePassesRun)
{
    for (std::uint32_t number = 10; number < 20; ++number)
        machine.addDrive(hba, number, unassignedUsage);
    makeProvider();
    machine.whenUpdated = [this, pulled = false](SasDataRoot&) mutable {
        if (pulled)
            for (std::uint32_t number = 10; number < 15; ++number)
                machine.addDrive(hba, number, unassignedUsage);
        else
            for (std::uint32_t number = 10; number < 15; ++number)
                machine.pull(hba, number);
        pulled = !pulled;
    };
    const Requests ask = requests();
    std::atomic<bool> done{false};
    std::vector<std::thread> readers;
    for (int i = 0; i < 3; ++i) {
        readers.emplace_back([&, i] {
            while (!done) {
                const std::size_t drives = ask.instances("KDV_SASDiskDrive").instances.size();
                EXPECT_TRUE(drives == 11 || drives == 6) << drives; // never half of a pass
                EXPECT_EQ(ask.get(diskDriveName(hba, drive)).rc, CMPI_RC_OK);
                EXPECT_EQ(ask.associatorNames(diskDriveName(hba, drive)).paths.size(),
                          ask.referenceNames(diskDriveName(hba, drive)).paths.size());
                if (i == 0)
                    ask.enableIndications();
                else
                    ask.disableIndications();
            }
        });
    }
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(ask.pass().values, std::vector<std::string>{"0"});
    done = true;
    for (std::thread& reader : readers)
        reader.join();
}

KDV_UNDER_EVERY_BROKER(Provider);
KDV_UNDER_EVERY_BROKER(ProviderFlag);

} // namespace
} // namespace KDV::Test
