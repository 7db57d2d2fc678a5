#include "indications/StateText.h"

#include <algorithm>

#include <nlohmann/json.hpp>

namespace KDV::Host {

namespace {

using Json = nlohmann::ordered_json;

constexpr int formatVersion = 1;

Json keyJson(const ElementKey& key)
{
    return {
        {"class", key.className}, {"name", key.name}, {"systemName", key.systemName}, {"systemClass", key.systemClass}};
}

Json filterJson(const FilterRecord& filter)
{
    Json json{{"key", keyJson(filter.key)}, {"query", filter.query}, {"queryLanguage", filter.queryLanguage}};
    json["elementName"] = filter.elementName;
    json["description"] = filter.description;
    if (filter.sourceNamespace) json["sourceNamespace"] = *filter.sourceNamespace;
    json["sourceNamespaces"] = filter.sourceNamespaces;
    return json;
}

Json destinationJson(const DestinationRecord& destination)
{
    return {{"key", keyJson(destination.key)},
            {"destination", destination.url},
            {"elementName", destination.elementName},
            {"description", destination.description},
            {"owner", destination.owner},
            {"persistence", static_cast<unsigned>(destination.persistence)}};
}

Json subscriptionJson(const SubscriptionRecord& subscription)
{
    Json json{{"class", subscription.className},
              {"filter", keyJson(subscription.key.filter)},
              {"handler", keyJson(subscription.key.handler)},
              {"enabled", subscription.enabled},
              {"policy", static_cast<unsigned>(subscription.policy)},
              {"creator", subscription.creator},
              {"info", subscription.info},
              {"stateChanged", subscription.stateChanged},
              {"started", subscription.started}};
    if (subscription.failureTriggerSeconds) json["failureTriggerSeconds"] = *subscription.failureTriggerSeconds;
    if (subscription.durationSeconds) json["durationSeconds"] = *subscription.durationSeconds;
    return json;
}

// A value and where it stands, so that every complaint names its place.
class Node {
public:
    Node(const Json& json, std::string place) : _json(json), _place(std::move(place)) {}

