// The instances of storage boxes: what is easily got wrong, each by a sentence.
#include "InstanceFixture.h"
#include "instances/KDV_SASDriveCage.h"
#include "instances/KDV_SASEnclosureFirmware.h"
#include "instances/KDV_SASStorageEnclosure.h"
#include "instances/KDV_SASStorageEnclosureLocation.h"
#include "instances/KDV_SASStorageEnclosureProcessor.h"

#include <algorithm>

namespace KDV::Test {
namespace {

class BoxInstances : public InstanceFixture {
protected:
    BoxInstances()
    {
        box->status = box->fanStatus = box->powerStatus = box->temperatureStatus = 2;
        put(box->name, "Port 1E Box 2");
        put(box->serialNumber, "CN8123");
        put(box->firmwareVersion, "1.52");
        put(box->model, "D2600");
    }

    std::string status() { return publish<KDV_SASStorageEnclosureProcessor>(hba, box).value("OperationalStatus"); }
};

TEST_F(BoxInstances, HaveAStatusOfFiveForEachOfTheirElements)
{
    box->status = box->fanStatus = box->powerStatus = box->temperatureStatus = 5;
    EXPECT_EQ(status(), "{0, 32770, 32773, 32776}");
}

TEST_F(BoxInstances, KnowAStatusOfFourForTheTemperatureButNotForTheFan)
{
    box->fanStatus = box->temperatureStatus = 4;
    EXPECT_EQ(status(), "{2, 32768, 32774, 32779}");
}

TEST_F(BoxInstances, HaveFourStatusesWhateverTheBytesSay)
{
    for (int code = 0; code < 256; ++code) {
        box->status = box->fanStatus = box->powerStatus = box->temperatureStatus = static_cast<std::uint8_t>(code);
        const std::string all = status();
        EXPECT_EQ(std::count(all.begin(), all.end(), ','), 3) << code;
        EXPECT_EQ(all == "{0, 32768, 32772, 32776}", code < 2 || code > 5) << code;
    }
}

TEST_F(BoxInstances, LeaveOutTheBackplaneSpeedOfUnknownCodesAndPublishZeroForOne)
{
    for (const int code : {0, 4, 255}) {
        box->backplaneSpeed = static_cast<std::uint8_t>(code);
        EXPECT_EQ(publish<KDV_SASDriveCage>(hba, box).value("BackplaneSpeed"), "absent") << code;
    }
    box->backplaneSpeed = 1;
    EXPECT_EQ(publish<KDV_SASDriveCage>(hba, box).value("BackplaneSpeed"), "0");
}

TEST_F(BoxInstances, ArePlacedByPortAndBoxAlsoWhenTheTextIsEmpty)
{
    EXPECT_EQ(publish<KDV_SASStorageEnclosureLocation>(hba, box).value("PhysicalPosition"), "\"Port:1E-Box:2\"");
    put(box->name, "");
    EXPECT_EQ(publish<KDV_SASStorageEnclosureLocation>(hba, box).value("PhysicalPosition"), "\"Port:-Box:\"");
}

TEST_F(BoxInstances, LeaveOutWhatFirmwareWithoutAModelCannotSay)
{
    put(box->model, "");
    const auto firmware = publish<KDV_SASEnclosureFirmware>(box);
    for (const char* name : {"ElementName", "IdentityInfoValue", "IdentityInfoType"})
        EXPECT_EQ(firmware.value(name), "absent") << name;
    EXPECT_EQ(firmware.value("Name"), "\"Storage Enclosure Firmware\"");
}

TEST_F(BoxInstances, PublishAVersionThatIsNoneAsATextAlone)
{
    put(box->firmwareVersion, "v1.52");
    const auto firmware = publish<KDV_SASEnclosureFirmware>(box);
    EXPECT_EQ(firmware.value("VersionString"), "\"v1.52\"");
    EXPECT_EQ(firmware.value("MajorVersion"), "absent");
    EXPECT_EQ(firmware.value("MinorVersion"), "absent");
}

TEST_F(BoxInstances, NameTheCageByItsSerialNumberAndTheEnclosureByItsPlace)
{
    EXPECT_EQ(publish<KDV_SASDriveCage>(hba, box).value("Name"), "\"CN8123\"");
    EXPECT_EQ(publish<KDV_SASStorageEnclosure>(hba, box).value("Name"), "\"Port 1E Box 2\"");
}

} // namespace
} // namespace KDV::Test
