#include "hostserver/Registration.h"

#include "hostserver/UntypedPath.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include <gtest/gtest.h>

using namespace KDV::Host;

namespace {

class RegistrationTest : public testing::Test {
protected:
    RegistrationTest()
    {
        std::string name = (std::filesystem::temp_directory_path() / "kdv-registration-XXXXXX").string();
        folder = ::mkdtemp(name.data());
    }
    ~RegistrationTest() override { std::filesystem::remove_all(folder); }
    std::vector<Registration> read(const std::string& text)
    {
        std::ofstream(folder / "x.reg") << text;
        return readRegistrations(folder / "x.reg");
    }
    std::string mistake(const std::string& text)
    {
        try {
            read(text);
        } catch (const std::runtime_error& error) {
            const std::string what = error.what();
            return what.substr(what.find("x.reg:"));
        }
        return "none";
    }
    std::filesystem::path folder;
};

} // namespace

TEST_F(RegistrationTest, ReadsBlocks)
{
    const auto all = read("# a comment\n[A]\n   provider: P\n   location: L\n   type: instance association\n"
                          "   namespace: root/a root/b\n   unload: never\n\n[B]\r\nprovider: P\r\nlocation: L\r\n"
                          "type: method indication\r\nnamespace: root/a\r\n");
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0].className, "A");
    EXPECT_EQ(all[0].provider, "P");
    EXPECT_EQ(all[0].location, "L");
    EXPECT_TRUE(all[0].instances && all[0].associations && !all[0].methods && !all[0].indications);
    EXPECT_EQ(all[0].nameSpaces, (std::vector<std::string>{"root/a", "root/b"}));
    EXPECT_TRUE(!all[1].instances && !all[1].associations && all[1].methods && all[1].indications);
}

TEST_F(RegistrationTest, SaysWhereAMistakeIs)
{
    EXPECT_EQ(mistake("[A\n"), "x.reg:1: expected \"[class name]\", found \"[A\"");
    EXPECT_EQ(mistake("provider: P\n"), "x.reg:1: expected \"key: value\" in a block, found \"provider: P\"");
    EXPECT_EQ(mistake("[A]\ncolour: red\n"), "x.reg:2: unknown key \"colour\"");
    EXPECT_EQ(mistake("[A]\ntype: instance wheel\n"), "x.reg:2: unknown provider type \"wheel\"");
    EXPECT_EQ(mistake("[A]\nprovider: P\nlocation: L\ntype: instance\n"),
              "x.reg:4: the block of A lacks provider, location, type or namespace");
    EXPECT_THROW(readRegistrations(folder / "none.reg"), std::runtime_error);
}

TEST(UntypedPath, ReadsTheFormsThatClientsWrite)
{
    const RequestPath full = readUntypedPath("//host:5988/root/a:C.K=\"x\\\"y\\\\z, w\",N=-3,B=TRUE");
    EXPECT_EQ(full.host, "host:5988");
    EXPECT_EQ(full.nameSpace, "root/a");
    EXPECT_EQ(full.className, "C");
    ASSERT_EQ(full.keys.size(), 3u);
    EXPECT_EQ(full.keys[0].text, "x\"y\\z, w");
    EXPECT_EQ(full.keys[1].text, "-3");
    EXPECT_EQ(full.keys[1].kind, KeyKind::Numeric);
    EXPECT_EQ(full.keys[2].kind, KeyKind::Boolean);
    EXPECT_EQ(readUntypedPath("C.K=\"a:b.c\"").nameSpace, "");
    EXPECT_EQ(readUntypedPath("C.K=\"a:b.c\"").keys.at(0).text, "a:b.c");
    for (const char* wrong : {"", "C", "C.", "C.K", "C.K=", "C.=1", "C.K=\"x", "C.K=\"x\"y", "//host", "C.K=\"\\"})
        EXPECT_THROW(readUntypedPath(wrong), std::runtime_error) << wrong;
}
