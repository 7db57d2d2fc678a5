#include "StandIn.h"
#include "associations/KDV_SASPrimordialPoolStoragePool.h"
#include "associations/KDV_SASSCSIProtocolControllerStorageVolume.h"
#include "associations/KDV_SASStoragePoolStorageVolume.h"
#include "broker/Broker.h"
#include "broker/CollectingSink.h"
#include "broker/InstanceObject.h"
#include "broker/RequestScope.h"
#include "instances/KDV_SASStoragePool.h"
#include "instances/KDV_SASStorageVolume.h"
#include "machine/TestMachine.h"

#include <gtest/gtest.h>

namespace KDV::Test {
namespace {

using namespace Host;

class SpaceConsumed : public testing::TestWithParam<Profile> {
protected:
    SpaceConsumed()
        : broker(schema(), {GetParam(), true}), scope(broker, "root/vnr"), hba(machine.addHba(1)),
          volume(machine.addVolume(hba, 7, {}))
    {
        KDVUtil::setBroker(broker.cmpi());
    }

    static std::string published(CmpiManagedInstance& link, const char* property)
    {
        const CmpiCpp::CmpiInstance instance = link.getInstance();
        return collect(*static_cast<const InstanceObject*>(instance.raw())).value(property);
    }

    std::string ofVolume(std::uint32_t sizeWord)
    {
        volume.size = sizeWord;
        const StandIn pool(logger, "KDV_SASStoragePool");
        const KDV_SASStorageVolume end(logger, "root/vnr", &hba, &volume);
        KDV_SASStoragePoolStorageVolume link(logger, "root/vnr", &pool, &end);
        return published(link, "SpaceConsumed");
    }

    Logger logger{"test"};
    Broker broker;
    RequestScope scope;
    TestMachine machine;
    SasHbaRecord& hba;
    SasLogicalDriveRecord& volume;
};

TEST_P(SpaceConsumed, OfAVolumeIsItsSizeInMebibytesAsBytes)
{
    EXPECT_EQ(ofVolume(0), "0");
    EXPECT_EQ(ofVolume(1), "1048576");
    EXPECT_EQ(ofVolume(4095), "4293918720");
}

TEST_P(SpaceConsumed, OfAVolumeWrapsAtFourGibibytes)
{
    EXPECT_EQ(ofVolume(4096), "0");
    EXPECT_EQ(ofVolume(4097), "1048576");
    EXPECT_EQ(ofVolume(0xFFFFFFFF), "4293918720");
}

TEST_P(SpaceConsumed, OfAVolumeFollowsTheRecord)
{
    const StandIn pool(logger, "KDV_SASStoragePool");
    const KDV_SASStorageVolume end(logger, "root/vnr", &hba, &volume);
    KDV_SASStoragePoolStorageVolume link(logger, "root/vnr", &pool, &end);
    volume.size = 3;
    EXPECT_EQ(published(link, "SpaceConsumed"), "3145728");
}

TEST_P(SpaceConsumed, OfAPoolIsTheTotalOfMembersAndSparesInSixtyFourBits)
{
    machine.addDrive(hba, 1, memberUsage).size = 0xFFFFFFFF;
    machine.addDrive(hba, 2, spareUsage).size = 2;
    machine.addDrive(hba, 3, unassignedUsage).size = 1000;
    machine.addDrive(hba, 4, 1).size = 1000;
    const StandIn primordial(logger, "KDV_SASPrimordialPool");
    const KDV_SASStoragePool pool(logger, "root/vnr", &hba);
    KDV_SASPrimordialPoolStoragePool link(logger, "root/vnr", &primordial, &pool);
    EXPECT_EQ(published(link, "SpaceConsumed"), "4294967297");
    machine.addDrive(hba, 5, memberUsage); // the pool's total was summed when it was made
    EXPECT_EQ(published(link, "SpaceConsumed"), "4294967297");
}

TEST_P(SpaceConsumed, BesidesThatTheDeviceNumberIsTheOneOfTheVolumesConstruction)
{
    const StandIn controller(logger, "KDV_SASSCSIProtocolController");
    volume.logicalDriveNumber = 4294967295u;
    const KDV_SASStorageVolume end(logger, "root/vnr", &hba, &volume);
    KDV_SASSCSIProtocolControllerStorageVolume link(logger, "root/vnr", &controller, &end);
    volume.logicalDriveNumber = 8;
    EXPECT_EQ(published(link, "DeviceNumber"), "\"4294967295\"");
}

INSTANTIATE_TEST_SUITE_P(Brokers, SpaceConsumed, testing::ValuesIn(allProfiles),
                         [](const auto& made) { return std::string(profileName(made.param)); });

} // namespace
} // namespace KDV::Test
