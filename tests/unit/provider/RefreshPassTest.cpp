#include "broker/RequestScope.h"
#include "cmpicpp/CmpiStatus.h"
#include "fixture/ProviderFixture.h"

#include <algorithm>

namespace KDV::Test {
namespace {

using namespace Host;
using Lines = std::vector<std::string>;

class Pass : public ProviderFixture {
protected:
    Pass() : hba(machine.addHba(1)) { machine.addBox(hba, 1); }

    // The provider's own lines of one pass. Single objects write under their class; the collection says under the
    // provider's name what it disposed of.
    Lines pass()
    {
        log.clear();
        const Reply reply = requests().pass();
        EXPECT_EQ(reply.rc, CMPI_RC_OK) << reply.message;
        EXPECT_EQ(reply.values, Lines{"0"});
        Lines lines = log.linesWith("KDVSASHBA ");
        lines.erase(std::remove_if(lines.begin(), lines.end(),
                                   [](const std::string& line) { return line.find("cleanup()") != std::string::npos; }),
                    lines.end());
        return lines;
    }

    SasHbaRecord& hba;
};

const Lines quiet{"KDVSASHBA ::_backgroundWorker"};

// What is published for one unassigned disk and can be hidden.
const char* const diskClasses[] = {"KDV_SASDiskDrive",
                                   "KDV_SASStorageExtent",
                                   "KDV_SASDiskDriveFirmware",
                                   "KDV_SASDiskPhysicalPackage",
                                   "KDV_SASDiskDriveLocation",
                                   "KDV_SASArraySystemDiskDrive",
                                   "KDV_SASArraySystemStorageExtent",
                                   "KDV_SASDiskDriveDiskDriveFirmware",
                                   "KDV_SASDiskPhysicalPackageDiskDrive",
                                   "KDV_SASDiskPhysicalPackageDiskDriveLocation",
                                   "KDV_SASPrimordialPoolNoRaidStorageExtent",
                                   "KDV_SASDriveCageDiskPhysicalPackage"};

TEST_P(Pass, DoesNothingWhenThereWasNoDataAtConstructionEvenIfDisksAppear)
{
    machine.clear();
    makeProvider();
    machine.addDrive(machine.addHba(1), 1, unassignedUsage);
    EXPECT_EQ(pass(), quiet);
    EXPECT_EQ(machine.updated(), 0u);
    EXPECT_EQ(count("KDV_SASDiskDrive"), 0u);
}

TEST_P(Pass, SaysNothingMoreWhenNothingChanged)
{
    machine.addDrive(hba, 1, unassignedUsage);
    makeProvider();
    EXPECT_EQ(pass(), quiet);
    EXPECT_EQ(pass(), quiet);
    EXPECT_EQ(machine.updated(), 3u);
}

TEST_P(Pass, ShowsRefreshedValuesAtOnce)
{
    SasPhysicalDriveRecord& drive = machine.addDrive(hba, 1, unassignedUsage);
    makeProvider();
    machine.whenUpdated = [&](SasDataRoot&) { put(drive.firmwareRevision, "NEW2"); };
    pass();
    EXPECT_EQ(requests().instances("KDV_SASDiskDriveFirmware").instances.at(0).value("VersionString"), "\"NEW2\"");
}

TEST_P(Pass, FindsADiskByItsNewKeyAfterARefresh)
{
    SasPhysicalDriveRecord& drive = machine.addDrive(hba, 1, unassignedUsage);
    makeProvider();
    const ObjectName before = diskDriveName(hba, drive);
    machine.whenUpdated = [&](SasDataRoot&) { put(drive.serialNumber, "CHANGED"); };
    pass();
    EXPECT_EQ(requests().get(before).rc, CMPI_RC_ERR_NOT_FOUND);
    EXPECT_EQ(requests().get(diskDriveName(hba, drive)).rc, CMPI_RC_OK);
    EXPECT_EQ(requests().associatorNames(diskDriveName(hba, drive), {"KDV_SASArraySystemDiskDrive"}).paths.size(), 1u);
}

TEST_P(Pass, PublishesANewDiskAndLogsItsLocation)
{
    machine.addDrive(hba, 1, unassignedUsage);
    makeProvider();
    SasPhysicalDriveRecord& added = machine.addDrive(hba, 2, unassignedUsage);
    added.carrierAuthStatus = 1;
    put(added.hotPlugLocation, "port 1 box 1 bay 2");
    EXPECT_EQ(pass(), (Lines{"KDVSASHBA ::_backgroundWorker",
                             "KDVSASHBA Disk hotplug -- add a new disk: host 1 disk 2 location port 1 box 1 bay 2",
                             "KDVSASHBA _createPhyDrvInstances: HBA index 1, Phy Drv index 2, Box index 1"}));
    for (const char* className : diskClasses)
        EXPECT_EQ(count(className), 2u) << className;
    EXPECT_EQ(count("KDV_SASSmartDriveCarrierAppFirmware"), 1u);
    EXPECT_EQ(count("KDV_SASSmartDriveCarrierBootldrFirmware"), 1u);
    EXPECT_EQ(count("KDV_SASSmartDrvCarrierBootldrInstalledFirmwareIdentity"), 1u);
    EXPECT_EQ(requests().get(diskDriveName(hba, added)).rc, CMPI_RC_OK);
    EXPECT_EQ(pass(), quiet);
}

TEST_P(Pass, LogsAHotAddWithTheHostNumberOfTheDriveRecord)
{
    makeProvider();
    machine.addDrive(hba, 2, unassignedUsage).hbaNumber = 77;
    EXPECT_EQ(pass().at(1), "KDVSASHBA Disk hotplug -- add a new disk: host 77 disk 2 location bay 2");
}

TEST_P(Pass, DoesNotReadALocationBeyondItsField)
{
    makeProvider();
    SasPhysicalDriveRecord& added = machine.addDrive(hba, 2, unassignedUsage);
    std::memset(added.hotPlugLocation, 'x', sizeof added.hotPlugLocation);
    const std::string whole(sizeof added.hotPlugLocation, 'x');
    EXPECT_EQ(pass().at(1), "KDVSASHBA Disk hotplug -- add a new disk: host 1 disk 2 location " + whole);
}

TEST_P(Pass, LinksANewMemberAsTheRecordsSayNow)
{
    SasLogicalDriveRecord& volume = machine.addVolume(hba, 0, {1}, {3});
    machine.addDrive(hba, 1, memberUsage);
    makeProvider();
    EXPECT_EQ(count("KDV_SASStorageExtentStorageVolume"), 1u);
    machine.whenUpdated = [&](SasDataRoot&) {
        if (volume.memberCount == 2) return;
        volume.members[1] = 2;
        volume.memberCount = 2;
        machine.addDrive(hba, 2, memberUsage);
        machine.addDrive(hba, 3, spareUsage);
    };
    pass();
    EXPECT_EQ(count("KDV_SASStorageExtentStorageVolume"), 2u);
    EXPECT_EQ(count("KDV_SASSpareExtentStorageRedundancySet"), 1u);
}

TEST_P(Pass, HidesAndPurgesAnUnassignedDiskThatVanished)
{
    machine.addDrive(hba, 1, unassignedUsage);
    SasPhysicalDriveRecord& pulled = machine.addDrive(hba, 2, unassignedUsage);
    makeProvider();
    for (const char* className : diskClasses)
        EXPECT_EQ(count(className), 2u) << className;
    machine.pull(hba, 2);
    EXPECT_EQ(pass(),
              (Lines{"KDVSASHBA ::_backgroundWorker", "KDVSASHBA Disk hotplug -- remove a disk: host 1 disk 2"}));
    for (const char* className : diskClasses)
        EXPECT_EQ(log.linesWith(std::string(className) + " dxtor()").size(), 1u) << className; // gone, not only hidden
    for (const char* className : diskClasses)
        EXPECT_EQ(count(className), 1u) << className;
    EXPECT_EQ(requests().get(diskDriveName(hba, pulled)).rc, CMPI_RC_ERR_NOT_FOUND);
    EXPECT_TRUE(requests().associatorNames(diskDriveName(hba, pulled)).paths.empty());
    EXPECT_EQ(pass(), quiet);
}

TEST_P(Pass, LeavesTheOtherLinksOfTheArraySystemInPlace)
{
    machine.addDrive(hba, 1, unassignedUsage);
    machine.addDrive(hba, 2, unassignedUsage);
    makeProvider();
    const Filters disks{"KDV_SASArraySystemDiskDrive"};
    EXPECT_EQ(requests().associatorNames(arraySystemName(hba), disks).paths.size(), 2u);
    machine.pull(hba, 1);
    pass();
    EXPECT_EQ(requests().associatorNames(arraySystemName(hba), disks).paths.size(), 1u);
}

TEST_P(Pass, KeepsTheCarrierFirmwareOfAPulledDisk)
{
    machine.addDrive(hba, 2, unassignedUsage).carrierAuthStatus = 1;
    makeProvider();
    machine.pull(hba, 2);
    pass();
    EXPECT_EQ(count("KDV_SASDiskDrive"), 0u);
    EXPECT_EQ(count("KDV_SASSmartDriveCarrierAppFirmware"), 1u);
    EXPECT_EQ(count("KDV_SASSmartDriveCarrierBootldrFirmware"), 1u);
    EXPECT_EQ(count("KDV_SASSmartDrvCarrierAppInstalledFirmwareIdentity"), 1u);
    EXPECT_EQ(count("KDV_SASSmartDrvCarrierBootldrInstalledFirmwareIdentity"), 1u);
    EXPECT_EQ(count("KDV_SASSmartDrvCarrierAppElementFirmwareIdentity"), 0u); // its disk drive is gone
    EXPECT_EQ(count("KDV_SASSmartDrvCarrierBootldrElementFirmwareIdentity"), 0u);
}

TEST_P(Pass, IgnoresThatAMemberASpareOrAPlainDiskVanished)
{
    machine.addVolume(hba, 0, {1}, {2});
    machine.addDrive(hba, 1, memberUsage);
    machine.addDrive(hba, 2, spareUsage);
    machine.addDrive(hba, 3, 1);
    makeProvider();
    const unsigned before = static_cast<unsigned>(count("CIM_ManagedElement"));
    for (std::uint32_t number : {1u, 2u, 3u})
        machine.pull(hba, number);
    EXPECT_EQ(pass(), quiet);
    EXPECT_EQ(count("KDV_SASDiskDrive"), 3u);
    EXPECT_EQ(count("CIM_ManagedElement"), before);
}

TEST_P(Pass, DoesNotAddAMemberAgainThatComesBack)
{
    machine.addVolume(hba, 0, {1});
    SasPhysicalDriveRecord& drive = machine.addDrive(hba, 1, memberUsage);
    makeProvider();
    machine.pull(hba, 1);
    EXPECT_EQ(pass(), quiet);
    machine.insert(hba, drive);
    EXPECT_EQ(pass(), quiet);
    EXPECT_EQ(count("KDV_SASDiskDrive"), 1u);
}

TEST_P(Pass, TreatsAnUnassignedDiskThatComesBackAsNew)
{
    SasPhysicalDriveRecord& drive = machine.addDrive(hba, 1, unassignedUsage);
    makeProvider();
    machine.pull(hba, 1);
    pass();
    EXPECT_EQ(count("KDV_SASDiskDrive"), 0u);
    machine.insert(hba, drive);
    EXPECT_EQ(pass().at(1), "KDVSASHBA Disk hotplug -- add a new disk: host 1 disk 1 location bay 1");
    for (const char* className : diskClasses)
        EXPECT_EQ(count(className), 1u) << className;
    machine.pull(hba, 1);
    pass();
    EXPECT_EQ(count("KDV_SASDiskDrive"), 0u);
}

TEST_P(Pass, DoesNotNoticeADiskThatWasPulledAndPutBackBetweenTwoPasses)
{
    SasPhysicalDriveRecord& drive = machine.addDrive(hba, 1, unassignedUsage);
    machine.addDrive(hba, 2, unassignedUsage);
    makeProvider();
    machine.pull(hba, 1);
    machine.insert(hba, drive); // now the last of the list
    EXPECT_EQ(pass(), quiet);
    EXPECT_EQ(count("KDV_SASDiskDrive"), 2u);
}

TEST_P(Pass, DoesNotNoticeAnotherDiskUnderTheSameNumber)
{
    machine.addDrive(hba, 1, unassignedUsage);
    makeProvider();
    machine.pull(hba, 1);
    put(machine.addDrive(hba, 1, unassignedUsage).serialNumber, "OTHER");
    EXPECT_EQ(pass(), quiet);
}

TEST_P(Pass, TakesAnotherDiskUnderAnotherNumberForOneAdditionAndOneRemoval)
{
    machine.addDrive(hba, 1, unassignedUsage);
    makeProvider();
    machine.pull(hba, 1);
    machine.addDrive(hba, 2, unassignedUsage);
    EXPECT_EQ(pass(), (Lines{"KDVSASHBA ::_backgroundWorker",
                             "KDVSASHBA Disk hotplug -- add a new disk: host 1 disk 2 location bay 2",
                             "KDVSASHBA _createPhyDrvInstances: HBA index 1, Phy Drv index 2, Box index 1",
                             "KDVSASHBA Disk hotplug -- remove a disk: host 1 disk 1"}));
}

TEST_P(Pass, TakesAChangedNumberForOneAdditionAndOneRemoval)
{
    SasPhysicalDriveRecord& drive = machine.addDrive(hba, 1, unassignedUsage);
    makeProvider();
    drive.driveNumber = 6;
    const Lines lines = pass();
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[1], "KDVSASHBA Disk hotplug -- add a new disk: host 1 disk 6 location bay 1");
    EXPECT_EQ(lines[3], "KDVSASHBA Disk hotplug -- remove a disk: host 1 disk 1");
    EXPECT_EQ(count("KDV_SASDiskDrive"), 1u);
}

TEST_P(Pass, AddsOnEveryHbaBeforeItRemovesOnAny)
{
    SasHbaRecord& second = machine.addHba(2);
    machine.addDrive(hba, 1, unassignedUsage);
    machine.addDrive(second, 1, unassignedUsage);
    makeProvider();
    machine.pull(hba, 1);
    machine.pull(second, 1);
    machine.addDrive(hba, 8, unassignedUsage);
    machine.addDrive(second, 9, unassignedUsage);
    EXPECT_EQ(pass(), (Lines{"KDVSASHBA ::_backgroundWorker",
                             "KDVSASHBA Disk hotplug -- add a new disk: host 1 disk 8 location bay 8",
                             "KDVSASHBA _createPhyDrvInstances: HBA index 1, Phy Drv index 8, Box index 1",
                             "KDVSASHBA Disk hotplug -- add a new disk: host 2 disk 9 location bay 9",
                             "KDVSASHBA _createPhyDrvInstances: HBA index 2, Phy Drv index 9, Box index 1",
                             "KDVSASHBA Disk hotplug -- remove a disk: host 1 disk 1",
                             "KDVSASHBA Disk hotplug -- remove a disk: host 2 disk 1"}));
}

TEST_P(Pass, RemovesTwoDisksOfOneHbaInOnePass)
{
    for (std::uint32_t number = 1; number <= 4; ++number)
        machine.addDrive(hba, number, unassignedUsage);
    makeProvider();
    machine.pull(hba, 1);
    machine.pull(hba, 3);
    EXPECT_EQ(pass(), (Lines{"KDVSASHBA ::_backgroundWorker", "KDVSASHBA Disk hotplug -- remove a disk: host 1 disk 1",
                             "KDVSASHBA Disk hotplug -- remove a disk: host 1 disk 3"}));
    EXPECT_EQ(count("KDV_SASDiskDrive"), 2u);
    machine.pull(hba, 2);
    machine.pull(hba, 4);
    EXPECT_EQ(pass().size(), 3u);
    EXPECT_EQ(count("KDV_SASDiskDrive"), 0u);
}

TEST_P(Pass, RemovesBothDisksOfOneNumberOnlyWhenNoRecordHasIt)
{
    machine.addDrive(hba, 1, unassignedUsage);
    put(machine.addDrive(hba, 1, unassignedUsage).serialNumber, "TWIN");
    makeProvider();
    EXPECT_EQ(count("KDV_SASDiskDrive"), 2u);
    machine.pull(hba, 1);
    EXPECT_EQ(pass(), quiet);
    EXPECT_EQ(count("KDV_SASDiskDrive"), 2u);
    machine.pull(hba, 1);
    EXPECT_EQ(pass().size(), 3u);
    EXPECT_EQ(count("KDV_SASDiskDrive"), 0u);
}

TEST_P(Pass, AddsOneOfTwoNewRecordsWithOneNumber)
{
    makeProvider();
    machine.addDrive(hba, 1, unassignedUsage);
    machine.addDrive(hba, 1, unassignedUsage);
    EXPECT_EQ(pass().size(), 3u);
    EXPECT_EQ(count("KDV_SASDiskDrive"), 1u);
}

TEST_P(Pass, DoesNotFollowVolumesBoxesAndHbas)
{
    machine.addDrive(hba, 1, unassignedUsage);
    makeProvider();
    machine.addBox(hba, 2);
    machine.addVolume(hba, 0, {1});
    machine.addDrive(machine.addHba(2), 1, unassignedUsage);
    EXPECT_EQ(pass(), quiet);
    EXPECT_EQ(count("KDV_SASDriveCage"), 1u);
    EXPECT_EQ(count("KDV_SASStorageVolume"), 0u);
    EXPECT_EQ(count("KDV_SASArraySystem"), 1u);
}

TEST_P(Pass, ChecksTheStateOfADiskInThePassThatFindsIt)
{
    makeProvider();
    requests().enableIndications();
    SasPhysicalDriveRecord& added = machine.addDrive(hba, 1, unassignedUsage);
    added.acknowledged = 1;
    pass();
    EXPECT_EQ(added.oldStatus, 2);
    EXPECT_EQ(added.acknowledged, 0);
}

TEST_P(Pass, ChecksStatesAfterTheHotPlugAndBeforeTheCleanUp)
{
    machine.addDrive(hba, 1, unassignedUsage);
    makeProvider();
    requests().enableIndications();
    machine.pull(hba, 1);
    pass();
    const Lines lines = log.lines();
    const auto removed =
        std::find(lines.begin(), lines.end(), "KDVSASHBA Disk hotplug -- remove a disk: host 1 disk 1");
    const auto checked = std::find(lines.begin(), lines.end(), "KDVSASHBA _checkSasIndications");
    const auto purged = std::find(lines.begin(), lines.end(), "KDV_SASDiskDrive dxtor()");
    ASSERT_NE(purged, lines.end());
    EXPECT_LT(removed, checked);
    EXPECT_LT(checked, purged);
}

TEST_P(Pass, FollowsDisksWhileNobodyListensButChecksNoStates)
{
    SasPhysicalDriveRecord& drive = machine.addDrive(hba, 1, unassignedUsage);
    drive.status = 4;
    makeProvider();
    machine.addDrive(hba, 2, unassignedUsage);
    EXPECT_EQ(pass().size(), 3u);
    EXPECT_EQ(drive.oldStatus, 0);
}

TEST_P(Pass, EndsWithAnErrorWhenTheDataLibraryThrowsAndTheNextOneRuns)
{
    machine.addDrive(hba, 1, unassignedUsage);
    makeProvider();
    machine.whenUpdated = [](SasDataRoot&) { throw std::runtime_error("adapter reset"); };
    const Reply reply = requests().pass();
    EXPECT_EQ(reply.rc, CMPI_RC_ERR_FAILED);
    EXPECT_EQ(reply.message, "adapter reset");
    machine.whenUpdated = nullptr;
    EXPECT_EQ(count("KDV_SASDiskDrive"), 1u); // the lock was given back
    EXPECT_EQ(pass(), quiet);
}

TEST_P(Pass, RemovesWhatWasMadeOfADiskWhoseAdditionFailed)
{
    makeProvider();
    machine.addDrive(hba, 1, unassignedUsage);
    for (std::uint64_t n = 1;; ++n) {
        broker.failAfter(n, CMPI_RC_ERR_FAILED);
        requests().pass();
        const bool fired = broker.faultFired();
        broker.failAfter(0, CMPI_RC_OK);
        machine.pull(hba, 1);
        EXPECT_EQ(requests().pass().rc, CMPI_RC_OK);
        for (const char* className : diskClasses)
            EXPECT_EQ(count(className), 0u) << className << " after fault " << n;
        machine.addDrive(hba, 1, unassignedUsage);
        if (!fired) break;
    }
    EXPECT_EQ(requests().pass().rc, CMPI_RC_OK);
    EXPECT_EQ(count("KDV_SASDiskDrive"), 1u);
}

TEST_P(Pass, ServesWhatIsThereThroughManyPullsAndInsertions)
{
    log.stop();
    for (std::uint32_t number = 0; number < 30; ++number)
        machine.addDrive(hba, number, number % 3 ? unassignedUsage : memberUsage);
    makeProvider();
    std::uint32_t next = 100;
    for (int round = 0; round < 300; ++round) {
        if (round % 2)
            machine.addDrive(hba, next++, unassignedUsage);
        else if (next > 100)
            machine.pull(hba, next - 1);
        ASSERT_EQ(requests().pass().rc, CMPI_RC_OK);
        std::size_t now = 0;
        for (auto* drive = hba.physicalDrives.get(); drive; drive = drive->next.get())
            ++now;
        ASSERT_EQ(count("KDV_SASDiskDrive"), now);
    }
}

KDV_UNDER_EVERY_BROKER(Pass);

} // namespace
} // namespace KDV::Test
