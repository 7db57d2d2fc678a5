#include "indications/IndicationService.h"

#include "hostschema/SchemaName.h"
#include "indications/ListenerUrl.h"
#include "indications/QueryError.h"
#include "indications/Refusal.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace KDV::Host {

namespace {

std::int64_t systemMicroseconds()
{
    using namespace std::chrono;
    return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
}

IndicationOptions completed(IndicationOptions options)
{
    if (!options.microseconds) options.microseconds = systemMicroseconds;
    if (!options.connect)
        options.connect = [connection = options.connection](const std::string& url) {
            return connectTo(url, connection);
        };
    return options;
}

// Far enough away to be never, near enough to be counted in microseconds.
constexpr std::uint64_t longestDuration = 3'000'000'000'000;

} // namespace

std::vector<std::string> nameSpacesOf(const FilterRecord& filter, const std::string& interop)
{
    std::vector<std::string> names = filter.sourceNamespaces;
    if (filter.sourceNamespace && std::none_of(names.begin(), names.end(), [&](const std::string& name) {
            return sameName(name, *filter.sourceNamespace);
        }))
        names.push_back(*filter.sourceNamespace);
    if (names.empty()) names.push_back(interop); // a filter that names none looks where it stands itself
    return names;
}

void addStaticFilter(IndicationOptions& options, const std::string& name, const std::string& className,
                     const std::string& nameSpace)
{
    FilterRecord filter;
    filter.key = {options.systemClass, options.systemName, InteropClass::filter, name};
    filter.elementName = "All indications of class " + className;
    filter.description = "Made by the server; always there.";
    filter.sourceNamespace = nameSpace;
    filter.sourceNamespaces = {nameSpace};
    filter.query = "SELECT * FROM " + className;
    filter.queryLanguage = "DMTF:CQL";
    options.collections.push_back({name, name, filter.elementName, {filter.key}});
    options.staticFilters.push_back(std::move(filter));
}

IndicationService::IndicationService(Broker& broker, IndicationOptions options,
                                     std::vector<IndicationRegistration> registrations)
    : _broker(broker), _options(completed(std::move(options))), _log(_options.identifier + ":indications"),
      _fragments(broker.repository()), _journal(_options.journal),
      _store(_options.stateDirectory, _options.limits, _log), _activation(broker, std::move(registrations), _log),
      _active(std::make_shared<Active>())
{
    for (const FilterRecord& filter : _options.staticFilters)
        _store.addStatic(filter);
    for (const FilterCollectionRecord& collection : _options.collections)
        _store.addStatic(collection);
}

IndicationService::~IndicationService() { stop(); }

void IndicationService::start()
{
    const Lock lock(_changes);
    _started = now();
    _store.load();
    for (const DestinationRecord& destination : _store.state().destinations)
        addQueue(destination);
    if (_options.stream)
        _stream = std::make_shared<LocalStream>(
            *_options.stream, [this](bool on) { follow(on); }, _log);
    _running = true;
    expire();
    expect(_store.state().subscriptions);
    for (const SubscriptionRecord& subscription : _store.state().subscriptions) {
        if (!subscription.enabled) continue;
        const Outcome outcome = activate(subscription);
        if (outcome.rc == CMPI_RC_OK) continue;
        _degraded.insert(subscription.key);
        _log.error("the subscription of %s to %s gets nothing: %s", subscription.key.handler.name.c_str(),
                   subscription.key.filter.name.c_str(), outcome.message.c_str());
    }
    publish();
    if (!_options.followAlways) return;
    expect({});
    for (const FilterRecord& filter : _options.staticFilters)
        if (_activation.add(toActivate(filter), {}).rc == CMPI_RC_OK) _followed.insert(filter.key);
    publish();
}

// The queues are ended without the lock: their threads may be waiting for it.
void IndicationService::stop()
{
    std::vector<std::shared_ptr<DestinationQueue>> queues;
    std::shared_ptr<LocalStream> stream;
    {
        const Lock lock(_changes);
        _running = false;
        _activation.clear();
        _activated.clear();
        _followed.clear();
        for (auto& [key, queue] : _queues)
            queues.push_back(std::move(queue));
        _queues.clear();
        queues.insert(queues.end(), _retired.begin(), _retired.end());
        _retired.clear();
        stream = std::move(_stream);
        publish();
    }
    const auto deadline = std::chrono::steady_clock::now() + _options.farewell;
    for (const auto& queue : queues)
        queue->close(deadline);
    for (const auto& queue : queues)
        queue->join();
}

