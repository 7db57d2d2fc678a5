// What is kept of filters, listener destinations and subscriptions: plain values, copied freely, no lock. Times are
// microseconds since 1970 in UTC; sequences of equal keys never exist side by side in a SubscriptionState.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace KDV::Host {

// The four keys that filters and destinations share. Collections have only a name, their InstanceID.
struct ElementKey {
    std::string systemClass;
    std::string systemName;
    std::string className;
    std::string name;

    auto tied() const { return std::tie(className, name, systemName, systemClass); }
    bool operator==(const ElementKey& other) const { return tied() == other.tied(); }
    bool operator!=(const ElementKey& other) const { return !(*this == other); }
    bool operator<(const ElementKey& other) const { return tied() < other.tied(); }
};

struct FilterRecord {
    ElementKey key;
    std::string elementName;
    std::string description;
    std::optional<std::string> sourceNamespace;
    std::vector<std::string> sourceNamespaces;
    std::string query;
    std::string queryLanguage;
    bool isStatic = false; // made by the host at every start, not kept on disk
};

enum class Persistence : std::uint16_t { Other = 1, Permanent = 2, Transient = 3 };

struct DestinationRecord {
    ElementKey key;
    std::string elementName;
    std::string description;
    std::string url;
    std::string owner; // only of handlers
    Persistence persistence = Persistence::Permanent;
};

enum class FatalErrorPolicy : std::uint16_t { Other = 1, Ignore = 2, Disable = 3, Remove = 4 };
enum class SubscriptionStateValue : std::uint16_t { Enabled = 2, EnabledDegraded = 3, Disabled = 4 };

// An association: identified by what it joins.
struct SubscriptionKey {
    ElementKey filter; // className CIM_FilterCollection: the collection of that name
    ElementKey handler;

    bool operator==(const SubscriptionKey& other) const { return filter == other.filter && handler == other.handler; }
    bool operator<(const SubscriptionKey& other) const
    {
        return filter < other.filter || (filter == other.filter && handler < other.handler);
    }
};

struct SubscriptionRecord {
    SubscriptionKey key;
    std::string className; // CIM_IndicationSubscription or CIM_FilterCollectionSubscription
    std::string creator;   // the user who made it, where known
    std::string info;
    FatalErrorPolicy policy = FatalErrorPolicy::Ignore;
    std::optional<std::uint64_t> failureTriggerSeconds;
    bool enabled = true;
    std::int64_t stateChanged = 0;
    std::int64_t started = 0;
    std::optional<std::uint64_t> durationSeconds;
};

struct FilterCollectionRecord {
    std::string instanceId;
    std::string collectionName;
    std::string elementName;
    std::vector<ElementKey> filters;
};

struct SubscriptionState {
    std::vector<FilterRecord> filters;
    std::vector<DestinationRecord> destinations;
    std::vector<SubscriptionRecord> subscriptions;
};

namespace InteropClass {
constexpr const char* filter = "CIM_IndicationFilter";
constexpr const char* destination = "CIM_ListenerDestinationCIMXML";
constexpr const char* handler = "CIM_IndicationHandlerCIMXML";
constexpr const char* subscription = "CIM_IndicationSubscription";
constexpr const char* collection = "CIM_FilterCollection";
constexpr const char* collectionSubscription = "CIM_FilterCollectionSubscription";
constexpr const char* member = "CIM_MemberOfCollection";
} // namespace InteropClass

} // namespace KDV::Host
