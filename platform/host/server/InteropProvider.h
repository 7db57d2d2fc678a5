// What a client asks a server about itself before it asks for anything else: the object manager, its namespaces, and
// the management profiles that it and its providers conform to. In the namespaces "interop" and "root".
#pragma once

#include "hostserver/BuiltInProvider.h"

#include <string>

namespace KDV::Host {

class InteropProvider : public BuiltInProvider {
public:
    InteropProvider(Broker& broker, std::string hostName) : BuiltInProvider(broker), _hostName(std::move(hostName)) {}
    ~InteropProvider() override;

    // The routes of all its classes, in the namespaces that the repository has.
    std::vector<ProviderRoute> routes();

private:
    Instances instancesOf(RequestScope& scope, const ClassInfo& classInfo) const override;
    std::vector<const ClassInfo*> associationsIn(const Namespace& nameSpace) const override;

    InstanceObject& objectManager(RequestScope& scope, const ClassInfo& classInfo) const;
    Instances nameSpaces(RequestScope& scope, const ClassInfo& classInfo) const;
    Instances childNameSpaces(RequestScope& scope, const ClassInfo& classInfo) const;
    InstanceObject& profile(RequestScope& scope, const ClassInfo& classInfo) const;
    InstanceObject& conformance(RequestScope& scope, const ClassInfo& classInfo) const;

    std::string _hostName;
};

} // namespace KDV::Host
