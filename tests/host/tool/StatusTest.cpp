// What the tool says of a machine: one screen, a line for monitoring, lists, a tree, one instance, JSON.
#include "ToolFixture.h"
#include "hosttest/CimClient.h"

#include <algorithm>
#include <sstream>

using namespace KDV::Host::Test;
using nlohmann::json;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

class Tool : public ToolFixture {};

// The blocks of a list: a path, then lines that are set in; parted by an empty line or by the next path.
std::vector<std::pair<std::string, std::string>> blocksOf(const std::string& text)
{
    std::vector<std::pair<std::string, std::string>> blocks;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.empty()) continue;
        if (line[0] != ' ')
            blocks.emplace_back(line, "");
        else if (!blocks.empty())
            blocks.back().second += line + '\n';
    }
    return blocks;
}

} // namespace

TEST_F(Tool, TellsByItsExitStatusHowTheMachineIs)
{
    serve();
    Said said = tool({"status"});
    EXPECT_EQ(said.status, 0) << said.error;
    EXPECT_THAT(said.output, AllOf(StartsWith("SAS storage: OK"), HasSubstr("ACME Linkline 12G-8e 3F00A17C"),
                                   HasSubstr("16 disks"), Not(HasSubstr("\033"))));

    file.disk(12)["status"] = "predictiveFailure";
    pass();
    said = tool({"status"});
    EXPECT_EQ(said.status, 1) << said.error;
    EXPECT_THAT(said.output, AllOf(StartsWith("SAS storage: DEGRADED"), HasSubstr("IA1CZ90R0104")));

    file.disk(3)["status"] = "failed";
    pass();
    said = tool({"status"});
    EXPECT_EQ(said.status, 2) << said.error;
    EXPECT_THAT(said.output, StartsWith("SAS storage: FAILED"));
    EXPECT_LT(said.output.find("SP0711K4X004"), said.output.find("IA1CZ90R0104")) << "worst first";

    file.disk(3)["status"] = "ok";
    file.disk(12)["status"] = "ok";
    pass();
    EXPECT_EQ(tool({"status"}).status, 0);
}

TEST_F(Tool, TellsByItsExitStatusWhichPartOfTheMachineIsIll)
{
    serve();
    const auto statusWith = [&](json& element, const char* field, const char* state) {
        element[field] = state;
        pass();
        const int status = tool({"status"}).status;
        element[field] = "ok";
        return status;
    };
    EXPECT_EQ(statusWith(file.box(1), "fanStatus", "degraded"), 1);
    EXPECT_EQ(statusWith(file.box(1), "fanStatus", "failed"), 2);
    EXPECT_EQ(statusWith(file.box(0), "powerStatus", "failed"), 2);
    EXPECT_EQ(statusWith(file.box(0), "temperatureStatus", "degraded"), 1);
    EXPECT_EQ(statusWith(file.volume(1), "status", "degraded"), 1);
    EXPECT_EQ(statusWith(file.volume(1), "status", "failed"), 2);
    EXPECT_EQ(statusWith(file.hba(1), "controllerStatus", "failed"), 2);
    EXPECT_EQ(statusWith(file.hba(1), "arraySystemStatus", "degraded"), 1);
    EXPECT_EQ(statusWith(file.hba(1), "arraySystemStatus", "unknown"), 3);
    EXPECT_EQ(statusWith(file.hba(1), "arraySystemStatus", "ok"), 0);
}

TEST_F(Tool, CannotTellWithoutAnyAdapter)
{
    machine.start((machine.folder() / "missing.json").string());
    const Said said = tool({"status"});
    EXPECT_EQ(said.status, 3);
    EXPECT_THAT(said.output, HasSubstr("no SAS adapter"));
    EXPECT_THAT(tool({"status", "--check"}).output, StartsWith("SAS UNKNOWN - 0 adapters"));
}

TEST_F(Tool, ChecksInOneLineWithCounts)
{
    serve();
    Said said = tool({"status", "--check"});
    EXPECT_EQ(said.status, 0);
    EXPECT_EQ(said.output,
              "SAS OK - 2 adapters; 3 boxes; 3 volumes; 24 disks | disks=24 disks_failed=0 disks_degraded=0 "
              "volumes_failed=0 volumes_degraded=0\n");
    file.disk(3)["status"] = "failed";
    file.disk(4)["status"] = "degraded";
    file.volume(1)["status"] = "degraded";
    pass();
    said = tool({"--check", "status"});
    EXPECT_EQ(said.status, 3) << "the option belongs to the command";
    said = tool({"status", "--check"});
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.output, AllOf(StartsWith("SAS CRITICAL - 2 adapters"), HasSubstr("24 disks, 1 FAILED, 1 DEGRADED"),
                                   EndsWith(" | disks=24 disks_failed=1 disks_degraded=1 volumes_failed=0 "
                                            "volumes_degraded=1\n")));
    EXPECT_EQ(std::count(said.output.begin(), said.output.end(), '\n'), 1);
}

