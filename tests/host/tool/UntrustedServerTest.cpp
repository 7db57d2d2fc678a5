// Servers that are not there, are something else, or mean harm; and who is told the user's password.
#include "ScriptedServer.h"
#include "ToolFixture.h"

#include <filesystem>
#include <fstream>

using namespace KDV::Host::Test;
using Way = ScriptedServer::Way;
using testing::HasSubstr;
using testing::Not;

namespace {

const std::vector<std::vector<std::string>> commands = {
    {"status"},  {"status", "--check"},     {"--json", "status"},
    {"tree"},    {"list", "CIM_DiskDrive"}, {"show", "CIM_X.Name=\"x\""},
    {"refresh"}, {"watch", "--count", "1"}};

// Every command refuses such a server, says so and names the server or the reason.
void expectAllRefuse(const ScriptedServer& server, const std::string& why)
{
    for (const std::vector<std::string>& command : commands) {
        SCOPED_TRACE(command.front());
        expectRefusal(runTool(server.url(), command), why);
    }
}

class CredentialsFile : public testing::Test {
protected:
    void SetUp() override
    {
        std::string folder = (std::filesystem::temp_directory_path() / "kdv-tool-XXXXXX").string();
        ASSERT_NE(::mkdtemp(folder.data()), nullptr);
        _folder = folder;
    }
    void TearDown() override { std::filesystem::remove_all(_folder); }

    std::string fileWith(const std::string& text, std::filesystem::perms mode)
    {
        const std::filesystem::path file = _folder / "credentials";
        std::ofstream(file) << text;
        std::filesystem::permissions(file, mode);
        return file.string();
    }

private:
    std::filesystem::path _folder;
};

constexpr auto ownersOnly = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;

} // namespace

TEST(UntrustedServer, ThatIsNotThereIsUnreachable) { expectAllRefuse(ScriptedServer(Way::Refuse), "127.0.0.1"); }

TEST(UntrustedServer, ThatHangsUpIsUnreachable) { expectAllRefuse(ScriptedServer(Way::CloseAtOnce), "127.0.0.1"); }

TEST(UntrustedServer, ThatSaysNothingIsGivenUp)
{
    const ScriptedServer server(Way::SayNothing);
    expectRefusal(runTool(server.url(), {"--timeout", "1", "status"}), "127.0.0.1");
}

TEST(UntrustedServer, ThatDoesNotSpeakHttpIsRefused)
{
    expectAllRefuse(ScriptedServer(std::string("SSH-2.0-Server\r\n\x00\xff\xfe\r\n", 22)), "127.0.0.1");
}

TEST(UntrustedServer, ThatAnswersAnotherStatusIsRefused)
{
    expectAllRefuse(ScriptedServer(httpAnswer("", "404 Not Found")), "HTTP 404");
    expectAllRefuse(ScriptedServer(httpAnswer("", "500 Internal Server Error")), "HTTP 500");
    expectAllRefuse(ScriptedServer(httpAnswer("", "302 Found")), "HTTP 302");
}

TEST(UntrustedServer, ThatAnswersNoCimXmlIsRefused)
{
    const std::string notCimXml = "not CIM-XML";
    expectAllRefuse(ScriptedServer(httpAnswer("<html><body>It works!</body></html>")), notCimXml);
    expectAllRefuse(ScriptedServer(httpAnswer("")), notCimXml);
    expectAllRefuse(ScriptedServer(httpAnswer("It works")), notCimXml);
    expectAllRefuse(ScriptedServer(httpAnswer(std::string(100, '\0'))), notCimXml);
    expectAllRefuse(ScriptedServer(httpAnswer("<?xml version=\"1.0\"?><CIM><MESSAGE><SIMPLERSP>")), notCimXml);
}

