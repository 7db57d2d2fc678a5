// Filters, destinations, subscriptions and their collection as CIM instances and back. Instances and paths are made in
// the caller's RequestScope. What a client wrote and cannot be taken is Refusal.
#pragma once

#include "broker/RequestScope.h"
#include "indications/IndicationService.h"

#include <string>
#include <string_view>

namespace KDV::Host {

// Where instances are made: `nameSpace` is the one that the client named; `properties` those that it wants (null: all).
struct InteropContext {
    RequestScope& scope;
    std::string_view nameSpace;
    const char** properties = nullptr;
};

PathObject& elementPath(const InteropContext& at, const ElementKey& key); // of a filter, destination or collection
PathObject& subscriptionPath(const InteropContext& at, const SubscriptionKey& key);
PathObject& memberPath(const InteropContext& at, const FilterCollectionRecord& collection, const ElementKey& filter);

InstanceObject& filterInstance(const InteropContext& at, const FilterRecord& filter);
InstanceObject& destinationInstance(const InteropContext& at, const DestinationRecord& destination);
InstanceObject& collectionInstance(const InteropContext& at, const FilterCollectionRecord& collection);
InstanceObject& subscriptionInstance(const InteropContext& at, const SubscriptionView& subscription, std::int64_t now);
InstanceObject& memberInstance(const InteropContext& at, const FilterCollectionRecord& collection,
                               const ElementKey& filter);

ElementKey collectionKey(const std::string& instanceId);
// The keys of a path; a key that is missing is Refusal.
ElementKey elementKeyOf(const PathObject& path);
SubscriptionKey subscriptionKeyOf(const PathObject& path);

// What CreateInstance is given; keys that it leaves out are filled in.
FilterRecord newFilter(const InstanceObject& instance, const IndicationService& service);
DestinationRecord newDestination(const InstanceObject& instance, const IndicationService& service);
SubscriptionRecord newSubscription(const InstanceObject& instance);

// What ModifyInstance makes of a subscription. `properties`: those that count; null: all that are given. A property
// that cannot be changed may be given with the value that it has.
SubscriptionRecord changedSubscription(const SubscriptionRecord& record, const InstanceObject& current,
                                       const InstanceObject& given, const char** properties);
// For instances of which nothing can be changed.
void refuseChanges(const InstanceObject& current, const InstanceObject& given, const char** properties);

} // namespace KDV::Host
