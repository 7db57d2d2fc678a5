// Executes operations on instances: finds the providers of the classes concerned and asks each in turn, as full servers
// do, with the class that it is registered for. Clients' requests and providers' up-calls both come through here. Any
// thread that has a RequestScope; the router holds no lock and no state of its own.
// Outcomes carry the codes of DSP0200. Classes and namespaces of paths are taken as the callers resolved them.
#pragma once

#include "broker/Broker.h"
#include "hostserver/ProviderTable.h"

namespace KDV::Host {

class Router : public BrokerUpcalls {
public:
    Router(Broker& broker, const ProviderTable& providers) : _broker(broker), _providers(providers) {}
    ~Router() override;

    Outcome enumerateInstanceNames(const CMPIContext* context, const PathObject& classPath, ResultSink& sink) override;
    Outcome enumerateInstances(const CMPIContext* context, const PathObject& classPath, const char** properties,
                               ResultSink& sink) override;
    Outcome getInstance(const CMPIContext* context, const PathObject& path, const char** properties,
                        ResultSink& sink) override;
    Outcome createInstance(const CMPIContext* context, const PathObject& classPath, const InstanceObject& instance,
                           ResultSink& sink) override;
    Outcome modifyInstance(const CMPIContext* context, const PathObject& path, const InstanceObject& instance,
                           const char** properties) override;
    Outcome deleteInstance(const CMPIContext* context, const PathObject& path) override;
    Outcome associators(const CMPIContext* context, const PathObject& path, const char* assocClass,
                        const char* resultClass, const char* role, const char* resultRole, const char** properties,
                        ResultSink& sink) override;
    Outcome associatorNames(const CMPIContext* context, const PathObject& path, const char* assocClass,
                            const char* resultClass, const char* role, const char* resultRole,
                            ResultSink& sink) override;
    Outcome references(const CMPIContext* context, const PathObject& path, const char* resultClass, const char* role,
                       const char** properties, ResultSink& sink) override;
    Outcome referenceNames(const CMPIContext* context, const PathObject& path, const char* resultClass,
                           const char* role, ResultSink& sink) override;
    Outcome invokeMethod(const CMPIContext* context, const PathObject& path, const char* method, const CMPIArgs* in,
                         CMPIArgs* out, ResultSink& sink) override;

private:
    template <class Ask>
    Outcome enumerate(const PathObject& classPath, ResultSink& sink, Ask ask);
    template <class Ask>
    Outcome associate(const PathObject& path, const char* assocClass, Ask ask);
    const ProviderRoute* routeOf(const PathObject& path, bool ProviderRoute::*kind, Outcome& outcome) const;

    Broker& _broker;
    const ProviderTable& _providers;
};

} // namespace KDV::Host
