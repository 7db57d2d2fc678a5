// The model and its operations as the command-line client sees them.
#include "ProgramHost.h"

#include <set>
#include <sstream>

#include <gtest/gtest.h>

using namespace KDV::Host::Test;

namespace {

std::vector<std::string> linesOf(const std::string& text)
{
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        if (!line.empty()) lines.push_back(line);
    return lines;
}

bool contains(const std::string& text, const std::string& part) { return text.find(part) != text.npos; }

class Wbemcli : public testing::Test {
protected:
    static void SetUpTestSuite() { host = new ProgramHost; }
    static void TearDownTestSuite() { delete host; }
    void SetUp() override
    {
        if (run({"sh", "-c", "command -v wbemcli"}).status != 0) GTEST_SKIP() << "wbemcli is not installed";
    }
    std::string url(const std::string& object) const
    {
        return "http://127.0.0.1:" + std::to_string(host->port()) + "/root/vnr" + (object.empty() ? "" : ":" + object);
    }
    // What it prints; its own complaints begin with "* wbemcli".
    std::string ask(const std::string& operation, const std::string& object)
    {
        return run({"wbemcli", "-nl", operation, url(object)}).output;
    }
    std::string good(const std::string& operation, const std::string& object)
    {
        std::string output = ask(operation, object);
        EXPECT_FALSE(contains(output, "* wbemcli")) << operation << ' ' << object << '\n' << output;
        return output;
    }
    // A path as it was printed, without the server.
    static std::string objectOf(const std::string& line) { return line.substr(line.find("/root/vnr:") + 10); }
    static ProgramHost* host;
};

ProgramHost* Wbemcli::host = nullptr;

} // namespace

TEST_F(Wbemcli, PrintsTheArraySystemsOfBothAdapters)
{
    const std::string systems = good("ei", "KDV_SASArraySystem");
    for (const char* row :
         {"-ElementName=\"SAS HBA in Slot 3\"", "-ElementName=\"SAS HBA in Embedded Slot\"", "-OperationalStatus=2",
          "-EnabledDefault=2", "-EnabledState=5", "-RequestedState=12", "-CreationClassName=\"KDV_SASArraySystem\"",
          "-NameFormat=\"Other\"", "-Dedicated=3,15", "-IdentifyingDescriptions=\"Other Vendor Specific Name\""})
        EXPECT_TRUE(contains(systems, row)) << row << '\n' << systems;
    const std::string through = good("ei", "CIM_ComputerSystem");
    for (const std::string& line : linesOf(systems))
        EXPECT_TRUE(contains(through, line)) << line;
}

TEST_F(Wbemcli, EnumeratesEveryClassByNameAndByInstance)
{
    std::size_t served = 0;
    for (const std::string& line : linesOf(good("ecn", ""))) {
        const std::string name = line.substr(line.rfind(':') + 1);
        if (name.compare(0, 4, "KDV_") != 0) continue;
        const auto names = linesOf(good("ein", name));
        std::size_t instances = 0;
        for (const std::string& each : linesOf(good("ei", name)))
            instances += each[0] != '-';
        EXPECT_EQ(instances, names.size()) << name;
        EXPECT_FALSE(contains(good("gc", name), "CIM_ERR")) << name;
        served += !names.empty();
    }
    EXPECT_GE(served, 60u) << "classes with instances in the default scenario";
}

TEST_F(Wbemcli, GetsAnInstanceByThePathThatItPrinted)
{
    for (const char* name : {"KDV_SASArraySystem", "KDV_SASDiskDrive", "KDV_SASStorageVolume", "KDV_SASProduct"}) {
        const auto names = linesOf(good("ein", name));
        ASSERT_FALSE(names.empty());
        const std::string instance = good("gi", objectOf(names.front()));
        EXPECT_TRUE(contains(good("ei", name), instance.substr(0, instance.find_last_not_of('\n')))) << instance;
    }
}

