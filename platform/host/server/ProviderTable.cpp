#include "hostserver/ProviderTable.h"

namespace KDV::Host {

void ProviderTable::add(const ProviderRoute& route) { _byClass[route.classInfo->number()] = route; }

std::vector<const ProviderRoute*> ProviderTable::below(const ClassInfo& base) const
{
    std::vector<const ProviderRoute*> found;
    if (const ProviderRoute* route = find(base)) found.push_back(route);
    if (base.subclasses().empty()) return found;
    for (const ClassInfo* derived : base.nameSpace().subclasses(&base, true))
        if (const ProviderRoute* route = find(*derived)) found.push_back(route);
    return found;
}

std::vector<const ProviderRoute*> ProviderTable::associations(const Namespace& nameSpace) const
{
    std::vector<const ProviderRoute*> found;
    for (const auto& classInfo : nameSpace.classes()) {
        const ProviderRoute* route = find(*classInfo);
        if (route && route->associations) found.push_back(route);
    }
    return found;
}

} // namespace KDV::Host
