#include "kdv-sas/StatusView.h"

#include "kdv-sas/Json.h"
#include "kdv-sas/TreeView.h"

#include <sstream>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace KdvSas {
namespace {

Machine machine()
{
    Machine machine;
    Adapter adapter;
    adapter.name = "SAS HBA in Slot 3";
    adapter.id = "A";
    adapter.health = Health::Ok;
    adapter.status = "OK";
    machine.adapters.push_back(adapter);
    Box box;
    box.name = "Port 1E Box 1";
    box.id = "C";
    box.system = "A";
    box.health = Health::Ok;
    box.status = "OK";
    box.bays = 4;
    machine.boxes.push_back(box);
    for (int i = 0; i < 3; ++i) {
        Disk disk;
        disk.name = "Port 1E Box 1 Bay " + std::to_string(i + 1);
        disk.id = "D" + std::to_string(i);
        disk.system = "A";
        disk.box = "C";
        disk.health = Health::Ok;
        disk.status = "OK";
        disk.use = "member";
        machine.disks.push_back(disk);
    }
    return machine;
}

std::string statusOf(const Machine& machine)
{
    std::ostringstream out;
    printStatus(out, machine, false);
    return out.str();
}

TEST(Status, OfAMachineWithoutAdaptersIsUnknown)
{
    EXPECT_EQ(Machine().worst(), Health::Unknown);
    EXPECT_NE(statusOf(Machine()).find("no SAS adapter"), std::string::npos);
}

TEST(Status, ShowsTheWorstFirst)
{
    Machine sick = machine();
    sick.disks[0].health = Health::Degraded;
    sick.disks[0].status = "Predictive Failure";
    sick.disks[2].health = Health::Failed;
    sick.disks[2].status = "Error";
    EXPECT_EQ(sick.worst(), Health::Failed);
    const std::string text = statusOf(sick);
    const std::size_t failed = text.find("Bay 3: Error");
    const std::size_t degraded = text.find("Bay 1: Predictive Failure");
    ASSERT_NE(failed, std::string::npos) << text;
    ASSERT_NE(degraded, std::string::npos) << text;
    EXPECT_LT(failed, degraded);
    EXPECT_NE(text.find("3 of 4 bays in use"), std::string::npos) << text;
}

TEST(Status, KeepsToOneScreen)
{
    Machine sick = machine();
    for (int i = 0; i < 100; ++i) {
        sick.disks.push_back(sick.disks[0]);
        sick.disks.back().health = Health::Failed;
    }
    EXPECT_NE(statusOf(sick).find("and 80 more"), std::string::npos);
}

TEST(Check, IsOneLineWithPerformanceData)
{
    Machine sick = machine();
    EXPECT_EQ(checkLine(sick), "SAS OK - 1 adapters; 1 boxes; 0 volumes; 3 disks | disks=3 disks_failed=0 "
                               "disks_degraded=0 volumes_failed=0 volumes_degraded=0");
    sick.disks[1].health = Health::Failed;
    sick.disks[1].status = "Error | bad";
    const std::string line = checkLine(sick);
    EXPECT_EQ(line.find("SAS CRITICAL - "), 0u) << line;
    EXPECT_EQ(std::count(line.begin(), line.end(), '|'), 1) << line;
    EXPECT_NE(line.find("disks_failed=1"), std::string::npos) << line;
}

TEST(Tree, HangsDisksUnderTheirBox)
{
    std::ostringstream out;
    printTree(out, machine(), false);
    const std::string text = out.str();
    EXPECT_LT(text.find("Adapter SAS HBA"), text.find("Box Port 1E Box 1"));
    EXPECT_LT(text.find("Box Port 1E Box 1"), text.find("Disk (member) Port 1E Box 1 Bay 1"));
}

TEST(Json, TellsHealthAndLinks)
{
    Machine sick = machine();
    sick.disks[0].name = "not \xff UTF-8";
    const auto json = nlohmann::json::parse(statusJson(sick));
    EXPECT_EQ(json["health"], "OK");
    EXPECT_EQ(json["disks"].size(), 3u);
    EXPECT_EQ(json["disks"][1]["box"], "C");
    EXPECT_EQ(json["boxes"][0]["adapter"], "A");
}

} // namespace
} // namespace KdvSas