    [[noreturn]] void refuse(const char* what) const
    {
        throw StateTextError((_place.empty() ? "/" : _place) + ": " + what);
    }
    bool has(const char* name) const { return object().contains(name); }
    Node at(const char* name) const
    {
        if (!has(name)) Node(_json, _place + '/' + name).refuse("is missing");
        return {_json.at(name), _place + '/' + name};
    }
    std::string text() const
    {
        if (!_json.is_string()) refuse("must be a text");
        return _json.get<std::string>();
    }
    bool boolean() const
    {
        if (!_json.is_boolean()) refuse("must be true or false");
        return _json.get<bool>();
    }
    std::uint64_t number() const
    {
        if (!_json.is_number_unsigned()) refuse("must be a number without sign");
        return _json.get<std::uint64_t>();
    }
    std::int64_t time() const
    {
        if (!_json.is_number_integer() || (_json.is_number_unsigned() && number() > INT64_MAX))
            refuse("must be a number of microseconds");
        return _json.get<std::int64_t>();
    }
    template <class Value>
    std::vector<Value> list(Value (*read)(const Node&)) const
    {
        if (!_json.is_array()) refuse("must be a list");
        std::vector<Value> values;
        for (std::size_t i = 0; i < _json.size(); ++i)
            values.push_back(read(Node(_json[i], _place + '/' + std::to_string(i))));
        return values;
    }

private:
    const Json& object() const
    {
        if (!_json.is_object()) refuse("must be an object");
        return _json;
    }
    const Json& _json;
    std::string _place;
};

ElementKey readKey(const Node& node)
{
    return {node.at("systemClass").text(), node.at("systemName").text(), node.at("class").text(),
            node.at("name").text()};
}

std::string readText(const Node& node) { return node.text(); }

FilterRecord readFilter(const Node& node)
{
    FilterRecord filter;
    filter.key = readKey(node.at("key"));
    filter.query = node.at("query").text();
    filter.queryLanguage = node.at("queryLanguage").text();
    filter.elementName = node.at("elementName").text();
    filter.description = node.at("description").text();
    if (node.has("sourceNamespace")) filter.sourceNamespace = node.at("sourceNamespace").text();
    filter.sourceNamespaces = node.at("sourceNamespaces").list(readText);
    return filter;
}

template <class Value>
Value readEnum(const Node& node, unsigned first, unsigned last)
{
    const std::uint64_t number = node.number();
    if (number < first || number > last) node.refuse("is out of range");
    return static_cast<Value>(number);
}

DestinationRecord readDestination(const Node& node)
{
    DestinationRecord destination;
    destination.key = readKey(node.at("key"));
    destination.url = node.at("destination").text();
    destination.elementName = node.at("elementName").text();
    destination.description = node.at("description").text();
    destination.owner = node.at("owner").text();
    destination.persistence = readEnum<Persistence>(node.at("persistence"), 1, 3);
    return destination;
}

SubscriptionRecord readSubscription(const Node& node)
{
    SubscriptionRecord subscription;
    subscription.className = node.at("class").text();
    subscription.key = {readKey(node.at("filter")), readKey(node.at("handler"))};
    subscription.enabled = node.at("enabled").boolean();
    subscription.policy = readEnum<FatalErrorPolicy>(node.at("policy"), 1, 4);
    subscription.creator = node.at("creator").text();
    subscription.info = node.at("info").text();
    subscription.stateChanged = node.at("stateChanged").time();
    subscription.started = node.at("started").time();
    if (node.has("failureTriggerSeconds"))
        subscription.failureTriggerSeconds = node.at("failureTriggerSeconds").number();
    if (node.has("durationSeconds")) subscription.durationSeconds = node.at("durationSeconds").number();
    return subscription;
}

template <class Record>
void refuseDoubles(const std::vector<Record>& records, const char* place)
{
    for (std::size_t i = 0; i < records.size(); ++i)
        for (std::size_t k = 0; k < i; ++k)
            if (records[i].key == records[k].key)
                throw StateTextError(std::string(place) + '/' + std::to_string(i) + ": has the keys of number " +
                                     std::to_string(k));
}

std::string placeOf(std::string_view text, std::size_t byte)
{
    const std::string_view before = text.substr(0, byte > 0 ? std::min(byte - 1, text.size()) : 0);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::size_t lineStart = before.rfind('\n') == std::string_view::npos ? 0 : before.rfind('\n') + 1;
    return "line " + std::to_string(line) + ", column " + std::to_string(before.size() - lineStart + 1);
}

Json parse(std::string_view text)
{
    try {
        return Json::parse(text);
    } catch (const nlohmann::json::parse_error& error) {
        throw StateTextError(placeOf(text, error.byte) + ": no JSON");
    }
}

} // namespace

std::string stateText(const SubscriptionState& state)
{
    Json json{{"version", formatVersion},
              {"filters", Json::array()},
              {"destinations", Json::array()},
              {"subscriptions", Json::array()}};
    for (const FilterRecord& filter : state.filters)
        if (!filter.isStatic) json["filters"].push_back(filterJson(filter));
    for (const DestinationRecord& destination : state.destinations)
        json["destinations"].push_back(destinationJson(destination));
    for (const SubscriptionRecord& subscription : state.subscriptions)
        json["subscriptions"].push_back(subscriptionJson(subscription));
    // Clients' texts need not be UTF-8; the file must be.
    return json.dump(1, ' ', false, Json::error_handler_t::replace) + '\n';
}

SubscriptionState readStateText(std::string_view text)
{
    const Json json = parse(text);
    const Node root(json, "");
    if (root.at("version").number() != formatVersion)
        root.at("version").refuse("is not a version that this host reads");
    SubscriptionState state{root.at("filters").list(readFilter), root.at("destinations").list(readDestination),
                            root.at("subscriptions").list(readSubscription)};
    refuseDoubles(state.filters, "/filters");
    refuseDoubles(state.destinations, "/destinations");
    refuseDoubles(state.subscriptions, "/subscriptions");
    return state;
}

} // namespace KDV::Host
