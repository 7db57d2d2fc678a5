#include "hostprogram/ServedMachine.h"

#include "hosttest/CimClient.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace fs = std::filesystem;

namespace KDV::Host::Test {

namespace {

std::string contents(const fs::path& file)
{
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

} // namespace

ServedMachine::ServedMachine()
{
    std::string folder = (fs::temp_directory_path() / "kdv-served-XXXXXX").string();
    if (!::mkdtemp(folder.data())) throw std::runtime_error("cannot make a temporary folder");
    _folder = folder;
}

ServedMachine::~ServedMachine()
{
    _program.reset();
    std::error_code ignored;
    fs::remove_all(_folder, ignored);
}

void ServedMachine::start(const std::string& scenario)
{
    _program.reset();
    _worker.clear();
    const fs::path portFile = _folder / "port", log = _folder / "log";
    fs::remove(portFile);
    fs::remove(log);
    _program = std::make_unique<StartedProgram>(
        std::vector<std::string>{KDV_BUILD_DIR "/bin/kdv-cimhost", "--listen", "127.0.0.1:0", "--port-file",
                                 portFile.string(), "--state-dir", (_folder / "state").string()},
        StartedProgram::Environment{{"KDV_SAS_SCENARIO", scenario},
                                    {"KDV_CONFIG_DIR", KDV_BUILD_DIR "/share/kdv-sas/etc"},
                                    {"KDV_LOG", "file:" + log.string()},
                                    {"KDV_LOG_LEVEL", "info"}});
    if (!_program->waitForOutput("ends on SIGTERM"))
        throw std::runtime_error("kdv-cimhost did not start: " + _program->output() + _program->error());
    _port = static_cast<std::uint16_t>(std::stoul(contents(portFile)));
}

int ServedMachine::terminate()
{
    _program->signal(SIGTERM);
    return _program->waitForEnd();
}

void ServedMachine::kill()
{
    _program->signal(SIGKILL);
    _program->waitForEnd();
}

std::string ServedMachine::url() const { return "http://127.0.0.1:" + std::to_string(_port); }

std::string ServedMachine::ask(const std::string& method, const std::string& parameters,
                               const std::string& nameSpace) const
{
    return askHost(_port, intrinsic(method, parameters, nameSpace));
}

std::size_t ServedMachine::countNames(const std::string& ofClass, const std::string& nameSpace) const
{
    const std::string reply = ask("EnumerateInstanceNames", classParameter(ofClass), nameSpace);
    if (errorCode(reply) != 0) throw std::runtime_error("no names of " + ofClass + ": " + reply);
    // Names that stand inside of references in other names do not count.
    return count(reply, "\n<INSTANCENAME ");
}

void ServedMachine::performWork() const
{
    if (_worker.empty()) {
        const std::string reply = ask("EnumerateInstanceNames", classParameter("KDV_AutoStartSASHBA"));
        _worker = between(reply, "<IRETURNVALUE>\n", "</IRETURNVALUE>");
        if (count(_worker, "<INSTANCENAME ") != 1) throw std::runtime_error("not one worker: " + reply);
    }
    const std::string reply = askHost(_port, extrinsic("PerformWork", _worker, "", "root/vnr"));
    if (reply.find("<RETURNVALUE") == reply.npos) throw std::runtime_error("PerformWork failed: " + reply);
}

unsigned ServedMachine::passes() const { return static_cast<unsigned>(countInLog("::_backgroundWorker")); }

std::size_t ServedMachine::countInLog(const std::string& text) const { return count(contents(_folder / "log"), text); }

} // namespace KDV::Host::Test
