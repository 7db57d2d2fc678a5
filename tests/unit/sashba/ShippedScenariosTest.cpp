// The scenarios that come with the product show what they promise.
#include "Playground.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace KDV {
namespace {

std::string shipped(const std::string& name)
{
    std::ifstream file(std::string(KDV_SOURCE_DIR) + "/scenarios/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string generated(const std::string& arguments)
{
    const std::string command = "'" + std::string(KDV_SOURCE_DIR) + "/scenarios/make-large' " + arguments;
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string text;
    std::array<char, 65536> piece{};
    while (const std::size_t got = fread(piece.data(), 1, piece.size(), pipe.get()))
        text.append(piece.data(), got);
    return text;
}

// Members and spares are drives of the HBA with that usage, each used once, and every such drive is used.
void expectVolumesAgree(const Playground& play, std::size_t hbaIndex)
{
    std::map<std::uint32_t, int> usage;
    for (const SasPhysicalDriveRecord* drive : play.drives(hbaIndex))
        usage[std::uint32_t{drive->driveNumber}] = drive->usage;
    std::map<std::uint32_t, int> used;
    for (const SasLogicalDriveRecord* volume : recordsOf(play.hba(hbaIndex)->logicalDrives)) {
        const SasLogicalDriveRecord copy = *volume;
        for (std::uint32_t i = 0; i < copy.memberCount; ++i)
            EXPECT_TRUE(used.emplace(std::uint32_t{copy.members[i]}, 2).second)
                << "drive " << std::uint32_t{copy.members[i]} << " twice";
        for (std::uint32_t i = 0; i < copy.spareCount; ++i)
            EXPECT_TRUE(used.emplace(std::uint32_t{copy.spares[i]}, 3).second)
                << "drive " << std::uint32_t{copy.spares[i]} << " twice";
    }
    for (const auto& [number, role] : usage) {
        const auto found = used.find(number);
        EXPECT_EQ(found == used.end() ? 4 : found->second, role) << "drive " << number;
    }
    for (const auto& [number, role] : used)
        EXPECT_EQ(usage.count(number), 1U) << "drive " << number << " is not there";
}

// A drive with a bay sits in a box that is there, in a bay that the box has, alone, and its box identifier agrees.
void expectBaysAgree(const Playground& play, std::size_t hbaIndex)
{
    std::map<std::uint32_t, std::pair<std::string, int>> boxes;
    for (const SasStorageBoxRecord* box : recordsOf(play.hba(hbaIndex)->storageBoxes))
        boxes[box->boxNumber] = {std::string(textOf(box->name)), box->driveBays};
    std::set<std::string> taken;
    for (const SasPhysicalDriveRecord* drive : play.drives(hbaIndex)) {
        const std::string location(textOf(drive->location));
        EXPECT_TRUE(taken.insert(location).second) << location << " twice";
        const std::size_t bay = location.find(" Bay ");
        if (bay == std::string::npos) {
            EXPECT_NE(location.find("Device"), std::string::npos) << location;
            continue;
        }
        const auto box = boxes.find(drive->boxIdentifier - boxIdentifierBase);
        ASSERT_NE(box, boxes.end()) << location;
        EXPECT_EQ(location.substr(0, bay), box->second.first);
        EXPECT_LE(std::stoi(location.substr(bay + 5)), box->second.second);
    }
}

void expectUniqueNames(const Playground& play)
{
    std::set<std::string> serials;
    std::set<std::string> names;
    for (std::size_t i = 0; i < play.hbas().size(); ++i) {
        EXPECT_TRUE(names.insert(std::string(textOf(play.hba(i)->name))).second);
        for (const SasPhysicalDriveRecord* drive : play.drives(i)) {
            EXPECT_TRUE(serials.insert(std::string(textOf(drive->serialNumber))).second);
            EXPECT_TRUE(names.insert(std::string(textOf(drive->name))).second);
            EXPECT_LT(textOf(drive->serialNumber).size(), sizeof drive->serialNumber - 1) << "nothing was cut";
        }
    }
}

TEST(DefaultScenario, HoldsWhatADemonstrationNeeds)
{
    const Playground play(shipped("default.json"));
    ASSERT_TRUE(play.errors.empty()) << play.errors[0];
    ASSERT_EQ(play.hbas().size(), 2U);
    EXPECT_EQ(play.hba(0)->slotNumber, 3);
    EXPECT_EQ(play.hba(1)->slotNumber, 0);
    std::size_t boxes = 0;
    std::set<int> raidLevels;
    std::set<int> interfaces;
    int solidState = 0, spinning = 0, unassigned = 0, carriers = 0, spares = 0;
    std::size_t drives = 0;
    for (std::size_t i = 0; i < 2; ++i) {
        boxes += recordsOf(play.hba(i)->storageBoxes).size();
        drives += play.drives(i).size();
        for (const SasLogicalDriveRecord* volume : recordsOf(play.hba(i)->logicalDrives)) {
            raidLevels.insert(volume->raidLevel);
            spares += static_cast<int>(volume->spareCount);
        }
        for (const SasPhysicalDriveRecord* drive : play.drives(i)) {
            ++(drive->mediaType == 3 ? solidState : spinning);
            unassigned += drive->usage == 4;
            carriers += drive->carrierAuthStatus != 2;
            interfaces.insert(drive->interface);
        }
        expectVolumesAgree(play, i);
        expectBaysAgree(play, i);
    }
    expectUniqueNames(play);
    EXPECT_EQ(boxes, 3U);
    EXPECT_EQ(drives, 24U);
    EXPECT_EQ(raidLevels, (std::set<int>{3, 5}));
    EXPECT_EQ(spares, 1);
    EXPECT_EQ(interfaces, (std::set<int>{1, 2}));
    EXPECT_GE(solidState, 4);
    EXPECT_GE(spinning, 8);
    EXPECT_GE(unassigned, 8);
    EXPECT_GE(carriers, 4);
}

// What a watcher sees of the first HBA.
std::string alertedState(const Playground& play)
{
    std::string state;
    for (const SasLogicalDriveRecord* volume : play.volumes())
        state +=
            "volume " + std::to_string(volume->redundancyState) + ' ' + std::to_string(volume->rebuildingDrive) + '\n';
    for (const SasPhysicalDriveRecord* drive : play.drives())
        state += "drive " + std::to_string(drive->driveNumber) + ' ' + std::to_string(drive->status) + '\n';
    for (const SasStorageBoxRecord* box : play.boxes())
        state += "fan " + std::to_string(box->fanStatus) + '\n';
    return state;
}

TEST(DefaultScenario, ChangesOneThingAPassAndComesBackToItsBeginning)
{
    Playground play(shipped("default.json"));
    play.pass();
    const std::string begin = alertedState(play);
    for (int round = 0; round < 3; ++round) {
        std::vector<std::string> states = {begin};
        for (int pass = 2; pass <= 12; ++pass) {
            play.pass();
            states.push_back(alertedState(play));
            if (pass <= 11) {
                EXPECT_NE(states[states.size() - 2], states.back()) << "pass " << pass;
            }
        }
        EXPECT_EQ(states.back(), begin) << "round " << round;
        EXPECT_NE(states[1].find("fan 5"), std::string::npos);
        EXPECT_NE(states[3].find("drive 12 3"), std::string::npos);
        EXPECT_EQ(states[4].find("drive 9 "), std::string::npos);
        EXPECT_NE(states[5].find("drive 9 2"), std::string::npos);
        EXPECT_NE(states[6].find("volume 3 4294967295"), std::string::npos);
        EXPECT_NE(states[7].find("volume 4 5"), std::string::npos);
        EXPECT_EQ(states[8].find("volume 4"), std::string::npos);
        play.pass(); // the first pass of the next round
        EXPECT_EQ(alertedState(play), begin);
    }
}

TEST(BareScenario, IsOneHbaWithNothingBehindIt)
{
    const Playground play(shipped("bare.json"));
    ASSERT_EQ(play.hbas().size(), 1U);
    EXPECT_FALSE(play.hba()->physicalDrives);
    EXPECT_FALSE(play.hba()->logicalDrives);
    EXPECT_FALSE(play.hba()->storageBoxes);
    EXPECT_NE(textOf(play.hba()->name), "");
}

TEST(EverythingFailedScenario, HasNoHealthyElement)
{
    const Playground play(shipped("everything-failed.json"));
    ASSERT_TRUE(play.errors.empty()) << play.errors[0];
    EXPECT_EQ(play.hba()->arraySystemStatus, 4);
    EXPECT_EQ(play.hba()->controllerStatus, 3);
    std::set<int> driveCodes;
    for (const SasPhysicalDriveRecord* drive : play.drives())
        driveCodes.insert(drive->status);
    EXPECT_EQ(driveCodes, (std::set<int>{4, 5, 6, 7, 8, 9}));
    std::set<int> redundancy;
    for (const SasLogicalDriveRecord* volume : play.volumes()) {
        redundancy.insert(volume->redundancyState);
        EXPECT_EQ(volume->status, 4);
    }
    EXPECT_EQ(redundancy, (std::set<int>{5, 6}));
    ASSERT_FALSE(play.boxes().empty());
    for (const SasStorageBoxRecord* box : play.boxes()) {
        EXPECT_EQ(box->status, 4);
        EXPECT_EQ(box->fanStatus, 5);
        EXPECT_EQ(box->powerStatus, 5);
        EXPECT_EQ(box->temperatureStatus, 4);
    }
    expectVolumesAgree(play, 0);
    expectBaysAgree(play, 0);
}

class GeneratedScenario : public testing::TestWithParam<std::size_t> {};

TEST_P(GeneratedScenario, HasItsDisksInRealisticPlaces)
{
    const Playground play(generated(std::to_string(GetParam())));
    ASSERT_TRUE(play.errors.empty()) << play.errors[0];
    std::size_t drives = 0;
    for (std::size_t i = 0; i < play.hbas().size(); ++i) {
        drives += play.drives(i).size();
        EXPECT_LE(play.drives(i).size(), 1300U);
        expectVolumesAgree(play, i);
        expectBaysAgree(play, i);
        for (const SasStorageBoxRecord* box : recordsOf(play.hba(i)->storageBoxes))
            EXPECT_TRUE(box->driveBays == 24 || box->driveBays == 60);
    }
    expectUniqueNames(play);
    EXPECT_EQ(drives, GetParam());
}

INSTANTIATE_TEST_SUITE_P(Sizes, GeneratedScenario, testing::Values(0, 1, 24, 120, 1255, 3000));

TEST(GeneratedScenarios, AreTheSameForASeedAndDifferBetweenSeeds)
{
    EXPECT_EQ(generated("30 --seed 5"), generated("30 --seed 5"));
    EXPECT_NE(generated("30 --seed 5"), generated("30 --seed 6"));
}

} // namespace
} // namespace KDV
