#include "indications/SubscriptionStore.h"

#include "indications/Refusal.h"
#include "indications/StateText.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace KDV::Host {

namespace {

template <class Record, class Key>
const Record* find(const std::vector<Record>& records, const Key& key) noexcept
{
    for (const Record& record : records)
        if (record.key == key) return &record;
    return nullptr;
}

template <class Record, class Key>
void erase(std::vector<Record>& records, const Key& key)
{
    records.erase(std::remove_if(records.begin(), records.end(), [&](const Record& one) { return one.key == key; }),
                  records.end());
}

std::string named(const ElementKey& key) { return key.className + " \"" + key.name + '"'; }

[[noreturn]] void refuseLimit(std::size_t limit, const char* what)
{
    throw Refusal(CMPI_RC_ERR_SERVER_LIMITS_EXCEEDED,
                  "this server keeps at most " + std::to_string(limit) + ' ' + what);
}

} // namespace

SubscriptionStore::SubscriptionStore(const std::filesystem::path& directory, StoreLimits limits, Logger log)
    : _file(directory / "indications.json"), _limits(limits), _log(log)
{
}

void SubscriptionStore::addStatic(FilterRecord filter)
{
    filter.isStatic = true;
    _state.filters.push_back(std::move(filter));
}

void SubscriptionStore::load()
{
    const std::optional<std::string> text = _file.read();
    if (!text) return;
    SubscriptionState kept;
    try {
        kept = readStateText(*text);
    } catch (const StateTextError& error) {
        const std::filesystem::path aside = _file.putAside();
        _log.error("%s: %s; kept as %s, starting without subscriptions", _file.path().c_str(), error.what(),
                   aside.c_str());
        return;
    }
    std::vector<FilterRecord> filters = _state.filters;
    for (FilterRecord& filter : kept.filters)
        if (!find(_state.filters, filter.key)) // a static one has taken its place
            filters.push_back(std::move(filter));
    kept.filters = std::move(filters);
    dropDangling(kept);
    _state = std::move(kept);
}

void SubscriptionStore::dropDangling(SubscriptionState& state) const
{
    const auto dangles = [&](const SubscriptionRecord& one) {
        const bool collection = one.key.filter.className == InteropClass::collection;
        const bool hasFilter = collection ? findCollection(one.key.filter.name) != nullptr
                                          : find(state.filters, one.key.filter) != nullptr;
        if (hasFilter && find(state.destinations, one.key.handler)) return false;
        _log.error("%s: dropped the subscription of %s, whose filter or handler is gone", _file.path().c_str(),
                   one.key.handler.name.c_str());
        return true;
    };
    auto& all = state.subscriptions;
    all.erase(std::remove_if(all.begin(), all.end(), dangles), all.end());
}

const FilterRecord* SubscriptionStore::findFilter(const ElementKey& key) const noexcept
{
    return find(_state.filters, key);
}

const DestinationRecord* SubscriptionStore::findDestination(const ElementKey& key) const noexcept
{
    return find(_state.destinations, key);
}

const SubscriptionRecord* SubscriptionStore::findSubscription(const SubscriptionKey& key) const noexcept
{
    return find(_state.subscriptions, key);
}

const FilterCollectionRecord* SubscriptionStore::findCollection(const std::string& instanceId) const noexcept
{
    for (const FilterCollectionRecord& collection : _collections)
        if (collection.instanceId == instanceId) return &collection;
    return nullptr;
}

std::vector<const FilterRecord*> SubscriptionStore::filtersOf(const SubscriptionRecord& subscription) const
{
    std::vector<const FilterRecord*> filters;
    if (subscription.key.filter.className != InteropClass::collection) {
        if (const FilterRecord* filter = findFilter(subscription.key.filter)) filters.push_back(filter);
    } else if (const FilterCollectionRecord* collection = findCollection(subscription.key.filter.name)) {
        for (const ElementKey& key : collection->filters)
            if (const FilterRecord* filter = findFilter(key)) filters.push_back(filter);
    }
    return filters;
}

