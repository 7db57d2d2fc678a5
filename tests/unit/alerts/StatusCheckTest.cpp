#include "alerts/StatusCheck.h"

#include "AlertFixture.h"

namespace KDV::Test {
namespace {

TEST(StatusChanged, ForANeverCheckedElementOnlyAboveTwo)
{
    EXPECT_FALSE(_isStatusChanged(0, 0, 2));
    EXPECT_FALSE(_isStatusChanged(0, 1, 2));
    EXPECT_FALSE(_isStatusChanged(0, 2, 2));
    EXPECT_TRUE(_isStatusChanged(0, 3, 2));
    EXPECT_TRUE(_isStatusChanged(0, 255, 2));
}

TEST(StatusChanged, ForAKnownElementWheneverItDiffersInEitherDirection)
{
    EXPECT_FALSE(_isStatusChanged(2, 2, 2));
    EXPECT_TRUE(_isStatusChanged(2, 3, 2));
    EXPECT_TRUE(_isStatusChanged(3, 2, 2));
    EXPECT_TRUE(_isStatusChanged(2, 0, 2));
    EXPECT_TRUE(_isStatusChanged(1, 2, 2));
}

class StatusChecks : public AlertFixture {
protected:
    StatusChecks()
        : volume(machine.addVolume(hba, 4, {})), box(machine.addBox(hba, 1)),
          drive(machine.addDrive(hba, 7, unassignedUsage))
    {
    }

