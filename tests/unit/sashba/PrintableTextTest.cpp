#include "sashba/PrintableText.h"

#include "Playground.h"

#include <string>

namespace KDV {
namespace {

TEST(PrintableText, KeepsPrintableTextAsItIs)
{
    EXPECT_EQ(printableText("Port 1I Box 1 Bay 3", 80), "Port 1I Box 1 Bay 3");
    EXPECT_EQ(printableText("Gehäuse 木 \xF0\x9F\x92\xBE", 80), "Gehäuse 木 \xF0\x9F\x92\xBE");
    EXPECT_EQ(printableText("", 80), "");
}

TEST(PrintableText, CutsBetweenCharacters)
{
    EXPECT_EQ(printableText("abc", 2), "ab");
    EXPECT_EQ(printableText("a\xC3\xA4", 2), "a");
    EXPECT_EQ(printableText("a\xC3\xA4", 3), "a\xC3\xA4");
    EXPECT_EQ(printableText("\xE6\x9C\xA8", 2), "");
    EXPECT_EQ(printableText("ab\xF0\x9F\x92\xBE", 5), "ab");
    EXPECT_EQ(printableText("abc", 0), "");
}

TEST(PrintableText, ReplacesControlCharacters)
{
    EXPECT_EQ(printableText(std::string("a\0b\tc\nd\x1b"
                                        "e\x7f",
                                        10),
                            80),
              "a?b?c?d?e?");
    EXPECT_EQ(printableText("a\xC2\x85"
                            "b",
                            80),
              "a?b")
        << "a control character of the upper half";
    EXPECT_EQ(printableText("a\xE2\x80\xAE"
                            "b",
                            80),
              "a?b")
        << "a character that turns the reading direction";
    EXPECT_EQ(printableText("a\xEF\xBF\xBF"
                            "b",
                            80),
              "a?b")
        << "a noncharacter";
}

TEST(PrintableText, ReplacesEveryByteThatIsNoUtf8)
{
    EXPECT_EQ(printableText("a\xFF\xFE"
                            "b",
                            80),
              "a??b");
    EXPECT_EQ(printableText("a\xC3", 80), "a?") << "cut off";
    EXPECT_EQ(printableText("\x80", 80), "?") << "a continuation alone";
    EXPECT_EQ(printableText("\xC0\xAF", 80), "??") << "longer than needed";
    EXPECT_EQ(printableText("\xE0\x80\xAF", 80), "???") << "longer than needed";
    EXPECT_EQ(printableText("\xED\xA0\x80", 80), "???") << "a surrogate";
    EXPECT_EQ(printableText("\xF4\x90\x80\x80", 80), "????") << "beyond the last character";
}

SasPhysicalDriveRecord driveWith(const std::string& field, const std::string& json)
{
    const Playground play(oneHba(R"("physicalDrives": [{"driveNumber": 0, ")" + field + "\": " + json + "}]"));
    if (!play.errors.empty()) ADD_FAILURE() << play.errors[0];
    return *play.drives().at(0);
}

TEST(TextField, ALongTextIsCutAndTerminatedInside)
{
    const SasPhysicalDriveRecord drive = driveWith("firmwareRevision", R"("ABCDEFGHIJKL")");
    EXPECT_EQ(textOf(drive.firmwareRevision), "ABCDEFGH");
    EXPECT_EQ(drive.firmwareRevision[8], '\0');
    EXPECT_EQ(textOf(drive.serialNumber), "") << "the field behind it";
}

TEST(TextField, ACutNeverSplitsACharacter)
{
    const SasPhysicalDriveRecord drive = driveWith("firmwareRevision", R"("ABCDEFG\u00e4")");
    EXPECT_EQ(textOf(drive.firmwareRevision), "ABCDEFG");
}

TEST(TextField, AnEscapedNulOrControlCharacterDoesNotEndTheText)
{
    const SasPhysicalDriveRecord drive = driveWith("serialNumber", R"("A\u0000B\nC")");
    EXPECT_EQ(textOf(drive.serialNumber), "A?B?C");
}

TEST(TextField, AShorterTextOfALaterChangeLeavesNothingOfTheLonger)
{
    Playground play(
        oneHba(R"("physicalDrives": [{"driveNumber": 0, "serialNumber": "LONGSERIAL"}])",
               R"("timeline": [{"atPass": 1, "hba": 0, "physicalDrive": 0, "set": {"serialNumber": "S"}}])"));
    play.pass();
    const SasPhysicalDriveRecord drive = *play.drives().at(0);
    EXPECT_EQ(std::string(drive.serialNumber, sizeof drive.serialNumber), "S" + std::string(40, '\0'));
}

} // namespace
} // namespace KDV
