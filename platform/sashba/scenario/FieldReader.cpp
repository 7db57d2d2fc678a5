#include "sashba/scenario/FieldReader.h"

#include "sashba/PrintableText.h"

#include <algorithm>
#include <cstring>

namespace KDV {

void storeNumber(unsigned char* at, std::size_t bytes, std::uint64_t number)
{
    for (std::size_t i = 0; i < bytes; ++i)
        at[i] = static_cast<unsigned char>(number >> (8 * i));
}

void FieldReader::writeDefaults(ElementKind kind, unsigned char* record)
{
    std::memset(record, 0, recordBytes(kind));
    for (const FieldRow& row : fieldsOf(kind)) {
        if (row.form != FieldForm::DriveNumbers && row.form != FieldForm::Text)
            storeNumber(record + row.offset, row.bytes, row.otherwise);
    }
}

void FieldReader::readFields(const JsonNode& object, const std::string& place, ElementKind kind,
                             std::initializer_list<std::string_view> others, unsigned char* record,
                             std::vector<RecordPatch::Range>* written)
{
    if (!object.object()) {
        expected(place, "an object", object);
        return;
    }
    for (const JsonMember& member : *object.object()) {
        const std::string_view name = member.name;
        if (std::find(others.begin(), others.end(), name) != others.end()) continue;
        const FieldRow* row = fieldNamed(kind, name);
        if (!row) {
            std::vector<std::string_view> known(others);
            for (const FieldRow& one : fieldsOf(kind))
                known.push_back(one.name);
            refuseUnknown(place, name, std::move(known));
        } else if (readField(member.node, place, *row, record) && written) {
            written->push_back({row->offset, row->bytes});
        }
    }
}

void FieldReader::refuseUnknown(const std::string& place, std::string_view name, std::vector<std::string_view> known)
{
    const std::string_view near = nearestOf(name, known);
    std::string message = "expected a known field";
    if (!near.empty()) message += ", probably " + inQuotes(near);
    _problems.add(childPlace(place, name), message);
}

bool FieldReader::expected(const std::string& place, const std::string& what, const JsonNode& found)
{
    _problems.add(place, "expected " + what + ", found " + found.description());
    return false;
}

// The place of the field is only put together when there is something to say about it.
bool FieldReader::readField(const JsonNode& node, const std::string& place, const FieldRow& row, unsigned char* record)
{
    unsigned char* at = record + row.offset;
    switch (row.form) {
    case FieldForm::Text:
        return readText(node, place, row, at);
    case FieldForm::Code:
        return readCode(node, place, row, at);
    case FieldForm::Number:
        return readUnsigned(node, place, row, at);
    case FieldForm::SignedNumber:
        return readSigned(node, childPlace(place, row.name), at);
    case FieldForm::DriveNumber:
        return readDriveNumber(node, place, row, at);
    case FieldForm::DriveNumbers:
        return readDriveNumbers(node, childPlace(place, row.name), row, at);
    }
    return false;
}

bool FieldReader::readText(const JsonNode& node, const std::string& place, const FieldRow& row, unsigned char* at)
{
    if (!node.text()) return expected(childPlace(place, row.name), "a text", node);
    const std::string text = printableText(*node.text(), row.bytes - 1);
    std::memset(at, 0, row.bytes);
    std::memcpy(at, text.data(), text.size());
    return true;
}

bool FieldReader::readCode(const JsonNode& node, const std::string& place, const FieldRow& row, unsigned char* at)
{
    if (const auto* word = node.text()) {
        for (const CodeWord& known : row.words) {
            if (known.word == std::string_view(*word)) {
                *at = static_cast<unsigned char>(known.code);
                return true;
            }
        }
    } else if (const auto* code = std::get_if<std::uint64_t>(&node.value); code && *code <= 255) {
        *at = static_cast<unsigned char>(*code);
        return true;
    }
    std::string what = "one of ";
    for (const CodeWord& known : row.words)
        what += inQuotes(known.word) + ", ";
    return expected(childPlace(place, row.name), what + "or a code from 0 to 255", node);
}

bool FieldReader::readSigned(const JsonNode& node, const std::string& place, unsigned char* at)
{
    if (const auto* number = std::get_if<std::uint64_t>(&node.value); number && *number <= 127) {
        *at = static_cast<unsigned char>(*number);
        return true;
    }
    if (const auto* number = std::get_if<std::int64_t>(&node.value); number && *number >= -128 && *number < 0) {
        *at = static_cast<unsigned char>(*number);
        return true;
    }
    return expected(place, "a whole number from -128 to 127", node);
}

bool FieldReader::readNumber(const JsonNode& node, const std::string& place, std::uint64_t most, std::uint64_t& number)
{
    const auto* found = std::get_if<std::uint64_t>(&node.value);
    if (!found || *found > most) return expected(place, "a whole number from 0 to " + std::to_string(most), node);
    number = *found;
    return true;
}

bool FieldReader::readUnsigned(const JsonNode& node, const std::string& place, const FieldRow& row, unsigned char* at)
{
    const std::uint64_t most = (std::uint64_t{1} << (8 * row.bytes)) - 1;
    const auto* found = std::get_if<std::uint64_t>(&node.value);
    if (!found || *found > most)
        return expected(childPlace(place, row.name), "a whole number from 0 to " + std::to_string(most), node);
    storeNumber(at, row.bytes, *found);
    return true;
}

bool FieldReader::readDriveNumber(const JsonNode& node, const std::string& place, const FieldRow& row,
                                  unsigned char* at)
{
    if (const auto* word = node.text(); word && *word == "none") {
        storeNumber(at, row.bytes, row.otherwise);
        return true;
    }
    if (node.text()) return expected(childPlace(place, row.name), "a drive number or \"none\"", node);
    return readUnsigned(node, place, row, at);
}

bool FieldReader::readDriveNumbers(const JsonNode& node, const std::string& place, const FieldRow& row,
                                   unsigned char* at)
{
    const std::size_t most = row.bytes / 4;
    const JsonNode::Array* items = node.array();
    if (!items) return expected(place, "an array of drive numbers", node);
    if (items->size() > most) {
        _problems.add(place, "expected at most " + std::to_string(most) + " drive numbers, found " +
                                 std::to_string(items->size()));
        return false;
    }
    std::vector<std::uint64_t> numbers(most);
    bool allRead = true;
    for (std::size_t i = 0; i < items->size(); ++i)
        allRead = readNumber((*items)[i], childPlace(place, i), 0xFFFFFFFF, numbers[i]) && allRead;
    for (std::size_t i = 0; allRead && i < most; ++i)
        storeNumber(at + 4 * i, 4, numbers[i]);
    return allRead;
}

} // namespace KDV
