// Who serves which class. Filled at start from one thread, then constant: look-ups take no lock.
//
// A server asks a provider with the same calls that a provider may make of the server, so both are BrokerUpcalls: a
// loaded library and a built-in provider stand beside each other here. A provider sees each class for which it is
// registered in calls of its own, with that class in the path.
#pragma once

#include "broker/Upcalls.h"
#include "hostschema/ClassRepository.h"

#include <vector>

namespace KDV::Host {

using ClassProvider = BrokerUpcalls;

struct ProviderRoute {
    const ClassInfo* classInfo = nullptr;
    ClassProvider* provider = nullptr; // not owned
    bool instances = false;
    bool associations = false; // the class is an association that the provider follows
    bool methods = false;
    bool indications = false;
};

class ProviderTable {
public:
    explicit ProviderTable(const ClassRepository& repository) : _byClass(repository.classCount()) {}

    void add(const ProviderRoute& route); // a second one for the class replaces the first
    // Null if nobody serves the class.
    const ProviderRoute* find(const ClassInfo& classInfo) const noexcept
    {
        const ProviderRoute& route = _byClass[classInfo.number()];
        return route.provider ? &route : nullptr;
    }
    // The classes that are served among `base` and those below it, in the order of their declaration.
    std::vector<const ProviderRoute*> below(const ClassInfo& base) const;
    // The association classes that are served in the namespace.
    std::vector<const ProviderRoute*> associations(const Namespace& nameSpace) const;

private:
    std::vector<ProviderRoute> _byClass;
};

} // namespace KDV::Host
