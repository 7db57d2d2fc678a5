#include "indications/FilterActivation.h"

#include "broker/RequestScope.h"
#include "broker/ResultObject.h"
#include "broker/SelectExpObject.h"
#include "hostschema/SchemaName.h"
#include "indications/QueryCompiler.h"

#include <algorithm>

namespace KDV::Host {

namespace {

// What a provider would poll for is not asked for, so nothing can come.
class NoResults : public ResultSink {
public:
    bool instance(const InstanceObject&) override { return true; }
    bool objectPath(const PathObject&) override { return true; }
    bool data(const CMPIData&) override { return true; }
};

Outcome outcomeOf(const CMPIStatus& status)
{
    return {status.rc, status.msg ? std::string(StringObject::of(status.msg).text()) : std::string()};
}

std::string lowered(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), lowerCase);
    return text;
}

std::string perClassKey(const std::string& provider, const std::string& nameSpace, const std::string& className)
{
    return provider + '\n' + lowered(nameSpace) + '\n' + lowered(className);
}

struct Parameters {
    const CMPIContext* context;
    const CMPISelectExp* filter;
    const char* className;
    const CMPIObjectPath* path;
};

// The result parameter came with version 2.1 of the interface; before, the filter stood in its place.
void mustPoll(Broker& broker, CMPIIndicationMI* table, const Parameters& with)
{
    NoResults sink;
    ResultObject result(broker, sink);
    if (!table->ft->mustPoll) return;
    if (table->ft->ftVersion >= CMPIVersion210) {
        table->ft->mustPoll(table, with.context, result.cmpi(), with.filter, with.className, with.path);
        return;
    }
    using Before =
        CMPIStatus (*)(CMPIIndicationMI*, const CMPIContext*, const CMPISelectExp*, const char*, const CMPIObjectPath*);
    auto* before = reinterpret_cast<Before>(reinterpret_cast<void (*)()>(table->ft->mustPoll));
    before(table, with.context, with.filter, with.className, with.path);
}

} // namespace

FilterActivation::FilterActivation(Broker& broker, std::vector<IndicationRegistration> registrations, Logger log)
    : _broker(broker), _registrations(std::move(registrations)), _log(log)
{
}

// Runs `function` as one provider call: a scope, the usual context, filter and path made for it.
template <class Function>
Outcome FilterActivation::call(const Active& active, const Target& target, const std::string& owner, Function function)
{
    RequestScope scope(_broker, target.nameSpace);
    ContextObject& context = scope.context();
    context.addNumber("CMPIInvocationFlags", 0);
    context.addText("CMPIInitNameSpace", target.nameSpace);
    if (!owner.empty()) context.addText("CMPIPrincipal", owner);
    SelectExpObject& filter =
        scope.selectExp(active.filter.text, active.filter.language, evaluatorOf(active.filter.query));
    PathObject& path = scope.path(target.nameSpace, target.className);
    return outcomeOf(function(Parameters{&context, &filter, active.filter.query->className().c_str(), &path}));
}

// A filter on a class gets what is registered for it and below it, and what is registered above it: a provider may
// deliver subclasses of its class.
bool FilterActivation::serves(const IndicationRegistration& registration, const FilterToActivate& filter) const
{
    const ClassRepository& repository = _broker.repository();
    const Namespace* nameSpace = repository.findNamespace(registration.nameSpace);
    const ClassInfo* registered = repository.find(registration.nameSpace, registration.className);
    if (!nameSpace || !registered) return false;
    for (const std::string& name : filter.nameSpaces) {
        const ClassInfo* wanted = repository.find(name, filter.query->className());
        if (repository.findNamespace(name) == nameSpace && wanted &&
            (registered->isA(*wanted) || wanted->isA(*registered)))
            return true;
    }
    return false;
}

Outcome FilterActivation::findTargets(Active& active)
{
    for (const IndicationRegistration& registration : _registrations) {
        if (!serves(registration, active.filter)) continue;
        Provider& provider = _providers[registration.provider];
        provider.name = registration.provider;
        if (!provider.table) {
            Outcome outcome;
            provider.table = registration.load(outcome);
            if (!provider.table && outcome.rc == CMPI_RC_OK) // loaded, but without indication functions
                outcome = {CMPI_RC_ERR_NOT_SUPPORTED, "provider " + provider.name + " sends no indications"};
            if (!provider.table) return outcome;
        }
        if (provider.table->ft->ftVersion < CMPIVersion100)
            return {CMPI_RC_ERR_NOT_SUPPORTED, "provider " + provider.name + " has an interface of before CMPI 1.0"};
        active.targets.push_back({&provider, registration.nameSpace, registration.className});
    }
    if (active.targets.empty())
        return {CMPI_RC_ERR_NOT_SUPPORTED,
                "nobody here sends indications of class " + active.filter.query->className()};
    return {};
}

