// A machine description in a file that a test changes under a running host: fields of elements are set, disks taken out
// and put back, and the next pass sees it. A pass that comes by itself in between changes nothing in what it says,
// unlike in a timeline. One thread; failures are std::runtime_error.
#pragma once

#include <filesystem>
#include <string>

#include <nlohmann/json.hpp>

namespace KDV::Host::Test {

class MachineFile {
public:
    // Begins as a copy of a shipped scenario without its timeline.
    MachineFile(std::filesystem::path file, const std::string& shipped);

    const std::filesystem::path& path() const noexcept { return _file; }
    nlohmann::json& hba(unsigned number = 0) { return _machine["hbas"][number]; }
    nlohmann::json& disk(unsigned number) { return hba()["physicalDrives"][number]; } // of the first HBA, by place
    nlohmann::json& box(unsigned place) { return hba()["storageBoxes"][place]; }
    nlohmann::json& volume(unsigned place) { return hba()["logicalDrives"][place]; }
    void write() const; // whole at once

private:
    std::filesystem::path _file;
    nlohmann::json _machine;
};

std::string shippedScenario(const std::string& name); // its path

} // namespace KDV::Host::Test
