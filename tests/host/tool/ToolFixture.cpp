#include "ToolFixture.h"

#include <algorithm>

namespace KDV::Host::Test {

std::unique_ptr<StartedProgram> startTool(const std::string& url, const std::vector<std::string>& arguments)
{
    std::vector<std::string> command{KDV_BUILD_DIR "/bin/kdv-sas", "--server", url};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return std::make_unique<StartedProgram>(command);
}

Said runTool(const std::string& url, const std::vector<std::string>& arguments)
{
    const std::unique_ptr<StartedProgram> program = startTool(url, arguments);
    Said said;
    said.status = program->waitForEnd();
    said.output = program->output();
    said.error = program->error();
    return said;
}

void expectRefusal(const Said& said, const std::string& why)
{
    EXPECT_EQ(said.status, 3) << said.output << said.error;
    EXPECT_EQ(said.output, "");
    EXPECT_EQ(said.error.compare(0, 9, "kdv-sas: "), 0) << said.error;
    EXPECT_THAT(said.error, testing::HasSubstr(why));
    EXPECT_EQ(std::count(said.error.begin(), said.error.end(), '\n'), 1) << said.error;
}

} // namespace KDV::Host::Test
