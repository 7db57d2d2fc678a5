#include "LoadedProvider.h"
#include "broker/RequestScope.h"
#include "cmpicpp/CmpiStatus.h"
#include "harness/LogCapture.h"

#include <stdexcept>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

namespace KDV::Test {
namespace {

using namespace Host;
using Lines = std::vector<std::string>;

class EntryPoints : public testing::TestWithParam<Profile> {
protected:
    EntryPoints() : machine(loadedMachine())
    {
        machine.clear();
        SasHbaRecord& hba = machine.addHba(1);
        machine.addDrive(hba, 1, unassignedUsage);
    }

    ~EntryPoints() override { machine.clear(); }

    // No table from any of the four, whose lines end with the given texts.
    void expectRefusals(LoadedProvider& library, const std::string& text)
    {
        LogCapture log;
        EXPECT_EQ(library.createInstanceMI(), nullptr);
        EXPECT_EQ(library.createAssociationMI(), nullptr);
        EXPECT_EQ(library.createMethodMI(), nullptr);
        EXPECT_EQ(library.createIndicationMI(), nullptr);
        EXPECT_EQ(log.linesWith("constructor threw"),
                  (Lines{"KDVSASHBA error: _Generic_Create_InstanceMI: KDVSASHBA constructor threw " + text,
                         "KDVSASHBA error: _Generic_Create_AssociationMI: KDVSASHBA constructor threw " + text,
                         "KDVSASHBA error: _Generic_Create_MethodMI: KDVSASHBA constructor threw " + text,
                         "KDVSASHBA error: _Generic_Create_IndicationMI: KDVSASHBA constructor threw " + text}));
    }

