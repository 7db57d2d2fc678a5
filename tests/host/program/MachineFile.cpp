#include "hostprogram/MachineFile.h"

#include <fstream>
#include <stdexcept>

namespace KDV::Host::Test {

MachineFile::MachineFile(std::filesystem::path file, const std::string& shipped) : _file(std::move(file))
{
    std::ifstream in(shippedScenario(shipped));
    _machine = nlohmann::json::parse(in);
    for (const char* name : {"timeline", "repeatEvery", "$schema"})
        _machine.erase(name);
    write();
}

void MachineFile::write() const
{
    const std::string unfinished = _file.string() + ".new";
    std::ofstream out(unfinished);
    out << _machine.dump(1);
    out.close();
    if (!out) throw std::runtime_error("cannot write " + unfinished);
    std::filesystem::rename(unfinished, _file);
}

std::string shippedScenario(const std::string& name) { return KDV_SOURCE_DIR "/scenarios/" + name; }

} // namespace KDV::Host::Test