TEST_F(Tool, SpeaksJson)
{
    serve();
    file.disk(12)["status"] = "predictiveFailure";
    pass();
    const Said status = tool({"--json", "status"});
    EXPECT_EQ(status.status, 1);
    const json machineSeen = json::parse(status.output);
    EXPECT_EQ(machineSeen["health"], "DEGRADED");
    EXPECT_EQ(machineSeen["adapters"].size(), 2u);
    EXPECT_EQ(machineSeen["boxes"].size(), 3u);
    EXPECT_EQ(machineSeen["volumes"].size(), 3u);
    ASSERT_EQ(machineSeen["disks"].size(), 24u);
    EXPECT_EQ(machineSeen["disks"][12]["id"], "IA1CZ90R0104");
    EXPECT_EQ(machineSeen["disks"][12]["health"], "DEGRADED");
    EXPECT_EQ(machineSeen["volumes"][1]["members"].size(), 3u);
    EXPECT_EQ(json::parse(tool({"--json", "tree"}).output), machineSeen);

    const json disks = json::parse(tool({"--json", "list", "CIM_DiskDrive"}).output);
    ASSERT_EQ(disks.size(), 24u);
    EXPECT_EQ(disks[12]["class"], "KDV_SASDiskDrive");
    EXPECT_EQ(disks[12]["properties"]["OperationalStatus"], json({5}));
    const json shown = json::parse(tool({"--json", "show", disks[12]["path"]}).output);
    EXPECT_EQ(shown["properties"], disks[12]["properties"]);
}

TEST_F(Tool, DrawsATreeOfAll)
{
    serve();
    const Said said = tool({"tree"});
    EXPECT_EQ(said.status, 0) << said.error;
    for (const char* part : {"Adapter", "Box Port 1E Box 2", "Sensor", "Logical Volume 1 (RAID 5)"})
        EXPECT_THAT(said.output, HasSubstr(part));
    for (unsigned place = 0; place < 16; ++place)
        EXPECT_THAT(said.output, HasSubstr("serial " + file.disk(place)["serialNumber"].get<std::string>()));
}

TEST_F(Tool, ShowsWhatAListNames)
{
    serve();
    for (const char* ofClass : {"KDV_SASDiskDrive", "KDV_SASStorageEnclosureProcessor", "KDV_SASFirmware",
                                "KDV_SASArraySystemDiskDrive", "KDV_SASStorageExtentStorageVolume"}) {
        const Said list = tool({"list", ofClass});
        EXPECT_EQ(list.status, 0) << list.error;
        const auto blocks = blocksOf(list.output);
        EXPECT_EQ(blocks.size(), machine.countNames(ofClass)) << ofClass;
        ASSERT_FALSE(blocks.empty()) << ofClass;
        for (const auto* block : {&blocks.front(), &blocks.back()}) {
            const Said shown = tool({"show", block->first});
            EXPECT_EQ(shown.status, 0) << block->first << shown.error;
            const auto one = blocksOf(shown.output);
            ASSERT_EQ(one.size(), 1u) << shown.output;
            EXPECT_EQ(one[0].second, block->second);
            EXPECT_THAT(one[0].first, EndsWith(block->first));
            EXPECT_EQ(tool({"show", one[0].first}).output, shown.output) << "with its namespace";
        }
    }
}

TEST_F(Tool, ShowsElementsWhoseNamesNeedQuoting)
{
    file.disk(6)["serialNumber"] = "A\"B\\C,D=E.F&<>' \xC3\xA9";
    file.disk(7)["serialNumber"] = "//host/root:X.Y=1";
    file.hba()["name"] = "quoted \"name\", \\ and = it";
    file.write();
    serve();
    for (const char* ofClass : {"KDV_SASDiskDrive", "KDV_SASArraySystemDiskDrive"})
        for (unsigned place : {6u, 7u}) {
            const Said list = tool({"list", ofClass});
            const auto blocks = blocksOf(list.output);
            ASSERT_EQ(blocks.size(), 24u) << list.output << list.error;
            const Said shown = tool({"show", blocks[place].first});
            EXPECT_EQ(shown.status, 0) << blocks[place].first << shown.error;
            const auto one = blocksOf(shown.output);
            ASSERT_EQ(one.size(), 1u) << shown.output;
            EXPECT_EQ(one[0].second, blocks[place].second);
        }
}

TEST_F(Tool, MakesTheProviderLookAtTheHardware)
{
    serve();
    const unsigned before = machine.passes();
    EXPECT_EQ(tool({"refresh"}).status, 0);
    EXPECT_GT(machine.passes(), before);
}

TEST_F(Tool, SaysWhyItCannot)
{
    serve();
    expectRefusal(tool({"list", "KDV_Nothing"}), "KDV_Nothing");
    expectRefusal(tool({"--namespace", "root/nothing", "list", "KDV_SASDiskDrive"}), "root/nothing");
    expectRefusal(tool({"--namespace", "root/nothing", "status"}), "root/nothing");
    expectRefusal(tool({"show", "KDV_SASArraySystem.CreationClassName=\"KDV_SASArraySystem\",Name=\"gone\""}),
                  "error 6");
    expectRefusal(tool({"show", "KDV_SASArraySystem.Name=\"open"}), "expected");
    expectRefusal(tool({"show", "KDV_SASArraySystem.Name"}), "expected");
    expectRefusal(tool({"show", ""}), "expected");
    for (const std::vector<std::string>& wrong :
         {std::vector<std::string>{}, {"no-such-command"}, {"list"}, {"status", "--no-such-option"}}) {
        const Said said = tool(wrong);
        EXPECT_EQ(said.status, 3);
        EXPECT_EQ(said.output, "");
        EXPECT_NE(said.error, "");
    }
    EXPECT_EQ(tool({"--help"}).status, 0);
}
