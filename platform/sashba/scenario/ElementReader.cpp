#include "sashba/scenario/ElementReader.h"

#include <algorithm>
#include <cstring>

namespace KDV {
namespace {

void storeField(ElementKind kind, std::string_view name, std::uint64_t number, unsigned char* record,
                std::vector<RecordPatch::Range>* written)
{
    const FieldRow* row = fieldNamed(kind, name);
    storeNumber(record + row->offset, row->bytes, number);
    if (written) written->push_back({row->offset, row->bytes});
}

void copyLocation(unsigned char* record)
{
    SasPhysicalDriveRecord drive;
    std::memcpy(&drive, record, sizeof drive);
    const std::string_view location = textOf(drive.location);
    static_assert(sizeof drive.location <= sizeof drive.hotPlugLocation);
    std::memcpy(record + offsetof(SasPhysicalDriveRecord, hotPlugLocation), location.data(), location.size());
}

} // namespace

bool ElementReader::readWhole(const JsonNode& node, const std::string& place, ElementKind kind, std::uint32_t hbaNumber,
                              unsigned char* record, std::uint32_t& number)
{
    FieldReader::writeDefaults(kind, record);
    storeField(kind, "hbaNumber", hbaNumber, record, nullptr);
    switch (kind) {
    case ElementKind::Hba:
        _fields.readFields(node, place, kind, {"physicalDrives", "logicalDrives", "storageBoxes", "duplicateNumber"},
                           record);
        break;
    case ElementKind::PhysicalDrive:
        _fields.readFields(node, place, kind, {"boxNumber", "duplicateNumber"}, record);
        deriveBoxIdentifier(node, place, record, nullptr);
        if (!node.member("hotPlugLocation")) copyLocation(record);
        break;
    case ElementKind::LogicalDrive:
        _fields.readFields(node, place, kind, {"duplicateNumber"}, record);
        deriveCounts(node, record, nullptr);
        break;
    case ElementKind::StorageBox:
        _fields.readFields(node, place, kind, {"duplicateNumber"}, record);
        break;
    }

    const FieldRow* row = fieldNamed(kind, numberField(kind));
    if (node.object() && !node.member(row->name)) {
        _problems.add(childPlace(place, row->name), "expected the number of the element");
        return false;
    }
    number = 0;
    for (std::uint32_t i = row->bytes; i > 0; --i)
        number = number << 8 | record[row->offset + i - 1];
    return node.object() != nullptr;
}

RecordPatch ElementReader::readChange(const JsonNode& node, const std::string& place, ElementKind kind)
{
    RecordPatch patch;
    patch.image.resize(recordBytes(kind));
    if (kind == ElementKind::PhysicalDrive) {
        _fields.readFields(node, place, kind, {"boxNumber"}, patch.image.data(), &patch.ranges);
        deriveBoxIdentifier(node, place, patch.image.data(), &patch.ranges);
    } else {
        _fields.readFields(node, place, kind, {}, patch.image.data(), &patch.ranges);
        if (kind == ElementKind::LogicalDrive) deriveCounts(node, patch.image.data(), &patch.ranges);
    }
    return patch;
}

// A count that the file states itself stands, whatever the list says.
void ElementReader::deriveCounts(const JsonNode& node, unsigned char* record, Ranges* written)
{
    constexpr std::string_view lists[][2] = {{"members", "memberCount"}, {"spares", "spareCount"}};
    for (const auto& [list, count] : lists) {
        const JsonNode* items = node.member(list);
        if (items && items->array() && !node.member(count))
            storeField(ElementKind::LogicalDrive, count, items->array()->size(), record, written);
    }
}

void ElementReader::deriveBoxIdentifier(const JsonNode& node, const std::string& place, unsigned char* record,
                                        Ranges* written)
{
    const JsonNode* box = node.member("boxNumber");
    if (!box) return;
    if (node.member("boxIdentifier")) {
        _problems.add(childPlace(place, "boxNumber"), "expected either \"boxNumber\" or \"boxIdentifier\", found both");
        return;
    }
    std::uint64_t number = 0;
    if (_fields.readNumber(*box, childPlace(place, "boxNumber"), 255, number))
        storeField(ElementKind::PhysicalDrive, "boxIdentifier", boxIdentifierBase + number, record, written);
}

bool ElementReader::readFlag(const JsonNode& object, const std::string& place, std::string_view name, bool otherwise)
{
    const JsonNode* node = object.member(name);
    if (!node) return otherwise;
    if (const bool* flag = std::get_if<bool>(&node->value)) return *flag;
    _problems.add(childPlace(place, name), "expected true or false, found " + node->description());
    return otherwise;
}

} // namespace KDV