TEST_F(Wbemcli, FollowsAssociationsFromTheFirstInstanceOfEachClass)
{
    std::set<std::string> done;
    for (const std::string& line : linesOf(good("ein", "CIM_ManagedElement"))) {
        const std::string object = objectOf(line);
        if (!done.insert(object.substr(0, object.find('.'))).second) continue;
        const std::size_t names = linesOf(good("ain", object)).size();
        EXPECT_GT(names, 0u) << object;
        std::size_t instances = 0;
        for (const std::string& each : linesOf(good("ai", object)))
            instances += each[0] != '-';
        EXPECT_EQ(instances, names) << object;
        EXPECT_EQ(linesOf(good("rin", object)).size(), names) << object;
        std::size_t links = 0;
        for (const std::string& each : linesOf(good("ri", object)))
            links += each[0] != '-';
        EXPECT_EQ(links, names) << object;
    }
    EXPECT_GE(done.size(), 25u);
}

TEST_F(Wbemcli, RunsAPassAndIsToldOfMistakes)
{
    const auto worker = linesOf(good("ein", "KDV_AutoStartSASHBA"));
    ASSERT_EQ(worker.size(), 1u);
    const auto call = [&](const std::string& method) {
        return run({"wbemcli", "cm", url(objectOf(worker.front())), method}).output;
    };
    EXPECT_TRUE(contains(call("PerformWork"), "PerformWork: 0")) << call("PerformWork");
    EXPECT_TRUE(contains(call("Rest"), "(17) CIM_ERR_METHOD_NOT_FOUND"));
    EXPECT_TRUE(contains(ask("ei", "KDV_None"), "(5) CIM_ERR_INVALID_CLASS"));
    EXPECT_TRUE(contains(ask("gi", "KDV_SASProduct.IdentifyingNumber=\"x\",Name=\"y\",Vendor=\"z\",Version=\"0\""),
                         "(6) CIM_ERR_NOT_FOUND"));
    EXPECT_TRUE(
        contains(run({"wbemcli", "ein", "http://127.0.0.1:" + std::to_string(host->port()) + "/root/no:X"}).output,
                 "(3) CIM_ERR_INVALID_NAMESPACE"));
}

TEST(Program, GreetsAndEndsCleanly)
{
    ProgramHost host;
    EXPECT_TRUE(contains(host.greeting(), "namespace root/vnr: ")) << host.greeting();
    EXPECT_TRUE(contains(host.greeting(), "wbemcli ei 'http://127.0.0.1:")) << host.greeting();
    EXPECT_TRUE(contains(host.greeting(), "2 array systems")) << host.greeting();
    EXPECT_EQ(host.terminate(), 0) << host.greeting();
    EXPECT_TRUE(contains(host.greeting(), "kdv-cimhost ended"));
}

TEST(Program, ServesAMachineWithoutSasHardwareAndSaysWhatToTry)
{
    ProgramHost program(
        {}, {{"KDV_SAS_SCENARIO", ""}, {"KDV_SYSFS_ROOT", "/nonexistent/sys"}, {"KDV_CONFIG_DIR", "/nonexistent"}});
    const std::string& greeting = program.greeting();
    EXPECT_TRUE(contains(greeting, "serving 0 array systems")) << greeting;
    EXPECT_TRUE(contains(greeting, "no SAS adapter was found: ")) << greeting;
    EXPECT_TRUE(contains(greeting, "/sys/class/scsi_host")) << greeting;
    EXPECT_TRUE(contains(greeting, "KDV_SAS_SCENARIO")) << greeting;
    EXPECT_FALSE(contains(greeting, "rror")) << greeting;
    EXPECT_EQ(program.terminate(), 0);
}

TEST(Program, SaysWhatIsWrongWithItsArguments)
{
    const std::string program = KDV_BUILD_DIR "/bin/kdv-cimhost";
    EXPECT_EQ(run({program, "--version"}).output.compare(0, 12, "kdv-cimhost "), 0);
    EXPECT_TRUE(contains(run({program, "--help"}).output, "--listen"));
    for (const std::vector<std::string>& wrong :
         std::vector<std::vector<std::string>>{{program, "--listen", "nowhere"},
                                               {program, "--schema-dir", "/nonexistent"},
                                               {program, "--profile", "other"},
                                               {program, "--listen", "127.0.0.1:0", "--provider-dir", "/nonexistent"},
                                               {program, "--unknown"}}) {
        const Finished finished = run(wrong);
        EXPECT_GT(finished.status, 0) << wrong[1];
        EXPECT_NE(finished.output, "") << wrong[1];
    }
}
