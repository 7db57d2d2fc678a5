// The fields of a scenario: for every kind of record which names a file may use, where the value lies in the record,
// what it looks like, which words stand for codes and what holds when a file does not say. Fields are named as in the
// records. The bytes of the provider and the links have no row: no file can write them.
#pragma once

#include "sashba/RecordTree.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace KDV {

template <class Value>
struct Span {
    const Value* first = nullptr;
    std::size_t count = 0;

    const Value* begin() const noexcept { return first; }
    const Value* end() const noexcept { return first + count; }
};

struct CodeWord {
    std::string_view word;
    std::uint32_t code;
};

enum class FieldForm : std::uint8_t {
    Text,         // cut and terminated inside the field
    Code,         // one byte: a word of the field or a number from 0 to 255
    Number,       // as many bytes as the field has
    SignedNumber, // one byte, -128 to 127
    DriveNumber,  // four bytes: a number or "none", which is 0xFFFFFFFF
    DriveNumbers, // an array of up to 16 numbers of four bytes
};

struct FieldRow {
    std::string_view name;
    FieldForm form;
    std::uint32_t offset;
    std::uint32_t bytes;
    Span<CodeWord> words;
    std::uint32_t otherwise; // the value of a new element whose file does not name the field
};

Span<FieldRow> fieldsOf(ElementKind kind);
std::size_t recordBytes(ElementKind kind);
const FieldRow* fieldNamed(ElementKind kind, std::string_view name);

// The field whose number names the element in a file.
std::string_view numberField(ElementKind kind);

} // namespace KDV
