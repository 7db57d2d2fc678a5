#include "sashba/source/ChooseSource.h"

#include "logger/Logger.h"
#include "sashba/scenario/FieldReader.h"
#include "sashba/scenario/JsonTree.h"
#include "sashba/scenario/ScenarioSource.h"
#include "sashba/scenario/WatchedFile.h"
#include "sashba/sysfs/SysfsSource.h"

#include <cerrno>
#include <cstdlib>
#include <memory_resource>
#include <string_view>
#include <utility>

#include <unistd.h>

namespace KDV {
namespace {

std::string environment(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}

// The scenario's path as the text of a configuration file names it; empty when it names none.
std::string scenarioNamedBy(std::string_view text, Problems& problems)
{
    std::pmr::monotonic_buffer_resource memory;
    JsonNode root;
    if (!parseJson(text, memory, root, problems))
        return {};
    if (!root.object()) {
        problems.add("", "expected an object, found " + root.description());
        return {};
    }
    std::string path;
    for (const JsonMember& member : *root.object()) {
        if (member.name != "scenario")
            FieldReader(problems).refuseUnknown("", member.name, {"scenario"});
        else if (member.node.text() && !member.node.text()->empty())
            path = *member.node.text();
        else
            problems.add("/scenario", "expected the path of a scenario file, found " + member.node.description());
    }
    return path;
}

// False when there is a configuration file that cannot be used.
bool readConfiguration(const std::string& directory, const Logger& log, std::string& scenario)
{
    const std::string path = directory + "KDVSasHbaMRA.json";
    if (access(path.c_str(), F_OK) != 0 && errno == ENOENT)
        return true;
    WatchedFile file(path);
    if (file.look() != WatchedFile::Sight::NewText) {
        log.error("configuration %s: expected a readable file: %s", path.c_str(), file.trouble().c_str());
        return false;
    }
    Problems problems;
    scenario = scenarioNamedBy(file.text(), problems);
    if (!problems.empty()) {
        log.error("configuration %s is not usable: %s", path.c_str(), problems.text().c_str());
        return false;
    }
    if (!scenario.empty() && scenario.front() != '/')
        scenario.insert(0, directory);
    return true;
}

ScenarioSurroundings surroundingsWith(const Logger& log)
{
    ScenarioSurroundings surroundings;
    surroundings.reportError = [log](const std::string& text) { log.error("%s", text.c_str()); };
    surroundings.reportInfo = [log](const std::string& text) { log.info("%s", text.c_str()); };
    return surroundings;
}

std::unique_ptr<Source> runningMachine(const Logger& log)
{
    std::string root = environment("KDV_SYSFS_ROOT");
    if (root.empty())
        root = "/sys";
    SysfsSurroundings surroundings;
    surroundings.reportError = [log](const std::string& text) { log.error("%s", text.c_str()); };
    surroundings.reportInfo = [log](const std::string& text) { log.info("%s", text.c_str()); };
    return std::make_unique<SysfsSource>(root, std::move(surroundings));
}

} // namespace

std::string configurationDirectory()
{
    std::string directory = environment("KDV_CONFIG_DIR");
    if (directory.empty())
        directory = "/etc/cim/zt-kdv/";
    if (directory.back() != '/')
        directory += '/';
    return directory;
}

std::unique_ptr<Source> chooseSource(const Logger& log)
{
    std::string scenario = environment("KDV_SAS_SCENARIO");
    const std::string directory = configurationDirectory();
    if (scenario.empty() && !readConfiguration(directory, log, scenario))
        return nullptr;
    if (scenario.empty())
        return runningMachine(log);
    return std::make_unique<ScenarioSource>(scenario, surroundingsWith(log));
}

} // namespace KDV
