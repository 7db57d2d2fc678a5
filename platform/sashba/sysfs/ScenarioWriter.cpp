#include "sashba/sysfs/ScenarioWriter.h"

#include "sashba/scenario/FieldTables.h"

#include <algorithm>
#include <array>
#include <cstring>

#include <nlohmann/json.hpp>

namespace KDV {
namespace {

using Json = nlohmann::ordered_json; // in the order of the tables

template <class Record>
constexpr ElementKind kindOf = ElementKind::Hba;
template <>
constexpr ElementKind kindOf<SasPhysicalDriveRecord> = ElementKind::PhysicalDrive;
template <>
constexpr ElementKind kindOf<SasLogicalDriveRecord> = ElementKind::LogicalDrive;
template <>
constexpr ElementKind kindOf<SasStorageBoxRecord> = ElementKind::StorageBox;

constexpr std::uint32_t noDrive = 0xFFFFFFFF;

std::uint32_t numberAt(const unsigned char* at, std::size_t bytes)
{
    std::uint32_t number = 0;
    for (std::size_t i = bytes; i > 0; --i)
        number = number << 8 | at[i - 1];
    return number;
}

Json codeOf(const FieldRow& row, std::uint32_t code)
{
    for (const CodeWord& word : row.words) {
        if (word.code == code) return std::string(word.word);
    }
    return code;
}

Json driveNumbers(const unsigned char* at, std::size_t fieldBytes, std::uint32_t count)
{
    Json numbers = Json::array();
    for (std::size_t i = 0; i < std::min<std::size_t>(count, fieldBytes / 4); ++i)
        numbers.push_back(numberAt(at + i * 4, 4));
    return numbers;
}

// How many of an array's numbers count: the field before it says so.
std::uint32_t countOf(ElementKind kind, const FieldRow& row, const unsigned char* record)
{
    const FieldRow* count = fieldNamed(kind, row.name == "members" ? "memberCount" : "spareCount");
    return count ? numberAt(record + count->offset, count->bytes) : 0;
}

template <class Record>
Json fieldsOfRecord(const Record& record)
{
    std::array<unsigned char, sizeof(Record)> bytes;
    std::memcpy(bytes.data(), &record, sizeof record);
    Json fields = Json::object();
    for (const FieldRow& row : fieldsOf(kindOf<Record>)) {
        const unsigned char* at = bytes.data() + row.offset;
        const std::string name(row.name);
        switch (row.form) {
        case FieldForm::Text: {
            const auto* text = reinterpret_cast<const char*>(at);
            if (*text != '\0') fields[name] = std::string(text, ::strnlen(text, row.bytes));
            break;
        }
        case FieldForm::Code:
            fields[name] = codeOf(row, *at);
            break;
        case FieldForm::Number:
            fields[name] = numberAt(at, row.bytes);
            break;
        case FieldForm::SignedNumber:
            fields[name] = static_cast<std::int8_t>(*at);
            break;
        case FieldForm::DriveNumber:
            fields[name] = numberAt(at, 4) == noDrive ? Json("none") : Json(numberAt(at, 4));
            break;
        case FieldForm::DriveNumbers:
            fields[name] = driveNumbers(at, row.bytes, countOf(kindOf<Record>, row, bytes.data()));
            break;
        }
    }
    return fields;
}

template <class Record>
Json listOf(const Record* first)
{
    Json list = Json::array();
    for (; first; first = first->next.get())
        list.push_back(fieldsOfRecord(*first));
    return list;
}

} // namespace

std::string scenarioOf(const SasHbaRecord* head)
{
    Json hbas = Json::array();
    for (; head; head = head->next.get()) {
        Json hba = fieldsOfRecord(*head);
        hba["storageBoxes"] = listOf(head->storageBoxes.get());
        hba["logicalDrives"] = listOf(head->logicalDrives.get());
        hba["physicalDrives"] = listOf(head->physicalDrives.get());
        hbas.push_back(std::move(hba));
    }
    return Json{{"hbas", std::move(hbas)}}.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace KDV
