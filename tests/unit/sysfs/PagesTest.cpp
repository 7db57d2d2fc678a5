// The parsers of device pages, each with a good page, one cut off at every length, and one of another kind.
#include "FakeSysfs.h"
#include "PageBytes.h"
#include "sashba/sysfs/PathInfo.h"
#include "sashba/sysfs/PlugEvents.h"
#include "sashba/sysfs/ScsiPages.h"
#include "sashba/sysfs/SgDevice.h"
#include "sashba/sysfs/SmartctlOutput.h"

#include <gtest/gtest.h>

namespace KDV {
namespace {

using Bytes = std::vector<std::uint8_t>;

ByteView view(const std::string& bytes) { return ByteView(bytes); }

TEST(Inquiry, TellsTypeTextsAndEnclosureServices)
{
    std::string data(36, '\0');
    data[0] = 0x0D;
    data[6] = 0x40;
    data.replace(8, 28, padded("GLOBEX", 8) + padded("SHELF 24", 16) + "0307");
    const auto inquiry = parseInquiry(view(data));
    ASSERT_TRUE(inquiry);
    EXPECT_EQ(inquiry->type, 0x0D);
    EXPECT_TRUE(inquiry->enclosureServices);
    EXPECT_EQ(inquiry->vendor, "GLOBEX");
    EXPECT_EQ(inquiry->product, "SHELF 24");
    EXPECT_EQ(inquiry->revision, "0307");
    EXPECT_FALSE(parseInquiry(view(data.substr(0, 35))));
}

TEST(VitalProductData, SerialNumber)
{
    EXPECT_EQ(parseUnitSerialNumber(view(vpdPage(0x80, "  SP0001 \0"))), "SP0001");
    EXPECT_EQ(parseUnitSerialNumber(view(vpdPage(0x80, ""))), "");
    EXPECT_EQ(parseUnitSerialNumber(view(vpdPage(0x83, "SP0001"))), "") << "another page";
    EXPECT_EQ(parseUnitSerialNumber(view(vpdPage(0x80, "SP0001").substr(0, 7))), "SP0") << "as far as it is there";
}

TEST(VitalProductData, NameOfTheLogicalUnitAmongOthers)
{
    const std::string t10 = bytesOf({0x02, 0x01, 0, 4}) + "ACME";
    const std::string ofPort = bytesOf({0x61, 0x93, 0, 8}) + number64(0x5000a72001240001);
    const std::string ofUnit = bytesOf({0x01, 0x03, 0, 8}) + number64(0x5000a72001240000);
    EXPECT_EQ(parseNaaName(view(vpdPage(0x83, t10 + ofPort + ofUnit))), 0x5000a72001240000U);
    EXPECT_EQ(parseNaaName(view(vpdPage(0x83, t10 + ofPort))), std::nullopt);
    const std::string whole = vpdPage(0x83, ofUnit);
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_EQ(parseNaaName(view(whole.substr(0, length))), std::nullopt) << length;
    EXPECT_EQ(parseNaaName(view(vpdPage(0x83, bytesOf({0x01, 0x03, 0, 255})))), std::nullopt) << "longer than the page";
}

TEST(VitalProductData, RotationRate)
{
    EXPECT_EQ(parseRotationRate(view(vpdPage(0xB1, bytesOf({0x29, 0x04, 0, 3})))), 10500);
    EXPECT_EQ(parseRotationRate(view(vpdPage(0xB1, bytesOf({0, 1})))), 1);
    EXPECT_EQ(parseRotationRate(view(vpdPage(0xB1, bytesOf({0x29})))), std::nullopt);
    EXPECT_EQ(parseRotationRate(view("")), std::nullopt);
}

TEST(VitalProductData, AtaInformation)
{
    std::string page(572, '\0');
    page[1] = '\x89';
    const auto put = [&page](std::size_t word, const std::string& text) {
        for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
            page[60 + word * 2 + i] = text[i + 1];
            page[60 + word * 2 + i + 1] = text[i];
        }
    };
    put(10, padded("S5G0CCC3", 20));
    put(23, "GXA02106");
    put(27, padded("FLASH 480", 40));
    page[60 + 434] = 1;
    const auto ata = parseAtaInformation(view(page));
    ASSERT_TRUE(ata);
    EXPECT_EQ(ata->serial, "S5G0CCC3");
    EXPECT_EQ(ata->firmware, "GXA02106");
    EXPECT_EQ(ata->model, "FLASH 480");
    EXPECT_EQ(ata->rotation, 1);
    EXPECT_FALSE(parseAtaInformation(view(page.substr(0, 571))));
}

TEST(LogPages, SayWhichOnesThereAre)
{
    EXPECT_EQ(parseSupportedLogPages(view(logPage(0x00, bytesOf({0x00, 0x0D, 0x2F})))), (Bytes{0x00, 0x0D, 0x2F}));
    EXPECT_EQ(parseSupportedLogPages(view(logPage(0x0D, bytesOf({0x00})))), Bytes{});
    EXPECT_EQ(parseSupportedLogPages(view(logPage(0x00, bytesOf({0, 2})).substr(0, 5))), Bytes{0});
}

TEST(LogPages, HealthWearHoursAndTemperature)
{
    const std::string before = logParameter(0x8000, std::string(5, '\x7F'));
    const std::string temperature = logPage(0x0D, before + logParameter(0, bytesOf({0, 31})));
    const std::string wear = logPage(0x11, before + logParameter(1, bytesOf({0, 0, 0, 103})));
    const std::string scan = logPage(0x15, before + logParameter(0, bytesOf({0, 13, 2, 64, 0, 0, 0, 0})));
    const std::string exceptions = logPage(0x2F, before + logParameter(0, bytesOf({0x5D, 0x10, 40})));
    EXPECT_EQ(parseTemperature(view(temperature)), 31);
    EXPECT_EQ(parseEnduranceUsed(view(wear)), 103);
    EXPECT_EQ(parsePowerOnMinutes(view(scan)), 852544U);
    const auto state = parseInformationalExceptions(view(exceptions));
    ASSERT_TRUE(state);
    EXPECT_TRUE(state->predictsFailure());
    EXPECT_FALSE(state->warns());
    for (const std::string* page : {&temperature, &wear, &scan, &exceptions}) {
        for (std::size_t length = 0; length < 4 + 9 + 4 + 2; ++length) {
            const std::string cut = page->substr(0, length);
            EXPECT_FALSE(parseTemperature(view(cut)) || parseEnduranceUsed(view(cut)) || parsePowerOnMinutes(view(cut)))
                << length;
        }
    }
    EXPECT_FALSE(parseTemperature(view(logPage(0x0D, logParameter(0, bytesOf({0, 255})))))) << "cannot tell";
    EXPECT_FALSE(parseTemperature(view(wear))) << "another page";
}

TEST(LogPages, ATestOfThePredictionIsNone)
{
    EXPECT_FALSE((InformationalExceptions{0x5D, 0xFF}.predictsFailure()));
    EXPECT_TRUE((InformationalExceptions{0x5D, 0x00}.predictsFailure()));
    EXPECT_TRUE((InformationalExceptions{0x0B, 0x01}.warns()));
    EXPECT_FALSE((InformationalExceptions{0x00, 0x00}.predictsFailure()));
}

TEST(Replies, AreJudgedByHostStatusAndSense)
{
    const auto fixed = [](int key, int asc, int ascq) {
        std::string sense(18, '\0');
        sense[0] = 0x70;
        sense[2] = static_cast<char>(key);
        sense[7] = 10; // bytes that follow
        sense[12] = static_cast<char>(asc);
        sense[13] = static_cast<char>(ascq);
        return sense;
    };
    EXPECT_EQ(judgeReply(0, 0, {}).readiness, Readiness::Ready);
    EXPECT_EQ(judgeReply(0, 1, {}).readiness, Readiness::NoConnect);
    EXPECT_TRUE(judgeReply(0, 3, {}).timedOut);
    EXPECT_EQ(judgeReply(0, 3, {}).readiness, Readiness::Unknown);
    EXPECT_EQ(judgeReply(0, 7, {}).readiness, Readiness::Unknown);
    EXPECT_EQ(judgeReply(2, 0, view(fixed(2, 4, 3))).readiness, Readiness::NotReady);
    EXPECT_EQ(judgeReply(2, 0, view(fixed(2, 4, 2))).readiness, Readiness::Asleep);
    EXPECT_EQ(judgeReply(2, 0, view(fixed(4, 0x44, 0))).readiness, Readiness::NotReady);
    EXPECT_EQ(judgeReply(2, 0, view(fixed(5, 0x20, 0))).readiness, Readiness::Unknown);
    EXPECT_EQ(judgeReply(2, 0, view(bytesOf({0x72, 2, 4, 3}))).readiness, Readiness::NotReady) << "with descriptors";
    EXPECT_TRUE(judgeReply(2, 0, view(fixed(1, 0x5D, 0x10))).failurePredicted);
    EXPECT_EQ(judgeReply(2, 0, view(fixed(1, 0x5D, 0x10))).readiness, Readiness::Ready);
    EXPECT_FALSE(judgeReply(2, 0, view(fixed(1, 0x5D, 0xFF))).failurePredicted);
    EXPECT_EQ(judgeReply(0x18, 0, {}).readiness, Readiness::Unknown) << "reserved for another";
}

TEST(Smartctl, ReportOfASasDisk)
{
    const auto report = parseSmartctlOutput(R"({"smartctl": {"version": [7, 3], "exit_status": 8},
        "scsi_vendor": "ACME", "scsi_product": "FLASH", "scsi_revision": "FL02", "serial_number": "FL0001",
        "rotation_rate": 0, "smart_support": {"available": true}, "smart_status": {"passed": false},
        "temperature": {"current": 44}, "power_on_time": {"hours": 14210, "minutes": 5},
        "scsi_percentage_used_endurance_indicator": 12})");
    ASSERT_TRUE(report);
    EXPECT_EQ(report->exitStatus, 8);
    EXPECT_EQ(report->passed, false);
    EXPECT_EQ(report->powerOnHours, 14210U);
    EXPECT_EQ(report->enduranceUsed, 12U);
    EXPECT_EQ(report->rotation, 1) << "it says 0 of a disk that does not turn";
    EXPECT_EQ(report->temperature, 44);
    EXPECT_EQ(report->serial, "FL0001");
    EXPECT_EQ(report->firmware, "FL02");
    EXPECT_EQ(report->vendor, "ACME");
    EXPECT_EQ(report->model, "FLASH");
    EXPECT_FALSE(report->asleep);
}