FilterToActivate IndicationService::toActivate(const FilterRecord& filter) const
{
    return {filter.key, std::make_shared<const Query>(Query::compile(filter.query, filter.queryLanguage)), filter.query,
            filter.queryLanguage, nameSpacesOf(filter, _options.interopNamespace)};
}

Outcome IndicationService::activate(const SubscriptionRecord& subscription)
{
    std::vector<ElementKey> done;
    Outcome outcome;
    try {
        for (const FilterRecord* filter : _store.filtersOf(subscription)) {
            outcome = _activation.add(toActivate(*filter), subscription.creator);
            if (outcome.rc != CMPI_RC_OK) break;
            done.push_back(filter->key);
        }
    } catch (const QueryError& error) {
        outcome = {error.rc(), error.what()};
    }
    if (outcome.rc == CMPI_RC_OK) {
        _activated.insert(subscription.key);
        _degraded.erase(subscription.key);
    } else {
        for (const ElementKey& key : done)
            _activation.remove(key);
    }
    return outcome;
}

void IndicationService::deactivate(const SubscriptionRecord& subscription)
{
    _degraded.erase(subscription.key);
    if (_activated.erase(subscription.key) == 0) return;
    for (const FilterRecord* filter : _store.filtersOf(subscription))
        _activation.remove(filter->key);
}

void IndicationService::addQueue(const DestinationRecord& destination)
{
    ListenerUrl url;
    std::string reason;
    if (!ListenerUrl::parse(destination.url, url, reason)) {
        _log.error("destination %s: %s", destination.key.name.c_str(), reason.c_str());
        return;
    }
    DestinationQueue::Setup setup;
    setup.name = "destination " + destination.key.name + " (" + url.text() + ')';
    // A new context whenever the numbers begin anew, so that a listener does not take that for a loss.
    setup.sequenceContext = _options.systemName + ';' + std::to_string(now()) + ';' + destination.key.name;
    setup.limits = _options.queue;
    setup.retry = _options.retry;
    setup.clock = _options.clock;
    setup.gaveUp = [this](const SubscriptionKey& key) { deliveryFailed(key); };
    _queues[destination.key] = std::make_shared<DestinationQueue>(std::move(setup), _options.connect(url.text()), _log);
}

void IndicationService::retireQueue(const ElementKey& key)
{
    const auto found = _queues.find(key);
    if (found == _queues.end()) return;
    found->second->abandon();
    _retired.push_back(std::move(found->second));
    _queues.erase(found);
}

void IndicationService::reap()
{
    const auto over = [](const std::shared_ptr<DestinationQueue>& queue) {
        if (!queue->ended()) return false;
        queue->join();
        return true;
    };
    _retired.erase(std::remove_if(_retired.begin(), _retired.end(), over), _retired.end());
}

void IndicationService::withdraw(const SubscriptionRecord& subscription)
{
    const auto found = _queues.find(subscription.key.handler);
    if (found != _queues.end()) found->second->withdraw(subscription.key);
}

// On disk first: what is gone there does not come back, whatever the provider says to it.
void IndicationService::dropSubscription(const SubscriptionRecord& subscription)
{
    const SubscriptionRecord dropped = subscription; // the store's own is gone in a moment
    _store.removeSubscription(dropped.key);
    deactivate(dropped);
    publish();
    withdraw(dropped);
}

void IndicationService::expire()
{
    std::vector<SubscriptionRecord> over;
    for (const SubscriptionRecord& one : _store.state().subscriptions)
        if (one.durationSeconds &&
            one.started + static_cast<std::int64_t>(std::min(*one.durationSeconds, longestDuration)) * 1'000'000 <=
                now())
            over.push_back(one);
    for (const SubscriptionRecord& one : over)
        try {
            dropSubscription(one);
            _log.info("the subscription of %s has run out", one.key.handler.name.c_str());
        } catch (const Refusal&) {
            // Could not be saved, which the store has logged; the next call tries again.
        }
}

std::vector<FilterRecord> IndicationService::filters()
{
    const Lock lock(_changes);
    return _store.state().filters;
}

std::vector<DestinationRecord> IndicationService::destinations()
{
    const Lock lock(_changes);
    return _store.state().destinations;
}

std::vector<SubscriptionView> IndicationService::subscriptions()
{
    const Lock lock(_changes);
    expire();
    std::vector<SubscriptionView> views;
    for (const SubscriptionRecord& one : _store.state().subscriptions)
        views.push_back({one, _degraded.count(one.key) != 0});
    return views;
}

std::map<ElementKey, DestinationCounters> IndicationService::counters()
{
    const Lock lock(_changes);
    std::map<ElementKey, DestinationCounters> all;
    for (const auto& [key, queue] : _queues)
        all.emplace(key, queue->counters());
    return all;
}

