// Reads "timeline" and "repeatEvery" of a scenario and resolves every target to its position in the machine. A drive
// that only the timeline knows gets an absent place at the end of its HBA's drives, in the order of the timeline.
#pragma once

#include "sashba/scenario/ElementReader.h"
#include "sashba/scenario/Scenario.h"

#include <cstdint>
#include <map>
#include <string>
#include <tuple>

namespace KDV {

class TimelineReader {
public:
    TimelineReader(Problems& problems, Scenario& scenario);

    void read(const JsonNode& root);

private:
    using Target =
        std::tuple<ElementKind, std::uint32_t, std::uint32_t, std::uint32_t>; // kind, hba, number, occurrence

    void indexMachine();
    void readRounds(const JsonNode* repeatEvery);
    void readChange(const JsonNode& node, const std::string& place);
    Track* readDue(const JsonNode& node, const std::string& place, Change& change);
    bool readSeconds(const JsonNode& node, const std::string& place, std::uint64_t& milliseconds);
    bool readAction(const JsonNode& node, const std::string& place, Change& change);
    bool readHba(const JsonNode& node, const std::string& place, Change& change);
    bool readSet(const JsonNode& node, const std::string& place, Change& change);
    bool readPull(const JsonNode& node, const std::string& place, Change& change);
    bool readInsert(const JsonNode& node, const std::string& place, Change& change);
    bool readOccurrence(const JsonNode& node, const std::string& place, std::uint32_t& occurrence);
    bool findTarget(const JsonNode& number, const std::string& place, std::uint32_t occurrence, Change& change);
    void addAbsentDrive(std::uint32_t number, Change& change);
    void checkRound(const Track& track);

    Problems& _problems;
    Scenario& _scenario;
    ElementReader _elements;
    FieldReader _fields;
    std::map<Target, std::uint32_t> _positions;
};

} // namespace KDV
