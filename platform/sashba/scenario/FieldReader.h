// One element of a scenario, from its JSON object to the bytes of its record. Values that do not fit, words that a
// field does not know and fields that there are not become problems with their place; the bytes of such a field stay as
// they were.
#pragma once

#include "sashba/scenario/FieldTables.h"
#include "sashba/scenario/JsonTree.h"
#include "sashba/scenario/Problems.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace KDV {

class FieldReader {
public:
    explicit FieldReader(Problems& problems) : _problems(problems) {}

    // Fills the record's bytes with what a file that says nothing means.
    static void writeDefaults(ElementKind kind, unsigned char* record);

    // Writes the named fields. Members listed in `others` belong to the caller. `written` receives the ranges, if
    // given.
    void readFields(const JsonNode& object, const std::string& place, ElementKind kind,
                    std::initializer_list<std::string_view> others, unsigned char* record,
                    std::vector<RecordPatch::Range>* written = nullptr);

    // A whole number from 0 to `most`; false, and a problem, otherwise.
    bool readNumber(const JsonNode& node, const std::string& place, std::uint64_t most, std::uint64_t& number);

    // Reports a member that nobody knows.
    void refuseUnknown(const std::string& place, std::string_view name, std::vector<std::string_view> known);

private:
    bool readField(const JsonNode& node, const std::string& place, const FieldRow& row, unsigned char* record);
    bool readText(const JsonNode& node, const std::string& place, const FieldRow& row, unsigned char* at);
    bool readCode(const JsonNode& node, const std::string& place, const FieldRow& row, unsigned char* at);
    bool readSigned(const JsonNode& node, const std::string& place, unsigned char* at);
    bool readUnsigned(const JsonNode& node, const std::string& place, const FieldRow& row, unsigned char* at);
    bool readDriveNumber(const JsonNode& node, const std::string& place, const FieldRow& row, unsigned char* at);
    bool readDriveNumbers(const JsonNode& node, const std::string& place, const FieldRow& row, unsigned char* at);
    bool expected(const std::string& place, const std::string& what, const JsonNode& found);

    Problems& _problems;
};

// Little-endian, as records are on every machine.
void storeNumber(unsigned char* at, std::size_t bytes, std::uint64_t number);

} // namespace KDV
