// A capture of a machine as a user makes one and reads it again.
#include "FakeSysfs.h"
#include "PageBytes.h"
#include "hostprogram/StartedProgram.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/stat.h>
#include <sys/utsname.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

namespace fs = std::filesystem;
using KDV::FakeSysfs;
using KDV::Host::Test::StartedProgram;
using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

struct Said {
    int status = -1;
    std::string output, error;
};

Said run(const std::vector<std::string>& command, const std::string& root)
{
    StartedProgram program(command, {{"KDV_SYSFS_ROOT", root}});
    Said said;
    said.status = program.waitForEnd();
    said.output = program.output();
    said.error = program.error();
    return said;
}

Said tool(std::vector<std::string> arguments, const std::string& root)
{
    arguments.insert(arguments.begin(), KDV_BUILD_DIR "/bin/kdv-sas");
    return run(arguments, root);
}

std::string hostName()
{
    utsname system{};
    uname(&system);
    return system.nodename;
}

class Capture : public testing::Test {
protected:
    Capture()
    {
        KDV::FakeHba hba;
        hba.attributes = {{"board_name", "LINKLINE 9300-8e"}, {"board_tracer", "SP91542353"}};
        const std::string host = machine.addHba(hba);
        KDV::FakeDisk disk;
        disk.parent = "port-0:1";
        disk.endDevice = "end_device-0:1";
        machine.addPort(host, "port-0:1", {5});
        machine.addDisk(host, disk);
        machine.page(disk.address, "ready", "ready\n");
        machine.page(
            disk.address, "smartctl.json",
            R"({"smartctl": {"exit_status": 0}, "serial_number": "SP0001", "smart_status": {"passed": true}})");
        KDV::FakeDisk box = disk;
        box.address = "0:0:8:0";
        box.block = "";
        box.generic = "sg8";
        box.type = "13";
        box.serial = "ENC000123X";
        box.wwid = "naa.500a098000005080";
        box.endDevice = "end_device-0:2";
        box.sasAddress = "0x500a098000005081";
        machine.addEnclosure(machine.addDisk(host, box), "0x500a098000005080", 1);
        const std::string name = "shelf of " + hostName();
        machine.page(box.address, "ready", "ready\n");
        machine.page(box.address, "ses_01", KDV::sesConfiguration({{0x17, 1}}));
        machine.page(box.address, "ses_07",
                     KDV::sesPage(0x07, 0, KDV::bytesOf({0, 0}) + KDV::number16(name.size()) + name));
    }

    std::string file() const { return (place.path("").parent_path().parent_path() / "machine.tar.gz").string(); }

    fs::path unpacked() const
    {
        const fs::path folder = place.path("").parent_path().parent_path() / "unpacked";
        fs::create_directory(folder);
        EXPECT_EQ(run({"tar", "-xzf", file(), "-C", folder.string()}, "").status, 0);
        return folder;
    }

    static std::string contentOf(const fs::path& path)
    {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    FakeSysfs machine;
    const FakeSysfs place; // for what is made
};

TEST_F(Capture, HasTheMachineWithoutItsSerialNumbers)
{
    const Said said = tool({"capture", file()}, machine.root());
    ASSERT_EQ(said.status, 0) << said.error;
    EXPECT_EQ(said.output, "");
    EXPECT_THAT(said.error, HasSubstr("1 SAS adapter(s)"));
    struct stat status {};
    ASSERT_EQ(stat(file().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U);

    const fs::path folder = unpacked();
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file() || entry.is_symlink()) continue;
        for (const std::string secret : {"SP91542353", "SP0001", "ENC000123X", "5000a72001240001", "500a098000005080"})
            EXPECT_THAT(contentOf(entry.path()), Not(HasSubstr(secret))) << entry.path();
    }
    if (hostName().size() >= 3 && hostName() != "localhost") {
        EXPECT_THAT(contentOf(folder / "pages/0:0:8:0/ses_07"), Not(HasSubstr(hostName())));
    }
    const std::string description = contentOf(folder / "capture.txt");
    EXPECT_THAT(description, HasSubstr("made by: kdv-sas "));
    EXPECT_THAT(description, HasSubstr("replaced\n"));
    EXPECT_THAT(description, HasSubstr("SAS adapters: 1\ndevices to ask: 2\nnot read: 0\n"));

    json before = json::parse(tool({"scenario"}, machine.root()).output);
    json after = json::parse(tool({"scenario"}, (folder / "sys").string()).output);
    json& disk = before["hbas"][0]["physicalDrives"][0];
    ASSERT_EQ(disk["serialNumber"], "SP0001");
    for (json* each : {&before, &after}) {
        json& hba = (*each)["hbas"][0];
        EXPECT_EQ(hba["name"].get<std::string>().substr(0, 17), "LINKLINE 9300-8e ");
        hba.erase("name");
        for (const char* field : {"serialNumber", "name"})
            hba["physicalDrives"][0].erase(field);
        hba["storageBoxes"][0].erase("serialNumber");
    }
    EXPECT_EQ(before, after);
}

TEST_F(Capture, HasAllWhereOneAsksForIt)
{
    const Said said = tool({"capture", file(), "--with-serial-numbers"}, machine.root());
    ASSERT_EQ(said.status, 0) << said.error;
    EXPECT_THAT(said.error, HasSubstr("mind whom you give it"));
    const fs::path folder = unpacked();
    const Said before = tool({"scenario"}, machine.root());
    const Said after = tool({"scenario"}, folder.string());
    EXPECT_THAT(after.output, HasSubstr("SP0001"));
    EXPECT_EQ(before.output, after.output);
    EXPECT_THAT(contentOf(folder / "capture.txt"), HasSubstr("as they are"));
}

TEST_F(Capture, OfAMachineWithoutAnAdapterSaysSo)
{
    const FakeSysfs bare;
    const Said said = tool({"capture", file()}, bare.root());
    EXPECT_EQ(said.status, 0);
    EXPECT_THAT(said.error, HasSubstr("no SAS adapter was recognised"));
    EXPECT_THAT(contentOf(unpacked() / "capture.txt"), HasSubstr("SAS adapters: 0"));
}

TEST_F(Capture, ThatCannotBeMadeIsRefused)
{
    Said said = tool({"capture"}, machine.root());
    EXPECT_EQ(said.status, 3);
    EXPECT_THAT(said.error, HasSubstr("file"));
    said = tool({"capture", file() + "/no/such/folder.tar.gz"}, machine.root());
    EXPECT_EQ(said.status, 3);
    EXPECT_THAT(said.error, HasSubstr("kdv-sas: cannot write "));
    said = tool({"capture", file()}, machine.root() + "/nothing");
    EXPECT_EQ(said.status, 3);
    EXPECT_THAT(said.error, HasSubstr("kdv-sas: no tree at "));
    EXPECT_FALSE(fs::exists(file()));
}

} // namespace
