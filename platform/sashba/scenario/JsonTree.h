// A JSON text as a tree that keeps what a careful reader of configuration needs: the order of members, members that
// are named twice (a problem, not the last one wins), numbers with their sign and size. All nodes of a tree live in the
// memory resource that the reader is given and go with it. nlohmann-json does the parsing.
#pragma once

#include "sashba/scenario/Problems.h"

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace KDV {

struct JsonMember;

struct JsonNode {
    using Array = std::pmr::vector<JsonNode>;
    using Object = std::pmr::vector<JsonMember>;

    // Integers up to 64 bits as they are; every other number as double.
    std::variant<std::monostate, bool, std::uint64_t, std::int64_t, double, std::pmr::string, Array, Object> value;

    const Array* array() const noexcept { return std::get_if<Array>(&value); }
    const Object* object() const noexcept { return std::get_if<Object>(&value); }
    const std::pmr::string* text() const noexcept { return std::get_if<std::pmr::string>(&value); }

    // The member of an object by its name, or null.
    const JsonNode* member(std::string_view name) const noexcept;

    // For messages: "an object", "the number 300", "the text "brokn"".
    std::string description() const;
};

struct JsonMember {
    std::pmr::string name;
    JsonNode node;
};

// Deeper nesting than any scenario has; a hostile file does not get further.
constexpr std::size_t deepestJson = 16;

// False when the text is no JSON, nests too deeply or names a member twice; the problems say where.
bool parseJson(std::string_view text, std::pmr::memory_resource& memory, JsonNode& root, Problems& problems);

} // namespace KDV