TEST(Smartctl, ReportOfASataDiskInOlderAndNewerNames)
{
    const auto report = parseSmartctlOutput(R"({"smartctl": {}, "vendor": "ATA", "product": "P", "rotation_rate": 7200,
        "firmware_version": "SN02", "smart_status": {"passed": true}, "ata_device_statistics": {"pages": [3,
        {"table": [{"name": "Other", "value": 1}, {"name": "Percentage Used Endurance Indicator", "value": 7,
        "flags": {"valid": true}}]}]}})");
    ASSERT_TRUE(report);
    EXPECT_EQ(report->enduranceUsed, 7U);
    EXPECT_EQ(report->passed, true);
    EXPECT_EQ(report->rotation, 7200);
    EXPECT_EQ(report->firmware, "SN02");
    EXPECT_EQ(report->vendor, "ATA");
}

TEST(Smartctl, CallsTestsAndWarningsFailuresWhichTheyAreNot)
{
    struct {
        const char* health;
        bool passed, warned;
    } const cases[] = {{R"({"passed": false, "scsi": {"asc": 93, "ascq": 16}})", false, false},
                       {R"({"passed": false, "scsi": {"asc": 93, "ascq": 255}})", true, false},
                       {R"({"passed": false, "scsi": {"asc": 11, "ascq": 1}})", true, true},
                       {R"({"passed": false, "scsi": {"asc": 3, "ascq": 0}})", false, false},
                       {R"({"passed": false, "scsi": {"asc": "93"}})", false, false},
                       {R"({"passed": true, "scsi": {"asc": 0, "ascq": 0}})", true, false}};
    for (const auto& one : cases) {
        const auto report = parseSmartctlOutput(std::string(R"({"smartctl": {}, "smart_status": )") + one.health + "}");
        ASSERT_TRUE(report);
        EXPECT_EQ(report->passed, one.passed) << one.health;
        EXPECT_EQ(report->warned, one.warned) << one.health;
    }
}

