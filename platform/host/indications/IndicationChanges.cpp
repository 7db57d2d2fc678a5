// The part of IndicationService that clients' wishes go through: check, tell the providers, keep on disk, publish.
#include "indications/IndicationService.h"
#include "indications/ListenerUrl.h"
#include "indications/QueryError.h"
#include "indications/Refusal.h"

#include <algorithm>
#include <utility>

namespace KDV::Host {

namespace {

bool declaresBelow(const Namespace& nameSpace, const ClassInfo& base, const std::string& property)
{
    if (base.findProperty(property)) return true;
    for (const ClassInfo* one : nameSpace.subclasses(&base, true))
        if (one->findProperty(property)) return true;
    return false;
}

} // namespace

void IndicationService::checkClass(const FilterRecord& filter, const Query& query) const
{
    const ClassRepository& repository = _broker.repository();
    bool known = false;
    std::vector<std::string> unknown = query.propertiesNamed();
    for (const std::string& name : nameSpacesOf(filter, _options.interopNamespace)) {
        const Namespace* nameSpace = repository.findNamespace(name);
        if (!nameSpace) throw Refusal(CMPI_RC_ERR_INVALID_PARAMETER, "there is no namespace " + name);
        const ClassInfo* wanted = nameSpace->find(query.className());
        if (!wanted) continue;
        known = true;
        if (!wanted->isIndication())
            throw Refusal(CMPI_RC_ERR_INVALID_QUERY, "class " + wanted->name() + " is no indication class");
        unknown.erase(
            std::remove_if(unknown.begin(), unknown.end(),
                           [&](const std::string& property) { return declaresBelow(*nameSpace, *wanted, property); }),
            unknown.end());
    }
    if (!known)
        throw Refusal(CMPI_RC_ERR_INVALID_QUERY,
                      "class " + query.className() + " does not exist in the source namespaces of the filter");
    if (!unknown.empty())
        throw Refusal(CMPI_RC_ERR_INVALID_QUERY,
                      "class " + query.className() + " and its subclasses have no property " + unknown.front());
}

void IndicationService::add(FilterRecord filter)
{
    try {
        checkClass(filter, Query::compile(filter.query, filter.queryLanguage));
    } catch (const QueryError& error) {
        throw Refusal(error.rc(), error.what());
    }
    const Lock lock(_changes);
    _store.add(std::move(filter));
}

void IndicationService::add(DestinationRecord destination)
{
    ListenerUrl url;
    std::string reason;
    if (!ListenerUrl::parse(destination.url, url, reason))
        throw Refusal(CMPI_RC_ERR_INVALID_PARAMETER, "Destination: " + reason);
    const Lock lock(_changes);
    reap();
    _store.add(destination);
    addQueue(destination);
}

void IndicationService::add(SubscriptionRecord subscription)
{
    const Lock lock(_changes);
    expire();
    subscription.started = subscription.stateChanged = now();
    _store.checkNew(subscription);
    if (subscription.enabled)
        if (const Outcome outcome = wake(subscription); outcome.rc != CMPI_RC_OK)
            throw Refusal(outcome.rc, outcome.message);
    try {
        _store.add(subscription);
    } catch (...) {
        deactivate(subscription);
        giveUp(subscription);
        throw;
    }
    publish();
}

void IndicationService::replace(const SubscriptionRecord& subscription)
{
    const Lock lock(_changes);
    expire();
    const SubscriptionRecord* old = _store.findSubscription(subscription.key);
    if (!old) throw Refusal(CMPI_RC_ERR_NOT_FOUND, "there is no such subscription any more");
    SubscriptionRecord next = subscription;
    next.stateChanged = old->enabled == next.enabled ? old->stateChanged : now();
    const bool woken = next.enabled && _activated.count(next.key) == 0;
    if (woken)
        if (const Outcome outcome = wake(next); outcome.rc != CMPI_RC_OK) throw Refusal(outcome.rc, outcome.message);
    try {
        _store.replace(next);
    } catch (...) {
        if (woken) {
            deactivate(next);
            giveUp(next);
        }
        throw;
    }
    if (!next.enabled) deactivate(next);
    publish();
    if (!next.enabled) withdraw(next);
}

void IndicationService::removeFilter(const ElementKey& key)
{
    const Lock lock(_changes);
    expire();
    _store.removeFilter(key);
}

void IndicationService::removeDestination(const ElementKey& key)
{
    const Lock lock(_changes);
    expire();
    reap();
    _store.removeDestination(key);
    retireQueue(key);
}

void IndicationService::removeSubscription(const SubscriptionKey& key)
{
    const Lock lock(_changes);
    const SubscriptionRecord* found = _store.findSubscription(key);
    if (!found) throw Refusal(CMPI_RC_ERR_NOT_FOUND, "there is no such subscription");
    dropSubscription(*found);
}

} // namespace KDV::Host
