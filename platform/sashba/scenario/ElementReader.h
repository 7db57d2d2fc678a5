// One element of a scenario as a whole (what the file leaves out takes its default) or as a change (only what the file
// names is written). Knows the few fields that follow from others: counts from their lists, the box identifier from the
// box number, the location for the hot-plug log from the display location, an element's HBA number from its HBA.
#pragma once

#include "sashba/scenario/FieldReader.h"

#include <cstdint>
#include <string>

namespace KDV {

class ElementReader {
public:
    explicit ElementReader(Problems& problems) : _problems(problems), _fields(problems) {}

    // Fills the record's bytes; the element's number is given back. False when the file does not tell the number.
    bool readWhole(const JsonNode& node, const std::string& place, ElementKind kind, std::uint32_t hbaNumber,
                   unsigned char* record, std::uint32_t& number);

    RecordPatch readChange(const JsonNode& node, const std::string& place, ElementKind kind);

    // A member of the object that is true or false; `otherwise` when it is not there.
    bool readFlag(const JsonNode& object, const std::string& place, std::string_view name, bool otherwise);

private:
    using Ranges = std::vector<RecordPatch::Range>;

    void deriveCounts(const JsonNode& node, unsigned char* record, Ranges* written);
    void deriveBoxIdentifier(const JsonNode& node, const std::string& place, unsigned char* record, Ranges* written);

    Problems& _problems;
    FieldReader _fields;
};

} // namespace KDV
