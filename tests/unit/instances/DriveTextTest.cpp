#include "instances/DriveText.h"

#include <random>
#include <sstream>

#include <gtest/gtest.h>

namespace KDV::Test {
namespace {

using Texts = std::vector<std::string>;

Texts split(std::string_view inquiry)
{
    const VendorModel product = splitVendorModel(inquiry);
    return {std::string(product.vendor), std::string(product.model)};
}

Texts located(std::string_view location)
{
    const DriveLocation parsed = parseDriveLocation(location);
    return {std::string(parsed.port), std::string(parsed.box), std::string(parsed.bay), std::string(parsed.device)};
}

TEST(DriveText, SplitsVendorAndModelAtTheBlanksBetweenThem)
{
    EXPECT_EQ(split("ATA     ST500"), (Texts{"ATA", "ST500"}));
    EXPECT_EQ(split("   ATA ST500"), (Texts{"ATA", "ST500"}));
}

TEST(DriveText, FindsNeitherVendorNorModelInASingleWord)
{
    EXPECT_EQ(split("ATA"), (Texts{"", ""}));
    EXPECT_EQ(split("   ATA"), (Texts{"", ""}));
}

TEST(DriveText, FindsNeitherVendorNorModelInBlanksOrNothing)
{
    EXPECT_EQ(split(""), (Texts{"", ""}));
    EXPECT_EQ(split("      "), (Texts{"", ""}));
}

TEST(DriveText, FindsAVendorWithoutModelBeforeTrailingBlanks)
{
    EXPECT_EQ(split("ACME "), (Texts{"ACME", ""}));
    EXPECT_EQ(split(" ACME     "), (Texts{"ACME", ""}));
}

TEST(DriveText, KeepsInnerAndTrailingBlanksOfTheModel)
{
    EXPECT_EQ(split("ACME    DRIVE 9"), (Texts{"ACME", "DRIVE 9"}));
    EXPECT_EQ(split("ACME DRIVE  9   "), (Texts{"ACME", "DRIVE  9   "}));
}

TEST(DriveText, SplitsAtTheSpaceCharacterOnly)
{
    EXPECT_EQ(split("ACME\tDRIVE"), (Texts{"", ""}));
    EXPECT_EQ(split("A\tB C\nD"), (Texts{"A\tB", "C\nD"}));
}

TEST(DriveText, FindsPortBoxAndBay)
{
    EXPECT_EQ(located("Port 2E Box 3 Bay 7"), (Texts{"2E", "3", "7", ""}));
    EXPECT_EQ(drivePositionText(parseDriveLocation("Port 2E Box 3 Bay 7")), "Port:2E-Box:3-bay:7");
}

TEST(DriveText, FindsPortAndDevice)
{
    EXPECT_EQ(located("Port 1I Device 4"), (Texts{"1I", "", "", "4"}));
    EXPECT_EQ(drivePositionText(parseDriveLocation("Port 1I Device 4")), "Port:1I-Device:4");
}

TEST(DriveText, FindsNothingInALocationWithoutTheWords)
{
    for (const char* text :
         {"", "Port 1I Box 1", "Port 1I Bay 1", "somewhere", "port 1i box 1 bay 1", "PORT 1 DEVICE 2"}) {
        EXPECT_EQ(located(text), (Texts{"", "", "", ""})) << text;
        EXPECT_EQ(drivePositionText(parseDriveLocation(text)), "Port:-Location:unknown") << text;
    }
}

TEST(DriveText, LeavesEmptyWhatMissingWordsStandFor)
{
    EXPECT_EQ(located("Box 1 Bay 2"), (Texts{"1", "2", "", ""}));
    EXPECT_EQ(drivePositionText(parseDriveLocation("Box 1 Bay 2")), "Port:1-Location:unknown");
    EXPECT_EQ(located("BoxBay"), (Texts{"", "", "", ""}));
    EXPECT_EQ(located("Device"), (Texts{"", "", "", ""}));
    EXPECT_EQ(located("Port 1I Device"), (Texts{"1I", "", "", ""}));
    EXPECT_EQ(drivePositionText(parseDriveLocation("Port 1I Device")), "Port:1I-Location:unknown");
}

TEST(DriveText, SearchesForTheLettersAnywhere)
{
    EXPECT_EQ(located("Port 1I Toolbox SandBox x Bays 3"), (Texts{"1I", "SandBox", "Bays", ""}));
    EXPECT_EQ(located("MyDevices 1I x 4"), (Texts{"1I", "", "", "4"}));
}

TEST(DriveText, PrefersBoxAndBayToDevice) { EXPECT_EQ(located("Device 1I Box 2 Bay 3"), (Texts{"1I", "2", "3", ""})); }

TEST(DriveText, SeparatesWordsByAnyWhiteSpace)
{
    EXPECT_EQ(located(" \tPort\n2E\v\fBox\r\r3  Bay\t7\n"), (Texts{"2E", "3", "7", ""}));
}

TEST(DriveText, FindsTheBoxPositionByPlaceAlone)
{
    EXPECT_EQ(boxPositionText("Port 1E Box 2"), "Port:1E-Box:2");
    EXPECT_EQ(boxPositionText(""), "Port:-Box:");
    EXPECT_EQ(boxPositionText("Port"), "Port:-Box:");
    EXPECT_EQ(boxPositionText("Port 1E Box"), "Port:1E-Box:");
    EXPECT_EQ(boxPositionText("a b c d e"), "Port:b-Box:d");
}

// Random texts of the letters that matter, read a second time with streams.
TEST(DriveText, ReadsLocationsAsAStreamDoes)
{
    std::mt19937 random(7);
    const Texts pieces{"Box", "Bay", "Device", "Port", " ", "  ", "\t", "1I", "3", ""};
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (auto i = random() % 12; i > 0; --i)
            text += pieces[random() % pieces.size()];
        Texts expected(4);
        std::istringstream words(text);
        std::string skip;
        const auto has = [&](const char* letters) { return text.find(letters) != std::string::npos; };
        if (has("Box") && has("Bay"))
            words >> skip >> expected[0] >> skip >> expected[1] >> skip >> expected[2];
        else if (has("Device"))
            words >> skip >> expected[0] >> skip >> expected[3];
        ASSERT_EQ(located(text), expected) << '"' << text << '"';
    }
}

} // namespace
} // namespace KDV::Test