    TestMachine& machine;
};

TEST_P(EntryPoints, HandOutOneProviderAndCountEveryCall)
{
    LoadedProvider library(GetParam());
    const auto* provider = providerOf(library.createInstanceMI());
    ASSERT_NE(provider, nullptr);
    EXPECT_EQ(provider->refcount(), 1u);
    EXPECT_EQ(providerOf(library.createAssociationMI()), provider);
    EXPECT_EQ(provider->refcount(), 2u);
    EXPECT_EQ(providerOf(library.createMethodMI()), provider);
    EXPECT_EQ(providerOf(library.createIndicationMI()), provider);
    EXPECT_EQ(provider->refcount(), 4u);
    EXPECT_EQ(providerOf(library.createInstanceMI()), provider);
    EXPECT_EQ(provider->refcount(), 5u);
    EXPECT_EQ(machine.created(), 1u);
}

TEST_P(EntryPoints, TakeTheNameInAnyLetterCaseForTheSameProvider)
{
    LoadedProvider library(GetParam());
    const auto* provider = providerOf(library.createInstanceMI("kdvsashba"));
    ASSERT_NE(provider, nullptr);
    EXPECT_EQ(providerOf(library.createInstanceMI("KDVSASHBA")), provider);
    EXPECT_EQ(providerOf(library.createAssociationMI("KdvSasHba")), provider);
    EXPECT_EQ(providerOf(library.createMethodMI("kDVSASHBA")), provider);
    EXPECT_EQ(providerOf(library.createIndicationMI("kdvsasHBA")), provider);
    EXPECT_EQ(provider->refcount(), 5u);
    EXPECT_EQ(machine.created(), 1u);
}

TEST_P(EntryPoints, GiveNothingAndSayNothingForAnotherName)
{
    LoadedProvider library(GetParam());
    LogCapture log;
    for (const char* name : {"", "KDVSASHB", "KDVSASHBA ", "KDVFCHBA"}) {
        EXPECT_EQ(library.createInstanceMI(name), nullptr);
        EXPECT_EQ(library.createAssociationMI(name), nullptr);
        EXPECT_EQ(library.createMethodMI(name), nullptr);
        EXPECT_EQ(library.createIndicationMI(name), nullptr);
    }
    EXPECT_EQ(library.createInstanceMI(nullptr), nullptr);
    EXPECT_EQ(log.lines(), Lines{});
    EXPECT_EQ(machine.created(), 0u);
    EXPECT_NE(library.createInstanceMI(), nullptr);
}

TEST_P(EntryPoints, LogAStandardExceptionWithoutItsText)
{
    LoadedProvider library(GetParam());
    machine.whenCreated = [](SasDataRoot&) { throw std::runtime_error("the adapter does not answer"); };
    expectRefusals(library, "std::exception: std::exception");
}

TEST_P(EntryPoints, LogAStatusOfTheBrokerWithItsText)
{
    LoadedProvider library(GetParam());
    machine.whenCreated = [](SasDataRoot&) { throw CmpiCpp::CmpiStatus(4, "too many objects"); };
    expectRefusals(library, "CmpiStatus exception: too many objects");
}

TEST_P(EntryPoints, LogAnyOtherException)
{
    LoadedProvider library(GetParam());
    machine.whenCreated = [](SasDataRoot&) { throw 42; };
    expectRefusals(library, "unknown exception");
}

TEST_P(EntryPoints, TryAgainAfterAFailedConstruction)
{
    LoadedProvider library(GetParam());
    machine.whenCreated = [](SasDataRoot&) { throw std::runtime_error("not yet"); };
    EXPECT_EQ(library.createInstanceMI(), nullptr);
    EXPECT_EQ(library.createMethodMI(), nullptr);
    machine.whenCreated = nullptr;
    const auto* provider = providerOf(library.createInstanceMI());
    ASSERT_NE(provider, nullptr);
    EXPECT_EQ(provider->refcount(), 1u); // nothing is left of the failures
    EXPECT_EQ(machine.created(), 3u);
    EXPECT_EQ(library.requests().instanceNames("KDV_SASDiskDrive").paths.size(), 1u);
}

TEST_P(EntryPoints, TryAgainAfterEveryFailureOfTheBroker)
{
    LoadedProvider library(GetParam());
    Broker& broker = brokerOf(GetParam());
    std::uint64_t failures = 0;
    const CmpiCpp::CmpiProvider* provider = nullptr;
    for (std::uint64_t n = 1; !provider; ++n) {
        broker.failAfter(n, CMPI_RC_ERR_FAILED);
        provider = providerOf(library.createInstanceMI());
        if (!provider) ++failures;
        ASSERT_LT(n, 10'000u);
    }
    broker.failAfter(0, CMPI_RC_OK);
    EXPECT_GT(failures, 0u);
    EXPECT_EQ(provider->refcount(), 1u);
    EXPECT_TRUE(broker.statistics().lifetimesClean());
    EXPECT_EQ(library.requests().instanceNames("KDV_SASDiskDrive").paths.size(), 1u);
}

TEST_P(EntryPoints, MakeOneProviderForManyThreads)
{
    LoadedProvider library(GetParam());
    std::vector<std::thread> threads;
    std::vector<const CmpiCpp::CmpiProvider*> providers(16);
    for (std::size_t i = 0; i < providers.size(); ++i) {
        threads.emplace_back([&, i] {
            switch (i % 4) {
            case 0:
                providers[i] = providerOf(library.createInstanceMI());
                break;
            case 1:
                providers[i] = providerOf(library.createAssociationMI());
                break;
            case 2:
                providers[i] = providerOf(library.createMethodMI("kdvsashba"));
                break;
            default:
                providers[i] = providerOf(library.createIndicationMI());
                break;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    ASSERT_NE(providers[0], nullptr);
    for (const auto* provider : providers)
        EXPECT_EQ(provider, providers[0]);
    EXPECT_EQ(providers[0]->refcount(), 16u);
    EXPECT_EQ(machine.created(), 1u);
}

TEST_P(EntryPoints, LogUnderTheProviderNameAndTheProcess)
{
    LoadedProvider library(GetParam());
    LogCapture log;
    machine.whenCreated = [failed = false](SasDataRoot&) mutable {
        if (!failed) {
            failed = true;
            throw std::runtime_error("once");
        }
    };
    EXPECT_EQ(library.createInstanceMI("kdvsashba"), nullptr);
    EXPECT_NE(library.createInstanceMI(), nullptr);
    const std::string root = "KDVSASHBA:" + std::to_string(getpid());
    std::size_t loading = 0;
    const Lines lines = log.lines();
    const Lines sources = log.sources();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].find("cxtor() loading provider") == std::string::npos) continue;
        ++loading;
        EXPECT_EQ(sources[i], root); // also at the second try
    }
    EXPECT_EQ(loading, 2u);
}

TEST_P(EntryPoints, RefuseToUnloadUntilTheServerEnds)
{
    LoadedProvider library(GetParam());
    library.requests();
    for (int round = 0; round < 2; ++round)
        for (int table = 0; table < 4; ++table)
            EXPECT_EQ(library.cleanup(false, table), CMPI_RC_DO_NOT_UNLOAD);
    EXPECT_EQ(library.requests().instanceNames("KDV_SASDiskDrive").paths.size(), 1u); // still served
    for (int round = 0; round < 2; ++round)
        for (int table = 3; table >= 0; --table)
            EXPECT_EQ(library.cleanup(true, table), CMPI_RC_OK);
}

// A server that disables the provider and enables it again keeps the library in memory, but not its broker.
TEST_P(EntryPoints, MakeANewProviderAfterATerminatingCleanup)
{
    LoadedProvider library(GetParam());
    library.requests();
    const auto* const first = providerOf(library.createInstanceMI());
    EXPECT_EQ(library.cleanup(false, 0), CMPI_RC_DO_NOT_UNLOAD);
    EXPECT_EQ(providerOf(library.createInstanceMI()), first);
    EXPECT_EQ(library.cleanup(true, 0), CMPI_RC_OK);

    machine.addHba(2);
    const Requests again = library.requestsAfresh();
    const auto* const second = providerOf(library.createInstanceMI());
    ASSERT_NE(second, nullptr);
    EXPECT_NE(second, first);
    EXPECT_EQ(providerOf(library.createMethodMI()), second);
    EXPECT_EQ(second->refcount(), 6u);
    EXPECT_EQ(machine.created(), 2u);
    EXPECT_EQ(again.instanceNames("KDV_SASArraySystem").paths.size(), 2u);
    EXPECT_EQ(again.pass().values, Lines{"0"});
    EXPECT_EQ(library.cleanup(false, 0), CMPI_RC_DO_NOT_UNLOAD); // it has a schedule of its own
}

TEST_P(EntryPoints, ServeTheMachineOfTheDataLibraryInPlace)
{
    LoadedProvider library(GetParam());
    put(machine.addHba(2).name, "Another adapter");
    const Reply reply = library.requests().instances("KDV_SASArraySystem");
    EXPECT_EQ(reply.rc, CMPI_RC_OK) << reply.message;
    ASSERT_EQ(reply.instances.size(), 2u);
    EXPECT_EQ(reply.instances[0].value("Name"), "\"Adapter 1\"");
    EXPECT_EQ(reply.instances[1].value("Name"), "\"Another adapter\"");
}

TEST_P(EntryPoints, ServeNothingButTheWorkerWithoutAnHba)
{
    machine.clear();
    LoadedProvider library(GetParam());
    const Requests ask = library.requests();
    for (const char* className : {"KDV_SASArraySystem", "KDV_SASStorageSpecificCollection", "KDV_SASDiskDrive",
                                  "KDV_SASStorageGroupHostedCollection", "CIM_ManagedElement"}) {
        const Reply reply = ask.instances(className);
        EXPECT_EQ(reply.rc, CMPI_RC_OK) << className << ": " << reply.message;
        EXPECT_TRUE(reply.instances.empty()) << className;
    }
    EXPECT_EQ(ask.pass().values, Lines{"0"});
    EXPECT_EQ(machine.updated(), 0u);
    EXPECT_EQ(ask.instances("KDV_AutoStartSASHBA").instances.size(), 1u);
}

TEST_P(EntryPoints, ServeTheWorkerInstanceOnWhichAPassIsAskedFor)
{
    LoadedProvider library(GetParam());
    const Requests ask = library.requests();
    const Reply reply = ask.instances("KDV_AutoStartSASHBA");
    ASSERT_EQ(reply.instances.size(), 1u);
    EXPECT_EQ(reply.instances[0].value("ProviderName"), "\"KDVSASHBA\"");
    EXPECT_EQ(reply.instances[0].value("WorkerMethodNameSpace"), "\"root/vnr\"");
    EXPECT_EQ(reply.instances[0].value("WorkerPollInterval"), "30");
    EXPECT_EQ(reply.instances[0].value("WorkerPollIntervalStagger"), "28");
    EXPECT_EQ(ask.get({"KDV_AutoStartSASHBA", {{"ProviderName", "KDVSASHBA"}}}).instances.size(), 1u);
    EXPECT_EQ(ask.pass().values, Lines{"0"});
    EXPECT_EQ(ask.invoke("SomethingElse").values, Lines{"1"});
}

TEST_P(EntryPoints, ReachTheProviderThroughBothWrappers)
{
    LoadedProvider library(GetParam());
    const Requests ask = library.requests();
    LogCapture log;
    EXPECT_EQ(ask.get({"KDV_SASDiskDrive",
                       {{"CreationClassName", "KDV_SASDiskDrive"},
                        {"DeviceID", "nobody"},
                        {"SystemCreationClassName", "KDV_SASArraySystem"},
                        {"SystemName", "Adapter 1"}}})
                  .rc,
              CMPI_RC_ERR_NOT_FOUND);
    EXPECT_FALSE(log.linesWith("getInstance").empty()); // the logging one speaks of every call
    EXPECT_EQ(ask.activateFilter().rc, CMPI_RC_OK);
    EXPECT_EQ(ask.pass().values, Lines{"0"});
    EXPECT_FALSE(log.linesWith("_checkSasIndications").empty());
    EXPECT_EQ(ask.disableIndications().rc, CMPI_RC_OK);
}

INSTANTIATE_TEST_SUITE_P(Brokers, EntryPoints, testing::ValuesIn(allProfiles),
                         [](const auto& made) { return std::string(profileName(made.param)); });

} // namespace
} // namespace KDV::Test
