// Every field of every record, from its name in a scenario to its bytes: at its offset, little-endian, and nowhere
// else.
#include "Playground.h"

#include <cstring>
#include <string>
#include <vector>

namespace KDV {
namespace {

enum class Kind { Hba, PhysicalDrive, LogicalDrive, StorageBox };

struct FieldCase {
    Kind kind;
    std::string name;
    std::string json;
    std::size_t offset;
    std::string hex;    // the bytes that must stand there
    bool isKey = false; // the number that names the element: changed by a new element, not by a member beside it
};

std::string hexOf(const std::string& text, std::size_t fieldBytes)
{
    static constexpr char digits[] = "0123456789abcdef";
    std::string hex;
    for (std::size_t i = 0; i < fieldBytes; ++i) {
        const auto byte = static_cast<unsigned char>(i < text.size() ? text[i] : 0);
        hex += digits[byte >> 4];
        hex += digits[byte & 15];
    }
    return hex;
}

FieldCase text(Kind kind, const std::string& name, std::size_t offset, std::size_t fieldBytes)
{
    // As long as the field holds beside its NUL, so that the last byte is seen too.
    std::string value;
    while (value.size() < fieldBytes - 1)
        value += static_cast<char>('A' + value.size() % 26);
    return {kind, name, '"' + value + '"', offset, hexOf(value, fieldBytes)};
}

// The location is that of the hot-plug log as well unless the file says another.
FieldCase withHotPlugLocation(FieldCase field)
{
    field.json += R"(, "hotPlugLocation": "")";
    return field;
}

std::string entries(std::size_t count)
{
    std::string json = "[";
    for (std::size_t i = 0; i < count; ++i)
        json += (i ? ", " : "") + std::to_string(0x01020300 + i);
    return json + "]";
}

std::string entryBytes(std::size_t count)
{
    std::string hex;
    for (std::size_t i = 0; i < 16; ++i)
        hex += i < count ? hexOf(std::string(1, static_cast<char>(i)) + "\x03\x02\x01", 4) : "00000000";
    return hex;
}

std::vector<FieldCase> hbaFields()
{
    const Kind kind = Kind::Hba;
    return {
        {kind, "hbaNumber", "305419896", 28, "78563412", true},
        text(kind, "logicalLocation", 32, 128),
        {kind, "slotNumber", "17", 160, "11"},
        {kind, "modelCode", "13", 161, "0d"},
        {kind, "arraySystemStatus", "9", 163, "09"},
        {kind, "controllerStatus", "8", 164, "08"},
        text(kind, "firmwareVersion", 167, 34),
        text(kind, "name", 201, 87),
    };
}

std::vector<FieldCase> driveFields()
{
    const Kind kind = Kind::PhysicalDrive;
    return {
        {kind, "hbaNumber", "305419896", 4, "78563412"},
        {kind, "driveNumber", "4277009102", 8, "cefaedfe", true},
        {kind, "size", "4294967295", 12, "ffffffff"},
        {kind, "status", "11", 22, "0b"},
        {kind, "usage", "9", 25, "09"},
        {kind, "rotationalSpeed", "7", 26, "07"},
        {kind, "placement", "6", 27, "06"},
        {kind, "hotPlug", "5", 28, "05"},
        {kind, "interface", "4", 30, "04"},
        text(kind, "hotPlugLocation", 31, 128),
        withHotPlugLocation(text(kind, "location", 159, 81)),
        text(kind, "inquiry", 240, 41),
        text(kind, "firmwareRevision", 281, 9),
        text(kind, "serialNumber", 290, 41),
        text(kind, "osName", 331, 12),
        text(kind, "name", 343, 17),
        {kind, "blockSize", "4096", 360, "00100000"},
        {kind, "blockCount", "2309737967", 364, "efcdab89"},
        {kind, "mediaType", "3", 368, "03"},
        {kind, "ssdWearStatus", "-128", 369, "80"},
        {kind, "ssdPowerOnHours", "16909060", 370, "04030201"},
        {kind, "ssdEnduranceUsed", "33752069", 374, "05040302"},
        {kind, "ssdLifeRemaining", "50595078", 378, "06050403"},
        {kind, "carrierAppVersion", "250", 391, "fa"},
        {kind, "carrierBootldrVersion", "251", 392, "fb"},
        {kind, "carrierAuthStatus", "252", 393, "fc"},
        {kind, "boxIdentifier", "305419896", 410, "78563412"},
        {kind, "boxNumber", "2", 410, "02000010"},
    };
}

std::vector<FieldCase> volumeFields()
{
    const Kind kind = Kind::LogicalDrive;
    return {
        {kind, "hbaNumber", "305419896", 4, "78563412"},
        {kind, "logicalDriveNumber", "4277009102", 8, "cefaedfe", true},
        {kind, "size", "16909060", 12, "04030201"},
        {kind, "rebuildingDrive", "33752069", 20, "05040302"},
        {kind, "raidLevel", "200", 25, "c8"},
        {kind, "status", "201", 26, "c9"},
        text(kind, "osName", 156, 13),
        {kind, "redundancyState", "202", 169, "ca"},
        {kind, "memberCount", "4294967295", 170, "ffffffff"},
        {kind, "members", entries(16) + R"(, "memberCount": 0)", 174, entryBytes(16)},
        {kind, "spareCount", "77", 238, "4d000000"},
        {kind, "spares", entries(16) + R"(, "spareCount": 0)", 242, entryBytes(16)},
    };
}

std::vector<FieldCase> boxFields()
{
    const Kind kind = Kind::StorageBox;
    return {
        {kind, "boxNumber", "254", 15, "fe", true},
        text(kind, "model", 17, 17),
        text(kind, "firmwareVersion", 34, 8),
        text(kind, "manufacturer", 42, 9),
        {kind, "fanStatus", "101", 51, "65"},
        {kind, "status", "102", 52, "66"},
        {kind, "temperatureStatus", "103", 53, "67"},
        {kind, "powerStatus", "104", 55, "68"},
        {kind, "driveBays", "105", 57, "69"},
        {kind, "locationCode", "106", 58, "6a"},
        {kind, "duplexCode", "107", 59, "6b"},
        text(kind, "serialNumber", 61, 29),
        {kind, "hbaNumber", "305419896", 90, "78563412"},
        {kind, "backplaneSpeed", "108", 223, "6c"},
        {kind, "physicalPosition", "109", 234, "6d"},
        text(kind, "name", 238, 82),
    };
}

struct KindFacts {
    std::string list;
    std::string number;
};

KindFacts factsOf(Kind kind)
{
    switch (kind) {
    case Kind::Hba:
        return {"hbas", "hbaNumber"};
    case Kind::PhysicalDrive:
        return {"physicalDrives", "driveNumber"};
    case Kind::LogicalDrive:
        return {"logicalDrives", "logicalDriveNumber"};
    case Kind::StorageBox:
        return {"storageBoxes", "boxNumber"};
    }
    return {};
}

// A machine whose only element of the kind has the given members beside its number.
std::string machineWith(Kind kind, const std::string& members)
{
    const KindFacts facts = factsOf(kind);
    if (kind == Kind::Hba) return R"({"hbas": [{)" + members + "}]}";
    return R"({"hbas": [{"hbaNumber": 0, ")" + facts.list + R"(": [{)" + members + "}]}]}";
}

template <class Record>
std::vector<unsigned char> bytesOf(const Record* record)
{
    std::vector<unsigned char> bytes(sizeof(Record));
    std::memcpy(bytes.data(), record, sizeof(Record));
    return bytes;
}

std::vector<unsigned char> elementBytes(const Playground& play, Kind kind)
{
    switch (kind) {
    case Kind::Hba:
        return bytesOf(play.hba());
    case Kind::PhysicalDrive:
        return bytesOf(play.drives().at(0));
    case Kind::LogicalDrive:
        return bytesOf(play.volumes().at(0));
    case Kind::StorageBox:
        return bytesOf(play.boxes().at(0));
    }
    return {};
}

std::string hexAt(const std::vector<unsigned char>& bytes, std::size_t offset, std::size_t count)
{
    return hexOf(std::string(bytes.begin() + static_cast<std::ptrdiff_t>(offset),
                             bytes.begin() + static_cast<std::ptrdiff_t>(offset + count)),
                 count);
}

class FieldBytes : public testing::TestWithParam<FieldCase> {};

TEST_P(FieldBytes, StandAtTheirOffsetAndNowhereElse)
{
    const FieldCase& field = GetParam();
    const std::string number = '"' + factsOf(field.kind).number + "\": 0";
    const Playground plain(machineWith(field.kind, number));
    const std::string named = '"' + field.name + "\": " + field.json;
    const Playground changed(machineWith(field.kind, field.isKey ? named : number + ", " + named));
    ASSERT_TRUE(plain.errors.empty()) << plain.errors[0];
    ASSERT_TRUE(changed.errors.empty()) << changed.errors[0];

    const std::vector<unsigned char> before = elementBytes(plain, field.kind);
    const std::vector<unsigned char> after = elementBytes(changed, field.kind);
    const std::size_t bytes = field.hex.size() / 2;
    EXPECT_EQ(hexAt(after, field.offset, bytes), field.hex);
    EXPECT_NE(hexAt(before, field.offset, bytes), field.hex) << "the case shows nothing";
    ASSERT_EQ(before.size(), after.size());
    for (std::size_t at = 0; at < before.size(); ++at) {
        if (at < field.offset || at >= field.offset + bytes) {
            EXPECT_EQ(before[at], after[at]) << "byte " << at << " changed too";
        }
    }
}

TEST_P(FieldBytes, AreWrittenByAChangeOfTheTimelineAsWell)
{
    const FieldCase& field = GetParam();
    const std::string number = '"' + factsOf(field.kind).number + "\": 0";
    const std::string targets[] = {"", R"("physicalDrive": 0, )", R"("logicalDrive": 0, )", R"("storageBox": 0, )"};
    const std::string change = R"({"atPass": 1, "hba": 0, )" + targets[static_cast<int>(field.kind)] + R"("set": {")" +
                               field.name + "\": " + field.json + "}}";
    std::string machine = machineWith(field.kind, number);
    machine.insert(machine.size() - 1, R"(, "timeline": [)" + change + "]");
    Playground play(machine);
    ASSERT_TRUE(play.errors.empty()) << play.errors[0];