TEST(Smartctl, KnowsTheWearOfASataDiskByTheNamesOfItsMaker)
{
    const std::pair<const char*, std::optional<std::uint32_t>> cases[] = {
        {R"({"name": "Media_Wearout_Indicator", "value": 97})", 3U},
        {R"({"name": "Wear_Leveling_Count", "value": 100})", 0U},
        {R"({"name": "Percent_Lifetime_Remain", "value": 0})", 100U},
        {R"({"name": "SSD_Life_Left", "value": 253})", std::nullopt},
        {R"({"name": "Power_Cycle_Count", "value": 99})", std::nullopt}};
    for (const auto& [row, used] : cases) {
        const auto report = parseSmartctlOutput(
            std::string(R"({"smartctl": {}, "ata_smart_attributes": {"table": [1, )") + row + "]}}");
        ASSERT_TRUE(report);
        EXPECT_EQ(report->enduranceUsed, used) << row;
    }
    const auto newer = parseSmartctlOutput(R"({"smartctl": {}, "endurance_used": {"current_percent": 5}})");
    ASSERT_TRUE(newer);
    EXPECT_EQ(newer->enduranceUsed, 5U);
}

TEST(Smartctl, ASleepingDiskAndOneWithoutHealth)
{
    const auto sleeping = parseSmartctlOutput(R"json({"smartctl": {"exit_status": 2, "messages": [
        {"string": "Device is in STANDBY mode, exit(2)", "severity": "information"}]}})json");
    ASSERT_TRUE(sleeping);
    EXPECT_TRUE(sleeping->asleep);
    const auto without = parseSmartctlOutput(
        R"({"smartctl": {}, "smart_support": {"available": false}, "temperature": {"current": 0}})");
    ASSERT_TRUE(without);
    EXPECT_FALSE(without->supported);
    EXPECT_FALSE(without->passed);
    EXPECT_FALSE(without->temperature) << "it prints 0 for what there is not";
}

