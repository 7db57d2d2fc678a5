#include "sashba/source/ChooseSource.h"

#include "logger/Logger.h"
#include "sashba/scenario/FieldReader.h"
#include "sashba/scenario/JsonTree.h"
#include "sashba/scenario/ScenarioSource.h"
#include "sashba/scenario/WatchedFile.h"
#include "sashba/sysfs/OpenLive.h"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <memory_resource>
#include <string_view>
#include <unistd.h>

namespace KDV {
namespace {

std::string environment(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}

// What the configuration file settles.
struct Configuration {
    std::string scenario; // path; empty for the running machine
    SysfsSettings live;
};

void readSeconds(const JsonMember& member, std::chrono::milliseconds& value, Problems& problems)
{
    constexpr std::uint64_t most = 86400;
    std::uint64_t seconds = 0;
    const std::string place = "/" + std::string(member.name);
    if (!FieldReader(problems).readNumber(member.node, place, most, seconds)) return;
    if (seconds == 0) problems.add(place, "expected at least 1 second");
    value = std::chrono::seconds(seconds);
}

void readMember(const JsonMember& member, Configuration& configuration, Problems& problems)
{
    if (member.name == "diskPollSeconds")
        readSeconds(member, configuration.live.asking.diskInterval, problems);
    else if (member.name == "boxPollSeconds")
        readSeconds(member, configuration.live.asking.boxInterval, problems);
    else if (member.name == "deviceDeadlineSeconds")
        readSeconds(member, configuration.live.asking.deadline, problems);
    else if (member.name != "scenario")
        FieldReader(problems).refuseUnknown("", member.name,
                                            {"scenario", "diskPollSeconds", "boxPollSeconds", "deviceDeadlineSeconds"});
    else if (member.node.text() && !member.node.text()->empty())
        configuration.scenario = *member.node.text();
    else
        problems.add("/scenario", "expected the path of a scenario file, found " + member.node.description());
}

void readText(std::string_view text, Configuration& configuration, Problems& problems)
{
    std::pmr::monotonic_buffer_resource memory;
    JsonNode root;
    if (!parseJson(text, memory, root, problems)) return;
    if (!root.object()) {
        problems.add("", "expected an object, found " + root.description());
        return;
    }
    for (const JsonMember& member : *root.object())
        readMember(member, configuration, problems);
}

// False when there is a configuration file that cannot be used.
bool readConfiguration(const std::string& directory, const Logger& log, Configuration& configuration)
{
    const std::string path = directory + "KDVSasHbaMRA.json";
    if (access(path.c_str(), F_OK) != 0 && errno == ENOENT) return true;
    WatchedFile file(path);
    if (file.look() != WatchedFile::Sight::NewText) {
        log.error("configuration %s: expected a readable file: %s", path.c_str(), file.trouble().c_str());
        return false;
    }
    Problems problems;
    readText(file.text(), configuration, problems);
    if (!problems.empty()) {
        log.error("configuration %s is not usable: %s", path.c_str(), problems.text().c_str());
        return false;
    }
    if (!configuration.scenario.empty() && configuration.scenario.front() != '/')
        configuration.scenario.insert(0, directory);
    return true;
}

ScenarioSurroundings surroundingsWith(const Logger& log)
{
    ScenarioSurroundings surroundings;
    surroundings.reportError = [log](const std::string& text) { log.error("%s", text.c_str()); };
    surroundings.reportInfo = [log](const std::string& text) { log.info("%s", text.c_str()); };
    return surroundings;
}

std::unique_ptr<Source> runningMachine(const SysfsSettings& settings, const Logger& log)
{
    return openLiveMachine(
        environment("KDV_SYSFS_ROOT"), settings, [log](const std::string& text) { log.error("%s", text.c_str()); },
        [log](const std::string& text) { log.info("%s", text.c_str()); });
}

} // namespace

std::string configurationDirectory()
{
    std::string directory = environment("KDV_CONFIG_DIR");
    if (directory.empty()) directory = "/etc/cim/zt-kdv/";
    if (directory.back() != '/') directory += '/';
    return directory;
}

std::unique_ptr<Source> chooseSource(const Logger& log)
{
    Configuration configuration;
    const std::string scenario = environment("KDV_SAS_SCENARIO");
    if (!scenario.empty()) return std::make_unique<ScenarioSource>(scenario, surroundingsWith(log));
    if (!readConfiguration(configurationDirectory(), log, configuration)) return nullptr;
    if (!configuration.scenario.empty())
        return std::make_unique<ScenarioSource>(configuration.scenario, surroundingsWith(log));
    return runningMachine(configuration.live, log);
}

} // namespace KDV