template <class Change>
void SubscriptionStore::change(Change&& apply)
{
    SubscriptionState next = _state;
    apply(next);
    try {
        _file.write(stateText(next));
    } catch (const std::system_error& error) {
        _log.error("%s", error.what());
        throw Refusal(CMPI_RC_ERR_FAILED, std::string("the subscriptions could not be saved: ") + error.what());
    }
    _state = std::move(next);
}

void SubscriptionStore::add(FilterRecord filter)
{
    if (findFilter(filter.key)) throw Refusal(CMPI_RC_ERR_ALREADY_EXISTS, named(filter.key) + " exists already");
    if (_state.filters.size() >= _limits.filters) refuseLimit(_limits.filters, "filters");
    change([&](SubscriptionState& next) { next.filters.push_back(std::move(filter)); });
}

void SubscriptionStore::add(DestinationRecord destination)
{
    if (findDestination(destination.key))
        throw Refusal(CMPI_RC_ERR_ALREADY_EXISTS, named(destination.key) + " exists already");
    if (_state.destinations.size() >= _limits.destinations) refuseLimit(_limits.destinations, "listener destinations");
    change([&](SubscriptionState& next) { next.destinations.push_back(std::move(destination)); });
}

void SubscriptionStore::checkNew(const SubscriptionRecord& subscription) const
{
    if (filtersOf(subscription).empty())
        throw Refusal(CMPI_RC_ERR_NOT_FOUND, "there is no " + named(subscription.key.filter));
    if (!findDestination(subscription.key.handler))
        throw Refusal(CMPI_RC_ERR_NOT_FOUND, "there is no " + named(subscription.key.handler));
    if (findSubscription(subscription.key))
        throw Refusal(CMPI_RC_ERR_ALREADY_EXISTS, named(subscription.key.handler) + " is subscribed to " +
                                                      named(subscription.key.filter) + " already");
    if (_state.subscriptions.size() >= _limits.subscriptions) refuseLimit(_limits.subscriptions, "subscriptions");
}

void SubscriptionStore::add(SubscriptionRecord subscription)
{
    checkNew(subscription);
    change([&](SubscriptionState& next) { next.subscriptions.push_back(std::move(subscription)); });
}

void SubscriptionStore::replace(const SubscriptionRecord& subscription)
{
    change([&](SubscriptionState& next) {
        for (SubscriptionRecord& one : next.subscriptions)
            if (one.key == subscription.key) one = subscription;
    });
}

bool SubscriptionStore::refers(const SubscriptionRecord& subscription, const ElementKey& filter) const
{
    for (const FilterRecord* one : filtersOf(subscription))
        if (one->key == filter) return true;
    return false;
}

void SubscriptionStore::removeFilter(const ElementKey& key)
{
    const FilterRecord* filter = findFilter(key);
    if (!filter) throw Refusal(CMPI_RC_ERR_NOT_FOUND, "there is no " + named(key));
    if (filter->isStatic)
        throw Refusal(CMPI_RC_ERR_FAILED, named(key) + " belongs to the server and cannot be deleted");
    for (const SubscriptionRecord& one : _state.subscriptions)
        if (refers(one, key))
            throw Refusal(CMPI_RC_ERR_FAILED, named(key) + " is used by the subscription of " + named(one.key.handler));
    change([&](SubscriptionState& next) { erase(next.filters, key); });
}

void SubscriptionStore::removeDestination(const ElementKey& key)
{
    if (!findDestination(key)) throw Refusal(CMPI_RC_ERR_NOT_FOUND, "there is no " + named(key));
    for (const SubscriptionRecord& one : _state.subscriptions)
        if (one.key.handler == key)
            throw Refusal(CMPI_RC_ERR_FAILED, named(key) + " is used by the subscription to " + named(one.key.filter));
    change([&](SubscriptionState& next) { erase(next.destinations, key); });
}

void SubscriptionStore::removeSubscription(const SubscriptionKey& key)
{
    if (!findSubscription(key))
        throw Refusal(CMPI_RC_ERR_NOT_FOUND, named(key.handler) + " is not subscribed to " + named(key.filter));
    change([&](SubscriptionState& next) { erase(next.subscriptions, key); });
}

} // namespace KDV::Host
