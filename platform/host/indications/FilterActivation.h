// Tells the providers' indication functions which filters are in use, in the order that CMPI has for it:
// authorizeFilter for every subscription; mustPoll, activateFilter and then, with a provider's first filter,
// enableIndications; the mirror when the last subscription of a filter goes. One thread at a time (the caller's lock),
// and none that holds a lock which deliverIndication needs: providers may deliver from inside these calls.
#pragma once

#include "broker/Broker.h"
#include "cmpi/ProviderTables.h"
#include "indications/Query.h"
#include "indications/SubscriptionRecords.h"
#include "logger/Logger.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace KDV::Host {

// Which provider sends the indications of which class. `load` gives its function table, or null and why not; it is
// called when the first filter needs it, and the table must then stay until clear().
struct IndicationRegistration {
    std::string provider;
    std::string nameSpace;
    std::string className;
    std::function<CMPIIndicationMI*(Outcome&)> load;
};

struct FilterToActivate {
    ElementKey key;
    std::shared_ptr<const Query> query;
    std::string text;
    std::string language;
    std::vector<std::string> nameSpaces;
};

class FilterActivation {
public:
    FilterActivation(Broker& broker, std::vector<IndicationRegistration> registrations, Logger log);

    // One subscription more. Anything but 0 refuses it, and the providers are as before.
    Outcome add(const FilterToActivate& filter, const std::string& owner);
    // Tells the providers that have filters to send. They may do so at once, so whoever is to get it must be known.
    void enableProviders();
    void remove(const ElementKey& filter); // one less
    void clear();                          // none at all: the host ends
    bool any() const noexcept { return !_filters.empty(); }

private:
    struct Provider {
        std::string name;
        CMPIIndicationMI* table = nullptr;
        unsigned filters = 0;
        std::string enabledIn; // a namespace, empty while it is not to send
    };
    struct Target {
        Provider* provider;
        std::string nameSpace;
        std::string className; // as registered
    };
    struct Active {
        FilterToActivate filter;
        std::vector<Target> targets;
        unsigned subscriptions = 0;
    };
    template <class Function>
    Outcome call(const Active& active, const Target& target, const std::string& owner, Function function);
    bool serves(const IndicationRegistration& registration, const FilterToActivate& filter) const;
    Outcome findTargets(Active& active);
    Outcome authorize(const Active& active, const std::string& owner);
    Outcome activate(Active& active);
    Outcome activateOne(const Active& active, const Target& target);
    void deactivate(const Active& active, std::size_t count);
    void enable(const Provider& provider, bool on);

    Broker& _broker;
    std::vector<IndicationRegistration> _registrations;
    Logger _log;
    std::map<std::string, Provider> _providers;
    std::map<ElementKey, Active> _filters;
    std::map<std::string, unsigned> _perClass; // filters by provider, namespace and class
};

} // namespace KDV::Host
