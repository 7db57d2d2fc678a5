// The n-th call of the broker fails, for every n, in each operation that a server may ask for. A fault ends in an error
// or does not show; it never leaks, crashes or stays. Leaks are seen by the address sanitizer and by the test broker.
#include "cmpicpp/CmpiStatus.h"
#include "fixture/ProviderFixture.h"

#include <functional>

namespace KDV::Test {
namespace {

using namespace Host;
using Operation = std::function<Reply(const Requests&)>;

class BrokerFault : public ProviderFixture {
protected:
    BrokerFault()
    {
        log.stop();
        SasHbaRecord& hba = machine.addHba(1);
        machine.addBox(hba, 1);
        machine.addVolume(hba, 0, {1}, {2});
        machine.addDrive(hba, 1, memberUsage).carrierAuthStatus = 1;
        machine.addDrive(hba, 2, spareUsage);
        SasPhysicalDriveRecord& drive = machine.addDrive(hba, 3, unassignedUsage);
        disk = diskDriveName(hba, drive);
        arraySystem = arraySystemName(hba);
    }

    // Returns how many faults ended in an error.
    std::uint64_t tryEveryFault(const Operation& operation)
    {
        const Requests ask = requests();
        const Reply good = operation(ask);
        EXPECT_EQ(good.rc, CMPI_RC_OK) << good.message;
        std::uint64_t errors = 0;
        for (std::uint64_t n = 1;; ++n) {
            broker.failAfter(n, CMPI_RC_ERR_ACCESS_DENIED);
            const Reply reply = operation(ask);
            const bool fired = broker.faultFired();
            broker.failAfter(0, CMPI_RC_OK);
            if (!fired) break;
            if (reply.rc == CMPI_RC_OK)
                expectSame(reply, good, n);
            else
                ++errors;
            if (n % 7 == 0) expectSame(operation(ask), good, n); // the next request works
            EXPECT_TRUE(broker.statistics().lifetimesClean()) << "fault " << n;
            if (HasFailure()) break;
        }
        expectSame(operation(ask), good, 0);
        return errors;
    }

    static void expectSame(const Reply& reply, const Reply& good, std::uint64_t n)
    {
        EXPECT_EQ(reply.rc, good.rc) << "fault " << n << ": " << reply.message;
        EXPECT_EQ(reply.paths, good.paths) << "fault " << n;
        EXPECT_EQ(reply.values, good.values) << "fault " << n;
        ASSERT_EQ(reply.instances.size(), good.instances.size()) << "fault " << n;
        for (std::size_t i = 0; i < good.instances.size(); ++i) {
            EXPECT_EQ(reply.instances[i].path, good.instances[i].path) << "fault " << n;
            ASSERT_EQ(reply.instances[i].properties.size(), good.instances[i].properties.size()) << "fault " << n;
            for (std::size_t p = 0; p < good.instances[i].properties.size(); ++p)
                EXPECT_EQ(reply.instances[i].properties[p].value, good.instances[i].properties[p].value)
                    << "fault " << n << " in " << good.instances[i].properties[p].name;
        }
    }

    ObjectName disk;
    ObjectName arraySystem;
};

TEST_P(BrokerFault, DuringConstructionLeavesNothingBehind)
{
    std::uint64_t errors = 0;
    for (std::uint64_t n = 1;; ++n) {
        broker.failAfter(n, CMPI_RC_ERR_FAILED);
        try {
            makeProvider();
        } catch (const CmpiCpp::CmpiStatus&) {
            ++errors;
            EXPECT_EQ(broker.statistics().liveClones, 0) << "fault " << n;
        }
        const bool fired = broker.faultFired();
        broker.failAfter(0, CMPI_RC_OK);
        if (!fired) break;
        dropProvider();
    }
    EXPECT_GT(errors, 0u);
    EXPECT_EQ(count("KDV_SASDiskDrive"), 3u);
}

TEST_P(BrokerFault, DuringEnumerationOfEveryClass)
{
    makeProvider();
    for (const auto& declared : broker.repository().findNamespace("root/vnr")->classes()) {
        const std::string name(declared->name());
        if (name.compare(0, 4, "KDV_") != 0 || requests().instanceNames(name.c_str()).paths.empty()) continue;
        EXPECT_GT(tryEveryFault([&](const Requests& ask) { return ask.instances(name.c_str()); }), 0u) << name;
        EXPECT_GT(tryEveryFault([&](const Requests& ask) { return ask.instanceNames(name.c_str()); }), 0u) << name;
        if (HasFailure()) break;
    }
}

TEST_P(BrokerFault, DuringGetInstance)
{
    makeProvider();
    EXPECT_GT(tryEveryFault([&](const Requests& ask) { return ask.get(disk); }), 0u);
    EXPECT_GT(tryEveryFault([&](const Requests& ask) { return ask.get(disk, {"Name", "OperationalStatus"}); }), 0u);
}

TEST_P(BrokerFault, DuringAssociationRequests)
{
    makeProvider();
    for (const ObjectName& name : {disk, arraySystem}) {
        EXPECT_GT(tryEveryFault([&](const Requests& ask) { return ask.associators(name); }), 0u);
        EXPECT_GT(tryEveryFault([&](const Requests& ask) { return ask.associatorNames(name); }), 0u);
        EXPECT_GT(tryEveryFault([&](const Requests& ask) { return ask.references(name); }), 0u);
        EXPECT_GT(tryEveryFault([&](const Requests& ask) { return ask.referenceNames(name); }), 0u);
    }
}

TEST_P(BrokerFault, DuringPassesThatFollowDisks)
{
    makeProvider();
    for (std::uint64_t n = 1; n <= 40; ++n) {
        broker.failAfter(n, CMPI_RC_ERR_FAILED);
        machine.whenUpdated = [&](SasDataRoot& root) {
            SasHbaRecord& first = *root.hbas.get();
            if (n % 2)
                machine.addDrive(first, static_cast<std::uint32_t>(100 + n), unassignedUsage);
            else
                machine.pull(first, static_cast<std::uint32_t>(100 + n - 1));
        };
        requests().pass();
        broker.failAfter(0, CMPI_RC_OK);
        machine.whenUpdated = nullptr;
        EXPECT_EQ(requests().pass().rc, CMPI_RC_OK);
        EXPECT_TRUE(broker.statistics().lifetimesClean());
        EXPECT_EQ(requests().get(disk).rc, CMPI_RC_OK);
    }
}

KDV_UNDER_EVERY_BROKER(BrokerFault);

} // namespace
} // namespace KDV::Test