    SasLogicalDriveRecord& volume;
    SasStorageBoxRecord& box;
    SasPhysicalDriveRecord& drive;
};

TEST_P(StatusChecks, AreSilentForAMachineFirstSeenHealthyAndRememberIt)
{
    watch();
    EXPECT_EQ(eventsOfPass(), Events{});
    EXPECT_EQ(hba.oldControllerStatus, 2);
    EXPECT_EQ(volume.oldRedundancyState, 2);
    EXPECT_EQ(drive.oldStatus, 2);
    EXPECT_EQ(box.oldPowerStatus, 2);
    EXPECT_EQ(box.oldFanStatus, 2);
    EXPECT_EQ(box.oldTemperatureStatus, 2);
}

TEST_P(StatusChecks, AlertAFaultAndTheReturnToNormal)
{
    watch();
    EXPECT_EQ(eventsOfPass(), Events{});
    drive.status = 3;
    EXPECT_EQ(eventsOfPass(), Events{"204"});
    EXPECT_EQ(eventsOfPass(), Events{});
    drive.status = 2;
    EXPECT_EQ(eventsOfPass(), Events{"201"});
}

TEST_P(StatusChecks, AlertAFaultThatIsThereAtFirstSight)
{
    drive.status = 3;
    watch();
    EXPECT_EQ(eventsOfPass(), Events{"204"});
    EXPECT_EQ(eventsOfPass(), Events{});
}

TEST_P(StatusChecks, AreSilentAtFirstSightOfOneAndAlertTheChangeToTwo)
{
    drive.status = 1;
    watch();
    EXPECT_EQ(eventsOfPass(), Events{});
    EXPECT_EQ(drive.oldStatus, 1);
    drive.status = 2;
    EXPECT_EQ(eventsOfPass(), Events{"201"});
}

TEST_P(StatusChecks, TakeAStatusThatFallsToZeroForAChangeAndItsReturnForAFirstSight)
{
    watch();
    eventsOfPass();
    drive.status = 0;
    EXPECT_EQ(eventsOfPass(), Events{}); // a change without an event
    EXPECT_EQ(linesWith("unsupported"), Lines{"KDV_SASIndication unsupported physical drive indication: status 0"});
    drive.status = 2;
    EXPECT_EQ(eventsOfPass(), Events{});
    EXPECT_EQ(linesWith("Send indication"), Lines{});
}

TEST_P(StatusChecks, GoInTheOrderOfHbaVolumeDiskAndBoxWithPowerFanTemperature)
{
    watch();
    eventsOfPass();
    box.temperatureStatus = 4;
    box.fanStatus = 3;
    box.powerStatus = 5;
    drive.status = 4;
    volume.redundancyState = 5;
    hba.controllerStatus = 3;
    EXPECT_EQ(eventsOfPass(), (Events{"2", "102", "202", "301", "306", "309"}));
    EXPECT_EQ(
        linesWith("KDVSASHBA "),
        (Lines{"KDVSASHBA ::_backgroundWorker", "KDVSASHBA _checkSasIndications",
               "KDVSASHBA Send indication: HBA 1: old status 2, new status 3", "KDVSASHBA _checkLogDrvIndications",
               "KDVSASHBA Send indication: HBA 1 Log Drv 4: old status 2, new Status 5",
               "KDVSASHBA _checkPhyDrvIndications",
               "KDVSASHBA Send indication: HBA 1 Phy Drv 7: old status 2, new status 4",
               "KDVSASHBA Send indication: HBA 1 box 1: old power status 2, new status 5",
               "KDVSASHBA Send indication: HBA 1 box 1: old fan status 2, new status 3",
               "KDVSASHBA Send indication: HBA 1 box 1: old temp sensor status 2, new status 4"}));
}

TEST_P(StatusChecks, GoThroughEachHbaAndItsElementsInOrder)
{
    SasHbaRecord& second = machine.addHba(2);
    SasPhysicalDriveRecord& other = machine.addDrive(second, 1, memberUsage);
    SasPhysicalDriveRecord& third = machine.addDrive(hba, 8, spareUsage);
    drive.status = 3;
    third.status = 12;
    other.status = 10;
    watch();
    EXPECT_EQ(eventsOfPass(), (Events{"204", "402", "401"}));
}

TEST_P(StatusChecks, SendOneAlertEachWhenFanAndPowerSupplyChangeTogetherPowerFirst)
{
    watch();
    eventsOfPass();
    box.fanStatus = 5;
    box.powerStatus = 3;
    EXPECT_EQ(eventsOfPass(), (Events{"303", "305"}));
}

TEST_P(StatusChecks, AcknowledgeEveryDriveAndNothingElse)
{
    drive.acknowledged = 77;
    watch();
    const SasPhysicalDriveRecord before = drive;
    eventsOfPass();
    EXPECT_EQ(drive.acknowledged, 0);
    SasPhysicalDriveRecord expected = before;
    expected.acknowledged = 0;
    expected.oldStatus = before.status;
    EXPECT_EQ(std::memcmp(&expected, &drive, sizeof drive), 0);
}

TEST_P(StatusChecks, LeaveTheOldBytesAloneWhileIndicationsAreOffAndAlertLater)
{
    watch();
    eventsOfPass();
    EXPECT_EQ(requests().disableIndications().rc, CMPI_RC_OK);
    drive.status = 3;
    drive.acknowledged = 9;
    EXPECT_EQ(eventsOfPass(), Events{});
    EXPECT_EQ(linesWith("_checkSasIndications"), Lines{});
    EXPECT_EQ(drive.oldStatus, 2);
    EXPECT_EQ(drive.acknowledged, 9);
    EXPECT_EQ(requests().enableIndications().rc, CMPI_RC_OK);
    EXPECT_EQ(eventsOfPass(), Events{"204"});
}

TEST_P(StatusChecks, GoOnAfterAFilterWasDeactivated)
{
    makeProvider();
    EXPECT_EQ(requests().activateFilter().rc, CMPI_RC_OK);
    EXPECT_EQ(requests().deactivateFilter().rc, CMPI_RC_OK);
    drive.status = 3;
    EXPECT_EQ(eventsOfPass(), Events{"204"});
}

TEST_P(StatusChecks, CheckADiskThatWasInsertedInTheSamePass)
{
    watch();
    eventsOfPass();
    machine.addDrive(hba, 9, unassignedUsage).status = 4;
    EXPECT_EQ(eventsOfPass(), Events{"202"});
}

TEST_P(StatusChecks, SayNothingOfADiskThatWasPulled)
{
    watch();
    eventsOfPass();
    drive.status = 4;
    machine.pull(hba, 7);
    EXPECT_EQ(eventsOfPass(), Events{});
    EXPECT_EQ(drive.oldStatus, 2);
}

TEST_P(StatusChecks, EndAtASenderThatFailsAndTakeTheRestUpInTheNextPass)
{
    watch();
    eventsOfPass();
    volume.redundancyState = 3;
    drive.status = 3;
    box.fanStatus = 3;
    caught.alerts.clear();
    broker.failAfter(1, CMPI_RC_ERR_FAILED); // the first broker call of the first alert
    const Reply reply = requests().pass();
    EXPECT_TRUE(broker.faultFired());
    broker.failAfter(0, CMPI_RC_OK);
    EXPECT_EQ(reply.rc, CMPI_RC_ERR_FAILED);
    EXPECT_EQ(caught.alerts.size(), 0u);
    EXPECT_EQ(volume.oldRedundancyState, 2);
    EXPECT_EQ(drive.oldStatus, 2);
    EXPECT_EQ(box.oldFanStatus, 2);
    EXPECT_EQ(eventsOfPass(), (Events{"103", "204", "306"}));
}

TEST_P(StatusChecks, ThatFailLeaveTheDisposalOfAPulledDiskToTheNextPass)
{
    watch();
    eventsOfPass();
    machine.pull(hba, 7);
    volume.redundancyState = 3;
    broker.failAfter(1, CMPI_RC_ERR_FAILED);
    EXPECT_EQ(requests().pass().rc, CMPI_RC_ERR_FAILED);
    broker.failAfter(0, CMPI_RC_OK);
    EXPECT_EQ(linesWith("cleanup() disposed"), Lines{});
    EXPECT_EQ(eventsOfPass(), Events{"103"});
    EXPECT_EQ(linesWith("cleanup() disposed").size(), 1u);
    eventsOfPass();
    EXPECT_EQ(linesWith("cleanup() disposed"), Lines{});
}

TEST_P(StatusChecks, SendNothingAnyMoreOnceTheServerEnds)
{
    watch();
    eventsOfPass();
    EXPECT_TRUE(provider->cleanup(CmpiCpp::CmpiContext(nullptr), true));
    drive.status = 3;
    EXPECT_EQ(eventsOfPass(), Events{});
    EXPECT_EQ(drive.oldStatus, 2);
}

KDV_UNDER_EVERY_BROKER(StatusChecks);

} // namespace
} // namespace KDV::Test
