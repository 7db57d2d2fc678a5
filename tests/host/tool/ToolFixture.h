// The program kdv-sas as it is built, run as a user runs it against a host that serves a machine of the test's own.
#pragma once

#include "hostprogram/MachineFile.h"
#include "hostprogram/ServedMachine.h"
#include "hostprogram/StartedProgram.h"

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace KDV::Host::Test {

struct Said {
    int status = -1;
    std::string output;
    std::string error;
};

std::unique_ptr<StartedProgram> startTool(const std::string& url, const std::vector<std::string>& arguments);
Said runTool(const std::string& url, const std::vector<std::string>& arguments);

// It ended with 3, nothing that looks like a result on its output, and one line on why.
void expectRefusal(const Said& said, const std::string& why);

class ToolFixture : public testing::Test {
protected:
    void serve() { machine.start(file.path().string()); }
    void pass()
    {
        file.write();
        machine.performWork();
    }
    Said tool(const std::vector<std::string>& arguments) const { return runTool(machine.url(), arguments); }

    ServedMachine machine;
    MachineFile file{machine.folder() / "machine.json", "default.json"};
};

} // namespace KDV::Host::Test
