// The changes that the default scenario plays, pass after pass, as they reach a listener: each alert in the pass in
// which its change is due, and nothing else. The provider's own clock may make a pass at any time, so the expectation
// is held against the number of passes that were made, not against those that the test asked for.
#include "AlertsFixture.h"
#include "hosttest/CimClient.h"

#include <set>

#include <gmock/gmock.h>

using namespace KDV::Host::Test;

namespace {

constexpr unsigned roundPasses = 12; // passes after which the scenario begins again
constexpr unsigned pulledAt = 5;     // the refresh at which the disk is away; the next one sees it back

struct Due {
    unsigned atPass; // of the scenario, whose first pass is the provider's own start
    Alert alert;
};

const std::string shelf = "KDV_SASStorageEnclosureProcessor KDV_SASStorageEnclosureProcessor-0-2";
const std::string volume = "KDV_SASStorageVolume StorageVolume:1";
const std::string predicting = "KDV_SASDiskDrive IA1CZ90R0104";
const std::string failing = "KDV_SASDiskDrive SP0711K4X004";

const std::vector<Due> oneRound = {
    {2, {"305", shelf, "5"}},  {3, {"304", shelf, "2"}},    {4, {"204", predicting, "3"}},
    {7, {"103", volume, "5"}}, {7, {"202", failing, "5"}},  {8, {"103", volume, "5"}},
    {9, {"101", volume, "2"}}, {10, {"201", failing, "2"}}, {11, {"201", predicting, "2"}},
};

// What must have been sent when the worker has made so many passes.
std::vector<Alert> dueAfter(unsigned passes)
{
    std::vector<Alert> alerts;
    for (unsigned pass = 2; pass <= passes + 1; ++pass)
        for (const Due& due : oneRound)
            if (due.atPass % roundPasses == pass % roundPasses) alerts.push_back(due.alert);
    return alerts;
}

class Timeline : public AlertsFixture {
protected:
    // A host that made no pass before somebody listened; nearly always the first one is.
    void startAndSubscribe()
    {
        for (int attempt = 0; attempt < 10; ++attempt) {
            machine.start(shippedScenario("default.json"));
            const Subscribed subscribed = subscribe(listener, "timeline");
            if (machine.passes() == 0) return;
            remove(subscribed.subscription);
            remove(subscribed.destination);
        }
        FAIL() << "a pass is always made before a client can subscribe";
    }

    TestListener listener;
};

std::string pulledDisk()
{
    return instanceName("KDV_SASDiskDrive", {{"CreationClassName", "KDV_SASDiskDrive"},
                                             {"DeviceID", "IA1CZ90R0101"},
                                             {"SystemCreationClassName", "KDV_SASArraySystem"},
                                             {"SystemName", "ACME Linkline 12G-8e 3F00A17C"}});
}

} // namespace

TEST_F(Timeline, EveryChangeIsAlertedInThePassInWhichItIsDue)
{
    listener.listen();
    startAndSubscribe();
    while (machine.passes() < 2 * roundPasses) {
        machine.performWork();
        const unsigned before = machine.passes();
        ASSERT_TRUE(listener.waitForTaken(dueAfter(before).size())) << "after pass " << before;
        const std::vector<Alert> taken = alertsOf(listener.taken());
        const std::vector<Alert> most = dueAfter(machine.passes());
        ASSERT_LE(taken.size(), most.size()) << "after pass " << before;
        ASSERT_EQ(taken, std::vector<Alert>(most.begin(), most.begin() + static_cast<std::ptrdiff_t>(taken.size())));
    }
    EXPECT_GE(listener.taken().size(), 2 * oneRound.size());
    EXPECT_TRUE(numberedInOrder(listener.taken()));
    EXPECT_EQ(listener.received().size(), listener.taken().size()) << "each once";
}

TEST_F(Timeline, AnAlertCarriesWhatAnOperatorNeeds)
{
    listener.listen();
    startAndSubscribe();
    while (machine.passes() < 3)
        machine.performWork();
    ASSERT_TRUE(listener.waitForTaken(3));
    const TestListener::Message disk = listener.taken()[2];
    EXPECT_EQ(disk.value("EventID"), "204");
    EXPECT_EQ(disk.value("ProviderName"), "KDVSASHBA");
    EXPECT_EQ(disk.value("SystemCreationClassName"), "KDV_ComputerSystem");
    EXPECT_EQ(disk.value("HWSerialNumber"), "IA1CZ90R0104");
    EXPECT_EQ(disk.value("HWManufacturer"), "INITECH");
    EXPECT_EQ(disk.value("DeviceModel"), "ARCHIVE 4000-7");
    EXPECT_EQ(disk.value("HWFirmwareVersion"), "IA1C");
    EXPECT_EQ(disk.value("HWLogicalLocation"), "Port 1E Box 2 Bay 5");
    EXPECT_EQ(disk.value("Summary"), "Physical drive predicts its failure");
    EXPECT_EQ(disk.value("AlertingElementFormat"), "2");
    EXPECT_NE(between(disk.body, "<PROPERTY.ARRAY NAME=\"RecommendedActions\"", "</PROPERTY.ARRAY>").find("<VALUE>"),
              std::string::npos);
    const std::vector<std::string> identifiers = listener.takenValues("IndicationIdentifier");
    EXPECT_EQ(std::set<std::string>(identifiers.begin(), identifiers.end()).size(), identifiers.size());
}