TEST(Smartctl, NonsenseGivesNothingAndOtherTypesAreLeftOut)
{
    for (const char* text : {"", "smartctl 7.3", "[]", "{}", "{\"smartctl\": ", "null"})
        EXPECT_FALSE(parseSmartctlOutput(text)) << text;
    const auto report = parseSmartctlOutput(R"({"smartctl": [], "smart_status": {"passed": "yes"},
        "power_on_time": {"hours": -3}, "rotation_rate": 99999999, "serial_number": 7,
        "scsi_percentage_used_endurance_indicator": 1.5, "ata_device_statistics": {"pages": {"table": 1}}})");
    ASSERT_TRUE(report);
    EXPECT_FALSE(report->passed);
    EXPECT_FALSE(report->powerOnHours);
    EXPECT_FALSE(report->rotation);
    EXPECT_FALSE(report->enduranceUsed);
    EXPECT_EQ(report->serial, "");
}

TEST(PathInformation, IsThatOfTheActiveWay)
{
    const auto info = parsePathInfo("[1:0:4:0] Direct-Access PORT: 2I BOX: 3 BAY: 8 Inactive\n"
                                    "[1:0:4:0] Direct-Access PORT: 1I BOX: 3 BAY: 7 Active\n");
    ASSERT_TRUE(info);
    EXPECT_EQ(info->port, "1I");
    EXPECT_EQ(info->box, 3U);
    EXPECT_EQ(info->bay, 7U);
    EXPECT_FALSE(parsePathInfo("[1:1:0:2] Direct-Access Active\n")) << "a volume";
    EXPECT_FALSE(parsePathInfo(""));
    const auto noBox = parsePathInfo("PORT: C0 BAY: 4 Inactive");
    ASSERT_TRUE(noBox);
    EXPECT_EQ(noBox->port, "C0");
    EXPECT_FALSE(noBox->box);
    EXPECT_FALSE(parsePathInfo("PORT: BOX: BAY:"));
    for (const char* bay : {"99999999999999999999999999", "255", "-1", ""}) {
        const auto noBay = parsePathInfo(std::string("PORT: 1I BOX: 3 BAY: ") + bay);
        ASSERT_TRUE(noBay) << bay;
        EXPECT_EQ(noBay->port, "1I");
        EXPECT_EQ(noBay->box, 3U);
        EXPECT_FALSE(noBay->bay) << bay;
    }
    EXPECT_FALSE(parsePathInfo("BOX: 255 BAY: 255 Active"));
}

TEST(PlugMessages, TellOfDisksEnclosuresAndArraysOnly)
{
    EXPECT_TRUE(tellsOfPlug("add", "block", "sdb"));
    EXPECT_TRUE(tellsOfPlug("remove", "scsi", "0:0:3:0"));
    EXPECT_TRUE(tellsOfPlug("change", "scsi", "0:0:3:0"));
    EXPECT_TRUE(tellsOfPlug("remove", "sas_end_device", "end_device-0:1"));
    EXPECT_TRUE(tellsOfPlug("add", "sas_expander", "expander-0:0"));
    EXPECT_TRUE(tellsOfPlug("add", "raid_devices", "0:1:0:0"));
    EXPECT_TRUE(tellsOfPlug("add", "enclosure", "0:0:24:0"));
    EXPECT_TRUE(tellsOfPlug("change", "block", "md0"));
    EXPECT_FALSE(tellsOfPlug("change", "block", "sdb"));
    EXPECT_FALSE(tellsOfPlug("add", "block", "loop0"));
    EXPECT_FALSE(tellsOfPlug("bind", "scsi", "0:0:3:0"));
    EXPECT_FALSE(tellsOfPlug("change", "scsi_host", "md0"));
    EXPECT_FALSE(tellsOfPlug("add", "net", "eth0"));
    EXPECT_FALSE(tellsOfPlug("add", "", ""));
    EXPECT_FALSE(tellsOfPlug("", "", ""));
}

} // namespace
} // namespace KDV
