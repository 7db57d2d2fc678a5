#include "capture/SmartctlSecrets.h"

#include <nlohmann/json.hpp>

namespace KdvSas {
namespace {

using Json = nlohmann::ordered_json; // printed again in the same order

constexpr int mostDepth = 32;
constexpr std::uint64_t mostVendorPart = (std::uint64_t{1} << 36) - 1;
constexpr std::uint64_t mostMaker = (std::uint64_t{1} << 24) - 1;

std::optional<std::uint64_t> fieldOf(const Json& object, const char* name, std::uint64_t most)
{
    const auto found = object.find(name);
    if (found == object.end() || !found->is_number_unsigned() || found->get<std::uint64_t>() > most)
        return std::nullopt;
    return found->get<std::uint64_t>();
}

// An object with the fields of a world-wide name.
std::optional<std::uint64_t> nameIn(const Json& object)
{
    const auto kind = fieldOf(object, "naa", 15);
    const auto maker = fieldOf(object, "oui", mostMaker);
    const auto rest = fieldOf(object, "id", mostVendorPart);
    if (!kind || !maker || !rest) return std::nullopt;
    return *kind << 60 | *maker << 36 | *rest;
}

void find(const Json& value, const std::string& key, Secrets& secrets, int depth)
{
    if (depth == mostDepth) return;
    if (value.is_string()) {
        const auto& text = value.get_ref<const std::string&>();
        const bool isName = key.find("logical_unit_id") != std::string::npos;
        if (!secrets.addHexName(text) && (isName || key.find("serial") != std::string::npos)) secrets.addText(text);
        return;
    }
    if (value.is_object()) {
        if (const auto name = nameIn(value)) secrets.addAddress(*name);
    }
    if (value.is_structured()) {
        for (const auto& [name, below] : value.items())
            find(below, value.is_object() ? name : key, secrets, depth + 1);
    }
}

Json replaced(const Json& value, const std::function<std::string(const std::string&)>& text,
              const std::function<std::uint64_t(std::uint64_t)>& address, int depth)
{
    if (depth == mostDepth) return nullptr;
    if (value.is_string()) return text(value.get_ref<const std::string&>());
    if (value.is_array()) {
        Json list = Json::array();
        for (const Json& each : value)
            list.push_back(replaced(each, text, address, depth + 1));
        return list;
    }
    if (!value.is_object()) return value;
    Json object = Json::object();
    for (const auto& [name, below] : value.items())
        object[text(name)] = replaced(below, text, address, depth + 1);
    if (const auto name = nameIn(value)) {
        const std::uint64_t other = address(*name);
        object["naa"] = other >> 60;
        object["oui"] = other >> 36 & mostMaker;
        object["id"] = other & mostVendorPart;
    }
    return object;
}

// Deep nesting is refused before it is built: hostile output could exhaust the stack.
bool isShallow(std::string_view output)
{
    int depth = 0;
    bool inText = false;
    for (std::size_t at = 0; at < output.size(); ++at) {
        const char letter = output[at];
        if (inText && letter == '\\') {
            ++at;
            continue;
        }
        if (letter == '"') inText = !inText;
        if (inText) continue;
        if (letter == '{' || letter == '[') ++depth;
        if (letter == '}' || letter == ']') --depth;
        if (depth > mostDepth) return false;
    }
    return true;
}

Json parsed(std::string_view output)
{
    return isShallow(output) ? Json::parse(output.begin(), output.end(), nullptr, false)
                             : Json(Json::value_t::discarded);
}

} // namespace

void findInSmartctl(std::string_view output, Secrets& secrets)
{
    const Json root = parsed(output);
    if (!root.is_discarded()) find(root, {}, secrets, 0);
}

std::optional<std::string> replaceInSmartctl(std::string_view output,
                                             const std::function<std::string(const std::string&)>& text,
                                             const std::function<std::uint64_t(std::uint64_t)>& address)
{
    const Json root = parsed(output);
    if (root.is_discarded()) return std::nullopt;
    return replaced(root, text, address, 0).dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace KdvSas