TEST_F(Timeline, APulledDiskIsGoneForOnePassAndThenBack)
{
    machine.start(shippedScenario("default.json"));
    const std::size_t disks = machine.countNames("KDV_SASDiskDrive");
    ASSERT_EQ(disks, 24u);
    bool seenGone = false, seenBack = false;
    for (unsigned asked = 0; asked < 10 * roundPasses && !(seenGone && seenBack); ++asked) {
        const unsigned before = machine.passes();
        machine.performWork();
        const std::size_t now = machine.countNames("KDV_SASDiskDrive");
        const unsigned error = errorCode(machine.ask("GetInstance", parameter("InstanceName", pulledDisk())));
        const unsigned made = machine.passes();
        if (made != before + 1) continue; // another pass came in between: nobody can tell which state was seen
        const bool gone = (made + 1) % roundPasses == pulledAt;
        EXPECT_EQ(now, gone ? disks - 1 : disks) << "after pass " << made;
        EXPECT_EQ(error, gone ? 6u : 0u) << "after pass " << made;
        seenBack = seenBack || (seenGone && !gone);
        seenGone = seenGone || gone;
    }
    EXPECT_TRUE(seenGone && seenBack);
}

TEST_F(Timeline, APulledDiskTakesAllThatBelongsToItAlong)
{
    const nlohmann::json pulled = file.disk(9);
    serveFile();
    const std::size_t elements = machine.countNames("CIM_ManagedElement");
    const std::size_t packages = machine.countNames("KDV_SASDiskPhysicalPackage");
    const std::size_t links = machine.countNames("CIM_Dependency");
    file.hba()["physicalDrives"].erase(9);
    pass();
    EXPECT_EQ(errorCode(machine.ask("GetInstance", parameter("InstanceName", pulledDisk()))), 6u);
    EXPECT_EQ(machine.countNames("KDV_SASDiskDrive"), 23u);
    EXPECT_EQ(machine.countNames("KDV_SASDiskPhysicalPackage"), packages - 1);
    EXPECT_LT(machine.countNames("CIM_Dependency"), links);
    EXPECT_LT(machine.countNames("CIM_ManagedElement"), elements - 1);
    machine.performWork();
    EXPECT_EQ(machine.countNames("KDV_SASDiskDrive"), 23u);

    auto& disks = file.hba()["physicalDrives"];
    disks.insert(disks.begin() + 9, pulled);
    pass();
    EXPECT_EQ(errorCode(machine.ask("GetInstance", parameter("InstanceName", pulledDisk()))), 0u);
    EXPECT_EQ(machine.countNames("KDV_SASDiskDrive"), 24u);
    EXPECT_EQ(machine.countNames("KDV_SASDiskPhysicalPackage"), packages);
    EXPECT_EQ(machine.countNames("CIM_Dependency"), links);
    EXPECT_EQ(machine.countNames("CIM_ManagedElement"), elements);
}

TEST_F(Timeline, AMachineThatFailedAsAWholeIsAlertedElementByElementOnce)
{
    listener.listen();
    machine.start(shippedScenario("everything-failed.json"));
    subscribe(listener, "failed");
    machine.performWork();
    const std::string box = "KDV_SASStorageEnclosureProcessor KDV_SASStorageEnclosureProcessor-0-1";
    std::vector<Alert> expected = {{"2", "KDV_SASArrayController ACME Linkline 12G-8e DEAD0001", "6"},
                                   {"102", "KDV_SASStorageVolume StorageVolume:0", "6"},
                                   {"102", "KDV_SASStorageVolume StorageVolume:1", "6"}};
    for (int disk = 0; disk < 6; ++disk)
        expected.push_back({"202", "KDV_SASDiskDrive XF00FAIL000" + std::to_string(disk), "5"});
    for (const auto& [event, severity] : {std::pair{"301", "5"}, std::pair{"305", "5"}, std::pair{"309", "6"}})
        expected.push_back({event, box, severity});
    ASSERT_TRUE(listener.waitForTaken(expected.size()));
    EXPECT_EQ(alertsOf(listener.taken()), expected);
    machine.performWork();
    EXPECT_EQ(machine.countInLog("indication sent with success"), expected.size()) << "nothing is sent twice";
}
