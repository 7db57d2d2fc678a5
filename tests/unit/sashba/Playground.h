// A scenario source on a file of its own, with a clock that the test moves and the messages that it gave.
#pragma once

#include "sashba/RecordTree.h"
#include "sashba/scenario/ScenarioSource.h"

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace KDV {

class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "kdv-sashba-XXXXXX").string();
        if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder");
        _path = pattern;
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string file(const std::string& name) const { return (_path / name).string(); }

private:
    std::filesystem::path _path;
};

inline void writeFile(const std::string& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

// The records of a list, in its order.
template <class Record>
std::vector<Record*> recordsOf(const RecordLink<Record>& head)
{
    std::vector<Record*> records;
    for (Record* record = head.get(); record; record = record->next.get())
        records.push_back(record);
    return records;
}

class Playground {
public:
    explicit Playground(const std::string& text) : Playground() { start(text); }
    Playground() : _path(_folder.file("machine.json")) {}

    void start(const std::string& text)
    {
        write(text);
        ScenarioSurroundings surroundings;
        surroundings.clock = [this] { return now; };
        surroundings.reportError = [this](const std::string& error) { errors.push_back(error); };
        surroundings.reportInfo = [](const std::string&) {};
        _source = std::make_unique<ScenarioSource>(_path, surroundings);
        _source->load(tree);
    }

    void write(const std::string& text) { writeFile(_path, text); }
    void removeFile() { std::filesystem::remove(_path); }
    void pass(int count = 1)
    {
        for (int i = 0; i < count; ++i)
            _source->refresh(tree);
    }

    std::vector<SasHbaRecord*> hbas() const
    {
        RecordLink<SasHbaRecord> head{};
        head.set(tree.head());
        return recordsOf(head);
    }
    SasHbaRecord* hba(std::size_t index = 0) const { return hbas().at(index); }
    std::vector<SasPhysicalDriveRecord*> drives(std::size_t hbaIndex = 0) const
    {
        return recordsOf(hba(hbaIndex)->physicalDrives);
    }
    std::vector<SasLogicalDriveRecord*> volumes() const { return recordsOf(hba()->logicalDrives); }
    std::vector<SasStorageBoxRecord*> boxes() const { return recordsOf(hba()->storageBoxes); }

    std::vector<std::uint32_t> driveNumbers() const
    {
        std::vector<std::uint32_t> numbers;
        for (const SasPhysicalDriveRecord* drive : drives())
            numbers.push_back(drive->driveNumber);
        return numbers;
    }

    const std::string& path() const { return _path; }

    std::chrono::steady_clock::time_point now{};
    std::vector<std::string> errors;
    RecordTree tree;

private:
    TemporaryFolder _folder;
    std::string _path;
    std::unique_ptr<ScenarioSource> _source;
};

// A machine with one HBA of the number 0 and these further members.
inline std::string oneHba(const std::string& members, const std::string& rest = "")
{
    return R"({"hbas": [{"hbaNumber": 0, "name": "HBA A")" + (members.empty() ? "" : ", " + members) + "}]" +
           (rest.empty() ? "" : ", " + rest) + "}";
}

} // namespace KDV