void IndicationService::addMatches(Active& active, const SubscriptionRecord& subscription)
{
    const auto queue = _queues.find(subscription.key.handler);
    if (queue == _queues.end()) return;
    const auto key = std::make_shared<const SubscriptionKey>(subscription.key);
    for (const FilterRecord* filter : _store.filtersOf(subscription)) {
        const FilterToActivate made = toActivate(*filter);
        Match match{made.query, {}, queue->second, key, filter->key.name};
        for (const std::string& name : made.nameSpaces)
            if (const Namespace* nameSpace = _broker.repository().findNamespace(name))
                match.nameSpaces.push_back(nameSpace);
        const bool acts =
            subscription.policy == FatalErrorPolicy::Disable || subscription.policy == FatalErrorPolicy::Remove;
        if (acts && subscription.failureTriggerSeconds)
            match.giveUpAfter = std::chrono::seconds(std::min(*subscription.failureTriggerSeconds, longestDuration));
        if (subscription.durationSeconds)
            match.expires =
                subscription.started +
                static_cast<std::int64_t>(std::min(*subscription.durationSeconds, longestDuration)) * 1'000'000;
        active.matches.push_back(std::move(match));
    }
}

std::shared_ptr<IndicationService::Active> IndicationService::whoIsThere()
{
    auto next = std::make_shared<Active>();
    if (!_running) return next;
    next->anybody = _activation.any();
    next->stream = _stream;
    for (const SubscriptionRecord& subscription : _store.state().subscriptions)
        if (_activated.count(subscription.key) != 0) addMatches(*next, subscription);
    return next;
}

void IndicationService::publish()
{
    {
        auto next = whoIsThere();
        const Lock lock(_activeMutex);
        _active = std::move(next);
    }
    _activation.enableProviders();
}

void IndicationService::expect(const std::vector<SubscriptionRecord>& coming)
{
    auto next = whoIsThere();
    next->anybody = true;
    for (const SubscriptionRecord& subscription : coming)
        if (subscription.enabled) addMatches(*next, subscription);
    const Lock lock(_activeMutex);
    _active = std::move(next);
}

Outcome IndicationService::wake(const SubscriptionRecord& subscription)
{
    expect({subscription});
    Outcome outcome = activate(subscription);
    if (outcome.rc != CMPI_RC_OK) giveUp(subscription);
    return outcome;
}

void IndicationService::giveUp(const SubscriptionRecord& subscription)
{
    publish();
    withdraw(subscription);
}

// On the thread of the destination's queue.
void IndicationService::deliveryFailed(const SubscriptionKey& key)
{
    const Lock lock(_changes);
    const SubscriptionRecord* found = _running ? _store.findSubscription(key) : nullptr;
    if (!found) return;
    try {
        applyPolicy(SubscriptionRecord(*found));
    } catch (const Refusal& refusal) {
        _log.error("the subscription of %s stays as it is: %s", key.handler.name.c_str(), refusal.what());
    }
}

void IndicationService::applyPolicy(const SubscriptionRecord& subscription)
{
    if (subscription.policy == FatalErrorPolicy::Disable) {
        SubscriptionRecord disabled = subscription;
        disabled.enabled = false;
        disabled.stateChanged = now();
        _store.replace(disabled);
        deactivate(disabled);
        publish();
        withdraw(disabled);
        _log.error("the subscription of %s was disabled after failures", subscription.key.handler.name.c_str());
    } else if (subscription.policy == FatalErrorPolicy::Remove) {
        const ElementKey handler = subscription.key.handler;
        dropSubscription(subscription);
        _log.error("the subscription of %s was removed after failures", handler.name.c_str());
        const DestinationRecord* destination = _store.findDestination(handler);
        const auto& others = _store.state().subscriptions;
        const bool used = std::any_of(others.begin(), others.end(),
                                      [&](const SubscriptionRecord& one) { return one.key.handler == handler; });
        if (destination && destination->persistence == Persistence::Transient && !used) {
            _store.removeDestination(handler);
            retireQueue(handler);
        }
    }
}

// On the thread of the local stream.
void IndicationService::follow(bool on)
{
    const Lock lock(_changes);
    if (!_running || _options.followAlways) return;
    if (on) expect({});
    for (const FilterRecord& filter : _options.staticFilters) {
        if (on && _activation.add(toActivate(filter), {}).rc == CMPI_RC_OK)
            _followed.insert(filter.key);
        else if (!on && _followed.erase(filter.key) != 0)
            _activation.remove(filter.key);
    }
    publish();
}

} // namespace KDV::Host