TEST(UntrustedServer, ThatSendsEntitiesOrDepthIsRefused)
{
    expectAllRefuse(
        ScriptedServer(httpAnswer("<?xml version=\"1.0\"?><!DOCTYPE CIM [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b "
                                  "\"&a;&a;&a;&a;&a;&a;&a;&a;\">]><CIM>&b;&b;&b;</CIM>")),
        "not CIM-XML");
    std::string deep = "<?xml version=\"1.0\"?><CIM>";
    for (int level = 0; level < 200'000; ++level)
        deep += "<VALUE.REFERENCE>";
    expectRefusal(runTool(ScriptedServer(httpAnswer(deep)).url(), {"list", "CIM_DiskDrive"}), "not CIM-XML");
}

TEST(UntrustedServer, ThatEndsInTheMiddleIsRefused)
{
    const std::string whole = cimAnswer("EnumerateInstances", "<IRETURNVALUE/>");
    for (const std::size_t left : {std::size_t{10}, std::size_t{60}, whole.size() - 20, whole.size() - 1})
        expectRefusal(runTool(ScriptedServer(whole.substr(0, left)).url(), {"list", "CIM_DiskDrive"}), "127.0.0.1");
}

TEST(UntrustedServer, ThatRefusesIsQuoted)
{
    expectAllRefuse(ScriptedServer(cimAnswer("X", "<ERROR CODE=\"2\" DESCRIPTION=\"you may not\"/>")),
                    "error 2: you may not");
}

TEST(UntrustedServer, ThatAnswersNothingKnowsNoMachine)
{
    const ScriptedServer server(cimAnswer("EnumerateInstances", "<IRETURNVALUE/>"));
    EXPECT_EQ(runTool(server.url(), {"status"}).status, 3);
    EXPECT_EQ(runTool(server.url(), {"list", "CIM_DiskDrive"}).output, "");
    expectRefusal(runTool(server.url(), {"show", "CIM_X.Name=\"x\""}), "without an instance");
    expectRefusal(runTool(server.url(), {"refresh"}), "no worker");
}

TEST_F(CredentialsFile, ThatOthersMayReadIsRefusedBeforeAnythingIsSent)
{
    const ScriptedServer server(httpAnswer("", "401 Unauthorized"));
    for (const auto more : {std::filesystem::perms::group_read, std::filesystem::perms::others_read,
                            std::filesystem::perms::group_write}) {
        const Said said =
            runTool(server.url(), {"--credentials", fileWith("admin:geheim\n", ownersOnly | more), "status"});
        expectRefusal(said, "chmod 600");
        EXPECT_THAT(said.error, Not(HasSubstr("geheim")));
    }
    EXPECT_TRUE(server.asked().empty());
}

TEST_F(CredentialsFile, IsSentToTheServerThatWasNamed)
{
    const ScriptedServer server(httpAnswer("", "401 Unauthorized"));
    const Said said = runTool(server.url(), {"--credentials", fileWith("admin:a:b\n", ownersOnly), "status"});
    expectRefusal(said, "wants a user");
    ASSERT_FALSE(server.asked().empty());
    EXPECT_THAT(server.asked()[0], HasSubstr("Authorization: Basic YWRtaW46YTpi\r\n"));
    const Said without = runTool(server.url(), {"status"});
    expectRefusal(without, "--credentials");
    EXPECT_THAT(server.asked().back(), Not(HasSubstr("Authorization")));
}

TEST_F(CredentialsFile, ThatCannotBeUsedIsNamed)
{
    const ScriptedServer server(httpAnswer("", "401 Unauthorized"));
    expectRefusal(runTool(server.url(), {"--credentials", "/nowhere/credentials", "status"}), "/nowhere/credentials");
    for (const char* text : {"", "no colon\n", ":no user\n"})
        expectRefusal(runTool(server.url(), {"--credentials", fileWith(text, ownersOnly), "status"}), "user:password");
    const std::string folder = std::filesystem::temp_directory_path().string();
    expectRefusal(runTool(server.url(), {"--credentials", folder, "status"}), "");
    EXPECT_TRUE(server.asked().empty());
}
