// What is made for which records, in which order and with which log lines. Every object writes "cxtor()" under its
// class's name when it is made, so the log is the order of creation.
#include "broker/RequestScope.h"
#include "fixture/ProviderFixture.h"

#include <algorithm>

namespace KDV::Test {
namespace {

using namespace Host;
using Lines = std::vector<std::string>;

class Population : public ProviderFixture {
protected:
    // What was made and said. The collection asks for paths, which the objects log: those lines are left out.
    Lines made()
    {
        log.clear();
        makeProvider();
        Lines lines;
        for (std::string& line : log.lines()) {
            if (line.find(" getPath()") != std::string::npos) continue;
            if (line.size() > 8 && line.compare(line.size() - 8, 8, " cxtor()") == 0) line.resize(line.size() - 8);
            lines.push_back(std::move(line));
        }
        return lines;
    }

    std::size_t madeOf(const std::string& source) const
    {
        const Lines lines = log.lines();
        return static_cast<std::size_t>(std::count(lines.begin(), lines.end(), source + " cxtor()"));
    }
};

const Lines begin{"KDVSASHBA cxtor() loading provider", "KDVSASHBA _cmpiManagedInstanceFactory"};

Lines ofHba(const std::string& index, const std::string& model)
{
    return {"SASHBA",
            "KDVSASHBA _createHbaInstances: HBA index " + index + ", model " + model,
            "KDV_SASArraySystem",
            "KDV_SASArrayController",
            "KDV_SASPhysicalPackage",
            "KDV_SASPortController",
            "KDV_SASDAPort",
            "KDV_SASFirmware",
            "KDV_SASPrimordialPool",
            "KDV_SASStorageCapabilities",
            "KDV_SASPrimordialPoolNoRaid",
            "KDV_SASStorageCapabilities",
            "KDV_SASStoragePool",
            "KDV_SASStorageCapabilities",
            "KDV_SASSCSIProtocolEndpoint",
            "KDV_SASSCSIProtocolController",
            "KDV_SASArraySystemLocation",
            "KDV_SASProduct",
            "KDV_SASArraySystemSCSIProtocolController",
            "KDV_SASArraySystemPortController",
            "KDV_SASArraySystemDAPort",
            "KDV_SASArraySystemPrimordialPool",
            "KDV_SASArraySystemPrimordialPoolNoRaid",
            "KDV_SASArraySystemStoragePool",
            "KDV_SASPrimordialPoolStoragePool",
            "KDV_SASComputerSystemArraySystem",
            "KDV_SASArraySystemArrayController",
            "KDV_SASProductPhysicalPackage",
            "KDV_SASArraySystemFirmware",
            "KDV_SASFirmwareArraySystem",
            "KDV_SASDAPortSCSIProtocolEndpoint",
            "KDV_SASPhysicalPackageArraySystem",
            "KDV_SASPhysicalPackageArraySystemLocation",
            "KDV_SASSCSIProtocolEndpointSCSIProtocolController",
            "KDV_SASPrimordialPoolStorageCapabilities",
            "KDV_SASPrimordialPoolNoRaidStorageCapabilities",
            "KDV_SASStoragePoolStorageCapabilities"};
}

const Lines volumeLinks{"KDV_SASStorageVolumeStorageSetting", "KDV_SASArraySystemStorageVolume",
                        "KDV_SASSCSIProtocolControllerStorageVolume", "KDV_SASStoragePoolStorageVolume"};

Lines ofBox(const std::string& hba, const std::string& index)
{
    return {"SASStorageBox",
            "KDVSASHBA _createEnclosureInstances: HBA index " + hba + ", Storage Box index " + index,
            "KDV_SASDriveCage",
            "KDV_SASEnclosureFirmware",
            "KDV_SASStorageEnclosure",
            "KDV_SASStorageEnclosureProcessor",
            "KDV_SASStorageEnclosureLocation",
            "KDV_SASArraySystemStorageEnclosureProcessor",
            "KDV_SASStorageEnclosureDriveCage",
            "KDV_SASStorageEnclosureEnclosureLocation",
            "KDV_SASStorageEnclosureProcessorEnclosureFirmware",
            "KDV_SASStorageEnclosureStorageEnclosureProcessor"};
}

// The ten objects of every drive.
Lines ofDrive(const std::string& hba, const std::string& index, const std::string& box)
{
    return {"KDV_SASPhyscialDisk",
            "KDVSASHBA _createPhyDrvInstances: HBA index " + hba + ", Phy Drv index " + index + ", Box index " + box,
            "KDV_SASDiskDrive",
            "KDV_SASStorageExtent",
            "KDV_SASDiskDriveFirmware",
            "KDV_SASDiskDriveFirmware disk vendor ACME model DRIVE 9",
            "KDV_SASDiskPhysicalPackage",
            "KDV_SASDiskDriveLocation",
            "KDV_SASArraySystemDiskDrive",
            "KDV_SASArraySystemStorageExtent",
            "KDV_SASDiskDriveDiskDriveFirmware",
            "KDV_SASDiskPhysicalPackageDiskDrive",
            "KDV_SASDiskPhysicalPackageDiskDriveLocation"};
}

const Lines poolLinks{"KDV_SASStoragePoolStorageExtent", "KDV_SASPrimordialPoolStorageExtent"};
const Lines carrier{"KDV_SASSmartDriveCarrierAppFirmware",
                    "KDV_SASSmartDriveCarrierBootldrFirmware",
                    "KDV_SASSmartDrvCarrierAppElementFirmwareIdentity",
                    "KDV_SASSmartDrvCarrierAppInstalledFirmwareIdentity",
                    "KDV_SASSmartDrvCarrierBootldrElementFirmwareIdentity",
                    "KDV_SASSmartDrvCarrierBootldrInstalledFirmwareIdentity"};

Lines joined(std::initializer_list<Lines> parts)
{
    Lines all;
    for (const Lines& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

TEST_P(Population, MakesNothingWithoutAnHba)
{
    EXPECT_EQ(made(), begin);
    EXPECT_EQ(machine.created(), 1u);
    EXPECT_EQ(machine.updated(), 0u);
    EXPECT_EQ(count("CIM_ManagedElement"), 0u);
    EXPECT_EQ(count("KDV_SASStorageSpecificCollection"), 0u);
    EXPECT_EQ(count("KDV_SASStorageSpecificCollectionArraySystem"), 0u);
    EXPECT_EQ(count("KDV_SASStorageGroupHostedCollection"), 0u);
}

TEST_P(Population, MakesNothingWhenTheFirstRefreshLeavesNoHba)
{
    machine.addHba(1);
    machine.whenUpdated = [](SasDataRoot& root) { root.hbas.set(nullptr); };
    EXPECT_EQ(made(), begin);
}

TEST_P(Population, HandsOverAZeroedRootAndMarksOnlyTheFirstRefresh)
{
    machine.addHba(1);
    std::vector<int> marks;
    machine.whenCreated = [&](SasDataRoot& root) {
        SasDataRoot expected;
        std::memset(&expected, 0, sizeof expected);
        expected.hbas = root.hbas;
        EXPECT_EQ(std::memcmp(&root, &expected, sizeof root), 0);
    };
    machine.whenUpdated = [&](SasDataRoot& root) { marks.push_back(root.initialLoad); };
    makeProvider();
    requests().pass();
    EXPECT_EQ(marks, (std::vector<int>{1, 0}));
}

TEST_P(Population, MakesSixteenInstancesAndNineteenAssociationsForABareHba)
{
    machine.addHba(3);
    EXPECT_EQ(made(), joined({begin,
                              ofHba("3", "2"),
                              {"KDV_SASStorageSpecificCollection", "KDV_SASStorageSpecificCollectionArraySystem",
                               "KDV_SASStorageGroupHostedCollection"}}));
}

TEST_P(Population, FollowsTheRecordsInTheOrderOfTheirLists)
{
    SasHbaRecord& first = machine.addHba(1);
    machine.addDrive(first, 7, memberUsage);
    machine.addDrive(first, 5, memberUsage);
    machine.addDrive(first, 9, spareUsage);
    machine.addDrive(first, 3, unassignedUsage).carrierAuthStatus = 1;
    machine.addDrive(first, 2, unassignedUsage, 9); // a box that is not there
    machine.addDrive(first, 4, 1);
    machine.addBox(first, 1);
    machine.addVolume(first, 0, {5, 7}, {9});
    machine.addVolume(first, 1, {7});
    SasHbaRecord& second = machine.addHba(2);
    second.modelCode = 14;

    EXPECT_EQ(made(), joined({begin,
                              ofHba("1", "2"),
                              {"SASLogicalDrives", "KDVSASHBA _createLogDrvInstances: HBA index 1, Log Drv index 0",
                               "KDV_SASStorageVolume", "KDV_SASStorageSetting", "KDV_SASStorageRedundancySet",
                               "KDVSASHBA log drive 0 created a redundancy set instance..."},
                              volumeLinks,
                              {"SASLogicalDrives", "KDVSASHBA _createLogDrvInstances: HBA index 1, Log Drv index 1",
                               "KDV_SASStorageVolume", "KDV_SASStorageSetting",
                               "KDVSASHBA log drive 1 doesn't have spare, NO redundancy set instance..."},
                              volumeLinks,
                              ofBox("1", "1"),
                              ofDrive("1", "7", "1"),
                              poolLinks,
                              {"KDV_SASStorageExtentStorageVolume", "KDV_SASStorageRedundancySetStorageExtent",
                               "KDVSASHBA log drive 0 created an KDV_SASStorageRedundancySetStorageExtent instance",
                               "KDV_SASDriveCageDiskPhysicalPackage"},
                              ofDrive("1", "5", "1"),
                              poolLinks,
                              {"KDV_SASStorageExtentStorageVolume", "KDV_SASStorageRedundancySetStorageExtent",
                               "KDVSASHBA log drive 0 created an KDV_SASStorageRedundancySetStorageExtent instance",
                               "KDV_SASDriveCageDiskPhysicalPackage"},
                              ofDrive("1", "9", "1"),
                              poolLinks,
                              {"KDV_SASSpareExtentStorageRedundancySet",
                               "KDVSASHBA log drive 0 created an KDV_SASSpareExtentStorageRedundancySet instance",
                               "KDV_SASDriveCageDiskPhysicalPackage"},
                              ofDrive("1", "3", "1"),
                              {"KDV_SASPrimordialPoolNoRaidStorageExtent", "KDV_SASDriveCageDiskPhysicalPackage"},
                              carrier,
                              ofDrive("1", "2", "9"),
                              {"KDV_SASPrimordialPoolNoRaidStorageExtent"},
                              ofDrive("1", "4", "1"),
                              poolLinks,
                              {"KDV_SASDriveCageDiskPhysicalPackage"},
                              ofHba("2", "14"),
                              {"KDV_SASStorageSpecificCollection", "KDV_SASStorageSpecificCollectionArraySystem",
                               "KDV_SASStorageSpecificCollectionArraySystem", "KDV_SASStorageGroupHostedCollection"}}));
}

TEST_P(Population, PrintsNumbersAsSignedDecimals)
{
    SasHbaRecord& hba = machine.addHba(0xFFFFFFFF);
    machine.addDrive(hba, 0xFFFFFFFE, 1).boxIdentifier = 0; // "box" 0 less the base, as 32 bits
    makeProvider();
    EXPECT_EQ(log.linesWith("_createHbaInstances"), Lines{"KDVSASHBA _createHbaInstances: HBA index -1, model 2"});
    EXPECT_EQ(log.linesWith("_createPhyDrvInstances"),
              Lines{"KDVSASHBA _createPhyDrvInstances: HBA index -1, Phy Drv index -2, Box index -268435456"});
}

TEST_P(Population, LinksAMemberToTheVolumeButToNoRedundancySetWithoutSpares)
{
    SasHbaRecord& hba = machine.addHba(1);
    machine.addVolume(hba, 0, {5});
    machine.addDrive(hba, 5, memberUsage);
    makeProvider();
    EXPECT_EQ(count("KDV_SASStorageRedundancySet"), 0u);
    EXPECT_EQ(count("KDV_SASStorageExtentStorageVolume"), 1u);
    EXPECT_EQ(count("KDV_SASStorageRedundancySetStorageExtent"), 0u);
    EXPECT_TRUE(log.linesWith("created an").empty());
}

TEST_P(Population, LinksASpareToNothingWhenItsVolumeHasNoRedundancySet)
{
    SasHbaRecord& hba = machine.addHba(1);
    SasLogicalDriveRecord& volume = machine.addVolume(hba, 0, {5});
    volume.spares[0] = 9; // left over: the count says that there is none
    machine.addDrive(hba, 9, spareUsage);
    makeProvider();
    EXPECT_EQ(count("KDV_SASSpareExtentStorageRedundancySet"), 0u);
    EXPECT_TRUE(log.linesWith("created an").empty());
}

TEST_P(Population, LinksAMemberOrSpareThatNoVolumeNamesToThePoolsOnly)
{
    SasHbaRecord& hba = machine.addHba(1);
    machine.addVolume(hba, 0, {5}, {6});
    machine.addDrive(hba, 6, memberUsage); // named as a spare, used as a member
    machine.addDrive(hba, 5, spareUsage);
    makeProvider();
    EXPECT_EQ(count("KDV_SASStorageExtentStorageVolume"), 0u);
    EXPECT_EQ(count("KDV_SASStorageRedundancySetStorageExtent"), 0u);
    EXPECT_EQ(count("KDV_SASSpareExtentStorageRedundancySet"), 0u);
    EXPECT_EQ(count("KDV_SASStoragePoolStorageExtent"), 2u);
    EXPECT_EQ(count("KDV_SASPrimordialPoolStorageExtent"), 2u);
}

TEST_P(Population, LinksADriveOutsideAnyVolumeToTheNoRaidPoolOnly)
{
    SasHbaRecord& hba = machine.addHba(1);
    machine.addVolume(hba, 0, {5}, {5});
    machine.addDrive(hba, 5, unassignedUsage);
    makeProvider();
    EXPECT_EQ(count("KDV_SASPrimordialPoolNoRaidStorageExtent"), 1u);
    for (const char* other :
         {"KDV_SASStoragePoolStorageExtent", "KDV_SASPrimordialPoolStorageExtent", "KDV_SASStorageExtentStorageVolume",
          "KDV_SASStorageRedundancySetStorageExtent", "KDV_SASSpareExtentStorageRedundancySet"})
        EXPECT_EQ(count(other), 0u) << other;
}

TEST_P(Population, GivesEveryOtherUsageBothPoolLinks)
{
    SasHbaRecord& hba = machine.addHba(1);
    std::uint32_t number = 0;
    for (const int usage : {0, 1, 2, 3, 5, 255})
        machine.addDrive(hba, number++, static_cast<std::uint8_t>(usage));
    makeProvider();
    EXPECT_EQ(count("KDV_SASStoragePoolStorageExtent"), 6u);
    EXPECT_EQ(count("KDV_SASPrimordialPoolStorageExtent"), 6u);
    EXPECT_EQ(count("KDV_SASPrimordialPoolNoRaidStorageExtent"), 0u);
}

TEST_P(Population, MakesCarrierFirmwareForEveryCarrierKindButNone)
{
    SasHbaRecord& hba = machine.addHba(1);
    std::uint32_t number = 0;
    for (const int kind : {2, 0, 1, 3, 255})
        machine.addDrive(hba, number++, memberUsage).carrierAuthStatus = static_cast<std::uint8_t>(kind);
    makeProvider();
    for (const std::string& line : carrier)
        EXPECT_EQ(madeOf(line), 4u) << line;
}

TEST_P(Population, FindsTheBoxOfItsOwnHbaOnly)
{
    SasHbaRecord& first = machine.addHba(1);
    machine.addBox(first, 1);
    SasHbaRecord& second = machine.addHba(2);
    machine.addDrive(second, 1, unassignedUsage, 1);
    makeProvider();
    EXPECT_EQ(count("KDV_SASDriveCageDiskPhysicalPackage"), 0u);
}

TEST_P(Population, KeepsInstancesWithEqualPathsAndEnumeratesThemAll)
{
    SasHbaRecord& hba = machine.addHba(1);
    put(machine.addDrive(hba, 1, unassignedUsage).serialNumber, "");
    put(machine.addDrive(hba, 2, unassignedUsage).serialNumber, "");
    makeProvider();
    EXPECT_EQ(count("KDV_SASDiskDrive"), 2u);
}

TEST_P(Population, PopulatesTenThousandDrives)
{
    log.stop();
    SasHbaRecord& hba = machine.addHba(1);
    constexpr std::uint32_t drives = 10'000;
    for (std::uint32_t number = 0; number < drives; number += 10)
        machine.addVolume(hba, number / 10, {number, number + 1, number + 2}, {number + 3});
    for (std::uint32_t box = 0; box < 250; ++box)
        machine.addBox(hba, static_cast<std::uint8_t>(box));
    for (std::uint32_t number = 0; number < drives; ++number) {
        const std::uint32_t place = number % 10;
        machine.addDrive(hba, number,
                         place < 3    ? memberUsage
                         : place == 3 ? spareUsage
                                      : unassignedUsage,
                         number % 250);
    }
    makeProvider();
    EXPECT_EQ(count("KDV_SASDiskDrive"), drives);
    EXPECT_EQ(count("KDV_SASStorageExtentStorageVolume"), 3 * drives / 10);
    EXPECT_EQ(count("KDV_SASSpareExtentStorageRedundancySet"), drives / 10);
    EXPECT_EQ(count("KDV_SASDriveCageDiskPhysicalPackage"), drives);
}

KDV_UNDER_EVERY_BROKER(Population);

} // namespace
} // namespace KDV::Test
