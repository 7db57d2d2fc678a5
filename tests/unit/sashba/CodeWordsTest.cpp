// The words of every code, and every byte by its number.
#include "Playground.h"

#include <string>
#include <vector>

namespace KDV {
namespace {

struct WordCase {
    std::string list; // empty: the HBA itself
    std::string field;
    std::string word;
    std::size_t offset;
    int code;
};

std::vector<WordCase> allWords()
{
    std::vector<WordCase> cases;
    struct Word {
        const char* word;
        int code;
    };
    const auto add = [&cases](const char* list, const char* field, std::size_t offset, std::vector<Word> words) {
        for (const Word& one : words)
            cases.push_back({list, field, one.word, offset, one.code});
    };
    const std::vector<Word> health = {{"unknown", 0}, {"ok", 2}, {"degraded", 3}, {"failed", 4}};
    const std::vector<Word> fanOrPower = {{"unknown", 0}, {"ok", 2}, {"degraded", 3}, {"failed", 5}};
    const std::vector<Word> place = {{"unknown", 0}, {"internal", 2}, {"external", 3}};
    add("", "slotNumber", 160, {{"embedded", 0}, {"unknown", 255}});
    add("", "modelCode", 161, {{"unknown", 0}, {"generic", 2}});
    add("", "arraySystemStatus", 163, health);
    add("", "controllerStatus", 164, {{"unknown", 0}, {"ok", 2}, {"failed", 3}});
    add("physicalDrives", "status", 22,
        {{"unknown", 0},
         {"ok", 2},
         {"predictiveFailure", 3},
         {"failed", 4},
         {"predictiveFailure2", 10},
         {"degraded", 12}});
    add("physicalDrives", "usage", 25, {{"unknown", 0}, {"member", 2}, {"spare", 3}, {"unassigned", 4}});
    add("physicalDrives", "rotationalSpeed", 26, {{"unknown", 0}, {"7200", 2}, {"10000", 3}, {"15000", 4}});
    add("physicalDrives", "placement", 27, place);
    add("physicalDrives", "hotPlug", 28, {{"unknown", 0}, {"hotSwappable", 2}});
    add("physicalDrives", "interface", 30, {{"unknown", 0}, {"SATA", 1}, {"SAS", 2}});
    add("physicalDrives", "mediaType", 368, {{"unknown", 0}, {"solidState", 3}});
    add("physicalDrives", "carrierAuthStatus", 393, {{"noCarrier", 2}});
    add("logicalDrives", "raidLevel", 25,
        {{"none", 0}, {"RAID 0", 2}, {"RAID 1", 3}, {"RAID 0+1", 4}, {"RAID 5", 5}, {"RAID 1+5", 6}});
    add("logicalDrives", "status", 26, health);
    add("logicalDrives", "redundancyState", 169,
        {{"unknown", 0}, {"ok", 2}, {"redundancyLost", 3}, {"rebuilding", 4}, {"failed", 5}});
    add("storageBoxes", "fanStatus", 51, fanOrPower);
    add("storageBoxes", "status", 52, health);
    add("storageBoxes", "temperatureStatus", 53, health);
    add("storageBoxes", "powerStatus", 55, fanOrPower);
    add("storageBoxes", "locationCode", 58, place);
    return cases;
}

std::string numberMemberOf(const std::string& list)
{
    return list == "physicalDrives" ? "driveNumber" : list == "logicalDrives" ? "logicalDriveNumber" : "boxNumber";
}

int byteWith(const std::string& list, const std::string& field, const std::string& json, std::size_t offset)
{
    const std::string member = '"' + field + "\": " + json;
    const Playground play(list.empty()
                              ? oneHba(member)
                              : oneHba('"' + list + "\": [{\"" + numberMemberOf(list) + "\": 0, " + member + "}]"));
    if (!play.errors.empty()) {
        ADD_FAILURE() << play.errors[0];
        return -1;
    }
    const void* record = play.hba();
    if (list == "physicalDrives")
        record = play.drives().at(0);
    else if (list == "logicalDrives")
        record = play.volumes().at(0);
    else if (list == "storageBoxes")
        record = play.boxes().at(0);
    return static_cast<const unsigned char*>(record)[offset];
}

class WordOfACode : public testing::TestWithParam<WordCase> {};

TEST_P(WordOfACode, GivesItsCode)
{
    const WordCase& one = GetParam();
    EXPECT_EQ(byteWith(one.list, one.field, '"' + one.word + '"', one.offset), one.code)
        << one.field << ' ' << one.word;
}

INSTANTIATE_TEST_SUITE_P(Words, WordOfACode, testing::ValuesIn(allWords()));

TEST(RawCodes, EveryByteValueCanBeProduced)
{
    for (int code = 0; code <= 255; ++code)
        ASSERT_EQ(byteWith("physicalDrives", "status", std::to_string(code), 22), code);
}

TEST(DriveNumberWord, NoneIsAllBitsSet)
{
    for (std::size_t byte = 20; byte < 24; ++byte)
        EXPECT_EQ(byteWith("logicalDrives", "rebuildingDrive", "\"none\"", byte), 0xFF);
    EXPECT_EQ(byteWith("logicalDrives", "rebuildingDrive", "0", 20), 0);
}

TEST(SignedNumber, ReachesFromMinus128To127)
{
    EXPECT_EQ(byteWith("physicalDrives", "ssdWearStatus", "-128", 369), 0x80);
    EXPECT_EQ(byteWith("physicalDrives", "ssdWearStatus", "-1", 369), 0xFF);
    EXPECT_EQ(byteWith("physicalDrives", "ssdWearStatus", "127", 369), 0x7F);
}

} // namespace
} // namespace KDV