    const std::vector<unsigned char> before = elementBytes(play, field.kind);
    play.pass();
    const std::vector<unsigned char> after = elementBytes(play, field.kind);
    const std::size_t bytes = field.hex.size() / 2;
    EXPECT_EQ(hexAt(after, field.offset, bytes), field.hex);
    for (std::size_t at = 0; at < before.size(); ++at) {
        if (at < field.offset || at >= field.offset + bytes) {
            EXPECT_EQ(before[at], after[at]) << "byte " << at << " changed too";
        }
    }
}

std::string caseName(const testing::TestParamInfo<FieldCase>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Hba, FieldBytes, testing::ValuesIn(hbaFields()), caseName);
INSTANTIATE_TEST_SUITE_P(PhysicalDrive, FieldBytes, testing::ValuesIn(driveFields()), caseName);
INSTANTIATE_TEST_SUITE_P(LogicalDrive, FieldBytes, testing::ValuesIn(volumeFields()), caseName);
INSTANTIATE_TEST_SUITE_P(StorageBox, FieldBytes, testing::ValuesIn(boxFields()), caseName);

TEST(FieldDefaults, ALocationAloneIsTheHotPlugLocationToo)
{
    const Playground play(oneHba(R"("physicalDrives": [{"driveNumber": 1, "location": "Port 1I Box 1 Bay 3"}])"));
    const std::vector<unsigned char> bytes = elementBytes(play, Kind::PhysicalDrive);
    EXPECT_EQ(hexAt(bytes, 159, 81), hexOf("Port 1I Box 1 Bay 3", 81));
    EXPECT_EQ(hexAt(bytes, 31, 128), hexOf("Port 1I Box 1 Bay 3", 128));
}

TEST(FieldDefaults, CountsFollowTheirLists)
{
    const Playground play(
        oneHba(R"("logicalDrives": [{"logicalDriveNumber": 0, "members": [7, 8, 9], "spares": [3]}])"));
    const std::vector<unsigned char> bytes = elementBytes(play, Kind::LogicalDrive);
    EXPECT_EQ(hexAt(bytes, 170, 16), "03000000"
                                     "07000000"
                                     "08000000"
                                     "09000000");
    EXPECT_EQ(hexAt(bytes, 186, 52), hexOf("", 52));
    EXPECT_EQ(hexAt(bytes, 238, 8), "01000000"
                                    "03000000");
}

TEST(FieldDefaults, AnElementThatSaysNothingIsHealthyAndUnassigned)
{
    const Playground play(R"({"hbas": [{"hbaNumber": 5, "physicalDrives": [{"driveNumber": 1}],
        "logicalDrives": [{"logicalDriveNumber": 2}], "storageBoxes": [{"boxNumber": 3}]}]})");
    ASSERT_TRUE(play.errors.empty()) << play.errors[0];
    const std::vector<unsigned char> hba = elementBytes(play, Kind::Hba);
    EXPECT_EQ(hexAt(hba, 28, 4), "05000000");
    EXPECT_EQ(hexAt(hba, 160, 6), "ff0200020200");
    const std::vector<unsigned char> drive = elementBytes(play, Kind::PhysicalDrive);
    EXPECT_EQ(hexAt(drive, 4, 8), "0500000001000000");
    EXPECT_EQ(hexAt(drive, 20, 11), "0000020000040000000000");
    EXPECT_EQ(hexAt(drive, 391, 3), "000002");
    EXPECT_EQ(hexAt(drive, 410, 4), "00000000");
    const std::vector<unsigned char> volume = elementBytes(play, Kind::LogicalDrive);
    EXPECT_EQ(hexAt(volume, 4, 8), "0500000002000000");
    EXPECT_EQ(hexAt(volume, 20, 8), "ffffffff00000200");
    EXPECT_EQ(hexAt(volume, 169, 5), "0200000000");
    EXPECT_EQ(hexAt(volume, 238, 4), "00000000");
    const std::vector<unsigned char> box = elementBytes(play, Kind::StorageBox);
    EXPECT_EQ(hexAt(box, 15, 1), "03");
    EXPECT_EQ(hexAt(box, 51, 5), "0202020002");
    EXPECT_EQ(hexAt(box, 90, 4), "05000000");
    EXPECT_EQ(hexAt(box, 231, 3), "000000");
}

} // namespace
} // namespace KDV
