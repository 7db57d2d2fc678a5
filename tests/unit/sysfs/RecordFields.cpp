#include "LiveRecords.h"
#include "sashba/scenario/FieldTables.h"

#include <algorithm>
#include <cstring>

namespace KDV {
namespace {

// Fields that are zero or empty are left out: a test names every field that has something to say, and by that all
// others as well.
std::string fields(ElementKind kind, const unsigned char* record)
{
    std::string text;
    for (const FieldRow& row : fieldsOf(kind)) {
        const unsigned char* at = record + row.offset;
        if (row.form == FieldForm::Text) {
            const std::string value(reinterpret_cast<const char*>(at),
                                    ::strnlen(reinterpret_cast<const char*>(at), row.bytes));
            if (!value.empty()) text += std::string(row.name) + " = " + value + "\n";
            continue;
        }
        const std::size_t step = row.form == FieldForm::DriveNumbers ? 4 : row.bytes;
        std::vector<std::uint64_t> numbers;
        for (std::size_t from = 0; from < row.bytes; from += step) {
            std::uint64_t number = 0;
            for (std::size_t byte = std::min(step, row.bytes - from); byte > 0; --byte)
                number = number << 8 | at[from + byte - 1];
            numbers.push_back(number);
        }
        while (!numbers.empty() && numbers.back() == 0)
            numbers.pop_back();
        if (numbers.empty()) continue;
        text += std::string(row.name) + " =";
        for (const std::uint64_t number : numbers)
            text += " " + std::to_string(number);
        text += "\n";
    }
    return text;
}

template <class Record>
std::string fieldsOfRecord(ElementKind kind, const Record& record)
{
    return fields(kind, reinterpret_cast<const unsigned char*>(&record));
}

} // namespace

std::string fieldsOf(const SasHbaRecord& hba) { return fieldsOfRecord(ElementKind::Hba, hba); }

std::string fieldsOf(const SasPhysicalDriveRecord& drive) { return fieldsOfRecord(ElementKind::PhysicalDrive, drive); }

std::string fieldsOf(const SasStorageBoxRecord& box) { return fieldsOfRecord(ElementKind::StorageBox, box); }

std::string fieldsOf(const SasLogicalDriveRecord& volume) { return fieldsOfRecord(ElementKind::LogicalDrive, volume); }

} // namespace KDV
