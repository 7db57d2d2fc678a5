#include "sashba/scenario/JsonTree.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <nlohmann/json.hpp>

namespace KDV {

const JsonNode* JsonNode::member(std::string_view name) const noexcept
{
    const Object* members = object();
    if (!members) return nullptr;
    const auto found = std::find_if(members->begin(), members->end(),
                                    [name](const JsonMember& one) { return std::string_view(one.name) == name; });
    return found == members->end() ? nullptr : &found->node;
}

std::string JsonNode::description() const
{
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "true" : "false";
    if (const auto* number = std::get_if<std::uint64_t>(&value)) return "the number " + std::to_string(*number);
    if (const auto* negative = std::get_if<std::int64_t>(&value)) return "the number " + std::to_string(*negative);
    if (const auto* real = std::get_if<double>(&value)) return "the number " + nlohmann::json(*real).dump();
    if (const auto* words = text()) return "the text " + inQuotes(*words);
    if (array()) return "an array";
    return object() ? "an object" : "null";
}

namespace {

// Receives nlohmann-json's parse events. Open containers are a stack of nodes whose children are collected in place;
// pointers stay valid because only the innermost open container grows.
class TreeBuilder final : public nlohmann::json_sax<nlohmann::json> {
public:
    TreeBuilder(std::string_view text, std::pmr::memory_resource& memory, JsonNode& root, Problems& problems)
        : _text(text), _memory(memory), _root(root), _problems(problems)
    {
    }

    bool null() override { return put(std::monostate()); }
    bool boolean(bool flag) override { return put(flag); }
    bool number_integer(number_integer_t number) override { return put(static_cast<std::int64_t>(number)); }
    bool number_unsigned(number_unsigned_t number) override { return put(static_cast<std::uint64_t>(number)); }
    bool number_float(number_float_t number, const string_t&) override { return put(number); }
    bool string(string_t& text) override { return put(std::pmr::string(text.data(), text.size(), &_memory)); }
    bool binary(binary_t&) override { return false; } // only binary formats send it

    bool start_object(std::size_t) override
    {
        JsonNode::Object members(&_memory);
        members.reserve(24); // as many as a drive has: growing would leave the smaller pieces behind
        return open(std::move(members));
    }
    bool start_array(std::size_t) override { return open(JsonNode::Array(&_memory)); }

    bool end_object() override
    {
        refuseRepeatedNames(*_open.back());
        _open.pop_back();
        return true;
    }

    bool end_array() override
    {
        _open.pop_back();
        return true;
    }

    bool key(string_t& name) override
    {
        auto& members = std::get<JsonNode::Object>(_open.back()->value);
        members.push_back({std::pmr::string(name.data(), name.size(), &_memory), JsonNode()});
        return true;
    }

    bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception& error) override
    {
        const std::string_view before = _text.substr(0, position > 0 ? position - 1 : 0);
        const auto line = std::count(before.begin(), before.end(), '\n') + 1;
        const std::size_t lineStart = before.rfind('\n') + 1; // npos + 1 is 0
        const std::string place =
            "line " + std::to_string(line) + ", column " + std::to_string(before.size() - lineStart + 1);
        constexpr int numberOutOfRange = 406;
        if (error.id == numberOutOfRange)
            _problems.add(place, "expected a number of usual size, ending here");
        else if (before.size() >= _text.size())
            _problems.add(place, "expected more JSON, found the end of the file");
        else
            _problems.add(place, "expected other JSON, found " + inQuotes(_text.substr(before.size(), 1)));
        return false;
    }

private:
    template <class Value>
    bool put(Value value)
    {
        place().value = std::move(value);
        return true;
    }

    template <class Container>
    bool open(Container container)
    {
        if (_open.size() == deepestJson) {
            _problems.add(currentPlace(), "expected at most " + std::to_string(deepestJson) + " levels of nesting");
            return false;
        }
        JsonNode& node = place();
        node.value = std::move(container);
        _open.push_back(&node);
        return true;
    }

    // Where the next value goes: the root, a new array element, or the member just named.
    JsonNode& place()
    {
        if (_open.empty()) return _root;
        if (auto* items = std::get_if<JsonNode::Array>(&_open.back()->value)) return items->emplace_back();
        return std::get<JsonNode::Object>(_open.back()->value).back().node;
    }

    std::string currentPlace() const
    {
        std::string place;
        for (const JsonNode* node : _open) {
            if (const auto* items = node->array())
                place = childPlace(place, node == _open.back() ? items->size() : items->size() - 1);
            else if (const auto& members = *node->object(); !members.empty() && node != _open.back())
                place = childPlace(place, members.back().name);
        }
        return place;
    }

    void refuseRepeatedNames(const JsonNode& node)
    {
        _names.clear();
        for (const JsonMember& member : *node.object())
            _names.push_back(member.name);
        std::sort(_names.begin(), _names.end());
        for (auto it = std::adjacent_find(_names.begin(), _names.end()); it != _names.end();
             it = std::adjacent_find(it + 1, _names.end()))
            _problems.add(childPlace(currentPlace(), *it), "expected once, found more than once");
    }

    std::string_view _text;
    std::pmr::memory_resource& _memory;
    JsonNode& _root;
    Problems& _problems;
    std::vector<JsonNode*> _open;
    std::vector<std::string_view> _names; // kept between objects: no allocation for each
};

} // namespace

bool parseJson(std::string_view text, std::pmr::memory_resource& memory, JsonNode& root, Problems& problems)
{
    TreeBuilder builder(text, memory, root, problems);
    const bool complete = nlohmann::json::sax_parse(text.begin(), text.end(), &builder);
    return complete && problems.empty();
}

} // namespace KDV
