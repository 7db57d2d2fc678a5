// The instances of physical drives and their carriers: what is easily got wrong, each by a sentence.
#include "InstanceFixture.h"
#include "instances/KDV_SASDiskDrive.h"
#include "instances/KDV_SASDiskDriveFirmware.h"
#include "instances/KDV_SASDiskDriveLocation.h"
#include "instances/KDV_SASDiskPhysicalPackage.h"
#include "instances/KDV_SASSmartDriveCarrierAppFirmware.h"
#include "instances/KDV_SASSmartDriveCarrierBootldrFirmware.h"

namespace KDV::Test {
namespace {

class DriveInstances : public InstanceFixture {
protected:
    DriveInstances()
    {
        put(drive->serialNumber, "S-1");
        put(drive->inquiry, "ACME    DRIVE 9");
    }

    Host::CollectedInstance disk() { return publish<KDV_SASDiskDrive>(hba, drive); }
    Host::CollectedInstance application() { return publish<KDV_SASSmartDriveCarrierAppFirmware>(hba, drive); }
    Host::CollectedInstance bootLoader() { return publish<KDV_SASSmartDriveCarrierBootldrFirmware>(hba, drive); }
};

const char* const counters[] = {"SSDTotalPowerOnHours", "SSDPercentageEnduranceUsed", "SSDLifeRemaining",
                                "SSDWearStatus"};

TEST_F(DriveInstances, HaveSolidStateCountersOnlyOnSolidStateMedia)
{
    for (int type = 0; type < 256; ++type) {
        drive->mediaType = static_cast<std::uint8_t>(type);
        const auto instance = disk();
        for (const char* name : counters)
            EXPECT_EQ(instance.find(name) != nullptr, type == 3) << name << " of type " << type;
    }
}

TEST_F(DriveInstances, HaveSolidStateCountersAlsoWhenTheyAreZero)
{
    drive->mediaType = 3;
    drive->ssdPowerOnHours = drive->ssdEnduranceUsed = drive->ssdLifeRemaining = 0;
    drive->ssdWearStatus = 0;
    for (const char* name : counters)
        EXPECT_EQ(disk().value(name), "0") << name;
}

TEST_F(DriveInstances, LeaveOutTheAuthenticationStatusOfAMissingCarrierOnly)
{
    for (int status = 0; status < 256; ++status) {
        drive->carrierAuthStatus = static_cast<std::uint8_t>(status);
        EXPECT_EQ(disk().value("SmartDriveCarrierAuthStatus"), status == 2 ? "absent" : std::to_string(status));
    }
}

TEST_F(DriveInstances, PublishOneStatusAlsoWhereASecondOneIsWrittenBehindTheArraysEnd)
{
    drive->status = 10;
    EXPECT_EQ(disk().value("OperationalStatus"), "{5}");
    drive->status = 12;
    EXPECT_EQ(disk().value("OperationalStatus"), "{3}");
}

TEST_F(DriveInstances, LeaveOutTheRotationalSpeedOfUnknownCodes)
{
    for (const int code : {0, 1, 5, 255}) {
        drive->rotationalSpeed = static_cast<std::uint8_t>(code);
        EXPECT_EQ(disk().value("DriveRotationalSpeed"), "absent") << code;
    }
}

TEST_F(DriveInstances, SplitTheInquiryTextOnceForFirmwareAndPackage)
{
    put(drive->inquiry, "ATA     ST500");
    KDV_SASDiskDriveFirmware firmware(logger, "root/vnr", drive);
    KDV_SASDiskPhysicalPackage package(logger, "root/vnr", hba, drive);
    put(drive->inquiry, "ACME    DRIVE 9");
    EXPECT_EQ(published(firmware).value("Manufacturer"), "\"ATA\"");
    EXPECT_EQ(published(firmware).value("ElementName"), "\"ST500\"");
    EXPECT_EQ(published(package).value("Manufacturer"), "\"ATA\"");
    EXPECT_EQ(published(package).value("Model"), "\"ST500\"");
}

TEST_F(DriveInstances, HaveNeitherVendorNorModelOfASingleWordOrBlanks)
{
    for (const char* inquiry : {"ATA", "      ", ""}) {
        put(drive->inquiry, inquiry);
        const auto package = publish<KDV_SASDiskPhysicalPackage>(hba, drive);
        EXPECT_EQ(package.value("Manufacturer"), "\"\"") << inquiry;
        EXPECT_EQ(package.value("Model"), "\"\"") << inquiry;
        EXPECT_EQ(publish<KDV_SASDiskDriveFirmware>(drive).value("Manufacturer"), "absent") << inquiry;
    }
}

TEST_F(DriveInstances, LeaveOutWhatFirmwareWithoutAModelCannotSay)
{
    put(drive->inquiry, "ATA");
    const auto firmware = publish<KDV_SASDiskDriveFirmware>(drive);
    for (const char* name : {"ElementName", "IdentityInfoValue", "IdentityInfoType"})
        EXPECT_EQ(firmware.value(name), "absent") << name;
    EXPECT_EQ(firmware.value("Name"), "\"Disk Drive Firmware\"");
}

TEST_F(DriveInstances, AreLocatedByBayOrDeviceOrNotAtAll)
{
    struct Located {
        const char* location;
        const char* tag;
        const char* description;
        const char* position;
    };
    for (const Located& expected : {Located{"Port 2E Box 3 Bay 7", "\"7\"", "20", "\"Port:2E-Box:3-bay:7\""},
                                    Located{"Port 1I Device 4", "\"4\"", "21", "\"Port:1I-Device:4\""},
                                    Located{"", "absent", "absent", "\"Port:-Location:unknown\""},
                                    Located{"Port 1I Box 1", "absent", "absent", "\"Port:-Location:unknown\""}}) {
        put(drive->location, expected.location);
        const auto location = publish<KDV_SASDiskDriveLocation>(drive);
        EXPECT_EQ(location.value("ElementLocationTag"), expected.tag) << expected.location;
        EXPECT_EQ(location.value("ElementLocationTagDesc"), expected.description) << expected.location;
        EXPECT_EQ(location.value("PhysicalPosition"), expected.position) << expected.location;
    }
}

TEST_F(DriveInstances, HaveCarrierFirmwareOfAnEmptyModelForASingleWord)
{
    put(drive->inquiry, "ACME");
    for (const auto& instance : {application(), bootLoader()}) {
        EXPECT_EQ(instance.value("Manufacturer"), "absent");
        EXPECT_EQ(instance.value("TargetTypes"), "{\"\"}");
        EXPECT_EQ(instance.value("IdentityInfoType"), "absent");
        EXPECT_EQ(instance.value("IdentityInfoValue"), "absent");
    }
}

TEST_F(DriveInstances, HaveCarrierFirmwareForAModelOfTwoWords)
{
    for (const auto& instance : {application(), bootLoader()}) {
        EXPECT_EQ(instance.value("Manufacturer"), "\"ACME\"");
        EXPECT_EQ(instance.value("TargetTypes"), "{\"DRIVE 9\"}");
        EXPECT_EQ(instance.value("IdentityInfoValue"), "{\"VNR:DRIVE 9\", \"Storage Device\"}");
    }
}

TEST_F(DriveInstances, HaveCarrierFirmwareWithoutIdentityForAVendorFollowedByBlanks)
{
    put(drive->inquiry, "ACME    ");
    for (const auto& instance : {application(), bootLoader()}) {
        EXPECT_EQ(instance.value("Manufacturer"), "\"ACME\"");
        EXPECT_EQ(instance.value("TargetTypes"), "{\"\"}");
        EXPECT_EQ(instance.value("IdentityInfoValue"), "absent");
    }
}

TEST_F(DriveInstances, PublishCarrierFirmwareVersionZero)
{
    drive->carrierAppVersion = 0;
    drive->carrierBootldrVersion = 0;
    for (const auto& instance : {application(), bootLoader()}) {
        EXPECT_EQ(instance.value("MajorVersion"), "0");
        EXPECT_EQ(instance.value("VersionString"), "\"0\"");
    }
}

TEST_F(DriveInstances, GiveCarrierFirmwareAnotherIdentityThanItsPathHas)
{
    KDV_SASSmartDriveCarrierAppFirmware firmware(logger, "root/vnr", hba, drive);
    EXPECT_EQ(firmware.getPath().keyText("InstanceID"), "VNR:KDV_SASSmartDriveCarrierAppFirmware-S-1");
    EXPECT_EQ(published(firmware).value("InstanceID"), "\"VNR:KDV_SASSmartDriveCarrierAppFirmware-Adapter 0\"");
}

TEST_F(DriveInstances, LeaveTheClassificationOfCarrierFirmwareUnset)
{
    for (const auto& instance : {application(), bootLoader()})
        EXPECT_EQ(instance.value("Classifications"), "{NULL}");
}

} // namespace
} // namespace KDV::Test