Outcome FilterActivation::authorize(const Active& active, const std::string& owner)
{
    for (const Target& target : active.targets) {
        CMPIIndicationMI* table = target.provider->table;
        if (!table->ft->authorizeFilter) continue;
        Outcome outcome = call(active, target, owner, [&](const Parameters& with) {
            return table->ft->authorizeFilter(table, with.context, with.filter, with.className, with.path,
                                              owner.empty() ? nullptr : owner.c_str());
        });
        if (outcome.rc != CMPI_RC_OK) {
            outcome.message = "provider " + target.provider->name + " does not allow the filter" +
                              (outcome.message.empty() ? "" : ": " + outcome.message);
            return outcome;
        }
    }
    return {};
}

Outcome FilterActivation::activateOne(const Active& active, const Target& target)
{
    CMPIIndicationMI* table = target.provider->table;
    unsigned& count = _perClass[perClassKey(target.provider->name, target.nameSpace, target.className)];
    Outcome outcome = call(active, target, {}, [&](const Parameters& with) {
        mustPoll(_broker, table, with);
        return table->ft->activateFilter(table, with.context, with.filter, with.className, with.path, count == 0);
    });
    if (outcome.rc == CMPI_RC_OK)
        ++count;
    else
        outcome.message = "provider " + target.provider->name + " cannot activate the filter" +
                          (outcome.message.empty() ? "" : ": " + outcome.message);
    return outcome;
}

Outcome FilterActivation::activate(Active& active)
{
    for (std::size_t i = 0; i < active.targets.size(); ++i) {
        Outcome outcome = activateOne(active, active.targets[i]);
        if (outcome.rc == CMPI_RC_OK) continue;
        deactivate(active, i);
        return outcome;
    }
    for (const Target& target : active.targets)
        ++target.provider->filters;
    return {};
}

// The first `count` targets, last one first.
void FilterActivation::deactivate(const Active& active, std::size_t count)
{
    while (count-- > 0) {
        const Target& target = active.targets[count];
        CMPIIndicationMI* table = target.provider->table;
        unsigned& left = _perClass[perClassKey(target.provider->name, target.nameSpace, target.className)];
        --left;
        const Outcome outcome = call(active, target, {}, [&](const Parameters& with) {
            return table->ft->deActivateFilter(table, with.context, with.filter, with.className, with.path, left == 0);
        });
        if (outcome.rc != CMPI_RC_OK)
            _log.error("provider %s: deActivateFilter failed: %d %s", target.provider->name.c_str(),
                       static_cast<int>(outcome.rc), outcome.message.c_str());
    }
}

void FilterActivation::enable(const Provider& provider, bool on)
{
    RequestScope scope(_broker, provider.enabledIn);
    ContextObject& context = scope.context();
    context.addNumber("CMPIInvocationFlags", 0);
    context.addText("CMPIInitNameSpace", provider.enabledIn);
    const auto function = on ? provider.table->ft->enableIndications : provider.table->ft->disableIndications;
    // Servers ignore what these return; an operator may want to know.
    const Outcome outcome = function ? outcomeOf(function(provider.table, &context)) : Outcome();
    if (outcome.rc != CMPI_RC_OK)
        _log.error("provider %s: %s failed: %d %s", provider.name.c_str(),
                   on ? "enableIndications" : "disableIndications", static_cast<int>(outcome.rc),
                   outcome.message.c_str());
}

Outcome FilterActivation::add(const FilterToActivate& filter, const std::string& owner)
{
    const auto found = _filters.find(filter.key);
    if (found != _filters.end()) {
        Outcome outcome = authorize(found->second, owner);
        if (outcome.rc == CMPI_RC_OK) ++found->second.subscriptions;
        return outcome;
    }
    Active active{filter, {}, 1};
    Outcome outcome = findTargets(active);
    if (outcome.rc == CMPI_RC_OK) outcome = authorize(active, owner);
    if (outcome.rc == CMPI_RC_OK) outcome = activate(active);
    if (outcome.rc == CMPI_RC_OK) _filters.emplace(filter.key, std::move(active));
    return outcome;
}

void FilterActivation::enableProviders()
{
    for (const auto& [key, active] : _filters)
        for (const Target& target : active.targets) {
            if (!target.provider->enabledIn.empty()) continue;
            target.provider->enabledIn = target.nameSpace;
            enable(*target.provider, true);
        }
}

void FilterActivation::remove(const ElementKey& filter)
{
    const auto found = _filters.find(filter);
    if (found == _filters.end() || --found->second.subscriptions != 0) return;
    const Active active = std::move(found->second);
    _filters.erase(found);
    deactivate(active, active.targets.size());
    for (const Target& target : active.targets) {
        if (--target.provider->filters != 0 || target.provider->enabledIn.empty()) continue;
        enable(*target.provider, false);
        target.provider->enabledIn.clear();
    }
}

void FilterActivation::clear()
{
    while (!_filters.empty()) {
        _filters.begin()->second.subscriptions = 1;
        remove(ElementKey(_filters.begin()->first));
    }
}

} // namespace KDV::Host
