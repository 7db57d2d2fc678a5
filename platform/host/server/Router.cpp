#include "hostserver/Router.h"

#include "broker/RequestScope.h"

#include <algorithm>
#include <string>

namespace KDV::Host {

namespace {

// One provider may answer for a class and for another below it, for which it is registered too and will be asked: what
// comes of that other class is left out here.
class OwnClassSink : public ResultSink {
public:
    OwnClassSink(ResultSink& sink, const ProviderTable& providers, const ClassInfo& asked)
        : _sink(sink), _providers(providers), _asked(asked)
    {
    }
    bool instance(const InstanceObject& instance) override
    {
        return isElsewhere(instance.classInfo) || _sink.instance(instance);
    }
    bool objectPath(const PathObject& path) override { return isElsewhere(path.classInfo) || _sink.objectPath(path); }
    bool data(const CMPIData& data) override { return _sink.data(data); }

private:
    bool isElsewhere(const ClassInfo* classInfo) const
    {
        return classInfo != &_asked && classInfo && classInfo->isA(_asked) && _providers.find(*classInfo);
    }
    ResultSink& _sink;
    const ProviderTable& _providers;
    const ClassInfo& _asked;
};

Outcome unknownClass(std::string_view name)
{
    return {CMPI_RC_ERR_INVALID_CLASS, "there is no class " + std::string(name)};
}

} // namespace

Router::~Router() = default;

template <class Ask>
Outcome Router::enumerate(const PathObject& classPath, ResultSink& sink, Ask ask)
{
    if (!classPath.classInfo) return unknownClass(classPath.className);
    const ClassInfo& base = *classPath.classInfo;
    RequestScope* scope = RequestScope::current(_broker);
    if (!scope) return {CMPI_RC_ERR_FAILED, "the thread is not attached"};
    for (const ProviderRoute* route : _providers.below(base)) {
        if (!route->instances) continue;
        const PathObject& path =
            route->classInfo == &base ? classPath : scope->path(base.nameSpace().name(), route->classInfo->name());
        const bool alone = route->classInfo->subclasses().empty();
        OwnClassSink own(sink, _providers, *route->classInfo);
        Outcome outcome = ask(*route->provider, path, alone ? sink : own);
        if (outcome.rc != CMPI_RC_OK) return outcome;
    }
    return {};
}

Outcome Router::enumerateInstanceNames(const CMPIContext* context, const PathObject& classPath, ResultSink& sink)
{
    return enumerate(classPath, sink, [&](ClassProvider& provider, const PathObject& path, ResultSink& to) {
        return provider.enumerateInstanceNames(context, path, to);
    });
}

Outcome Router::enumerateInstances(const CMPIContext* context, const PathObject& classPath, const char** properties,
                                   ResultSink& sink)
{
    return enumerate(classPath, sink, [&](ClassProvider& provider, const PathObject& path, ResultSink& to) {
        return provider.enumerateInstances(context, path, properties, to);
    });
}

const ProviderRoute* Router::routeOf(const PathObject& path, bool ProviderRoute::*kind, Outcome& outcome) const
{
    if (!path.classInfo) {
        outcome = unknownClass(path.className);
        return nullptr;
    }
    const ProviderRoute* route = _providers.find(*path.classInfo);
    return route && route->*kind ? route : nullptr;
}

// A class that nobody serves has no instances, so none of the name either; superclasses are no exception.
Outcome Router::getInstance(const CMPIContext* context, const PathObject& path, const char** properties,
                            ResultSink& sink)
{
    Outcome outcome{CMPI_RC_ERR_NOT_FOUND, "there is no such instance: " + path.text()};
    if (const ProviderRoute* route = routeOf(path, &ProviderRoute::instances, outcome))
        outcome = route->provider->getInstance(context, path, properties, sink);
    // A provider says "no such property" of the key that matched nothing; to a client it is an instance not found.
    if (outcome.rc == CMPI_RC_ERR_NO_SUCH_PROPERTY) outcome.rc = CMPI_RC_ERR_NOT_FOUND;
    return outcome;
}

Outcome Router::createInstance(const CMPIContext* context, const PathObject& classPath, const InstanceObject& instance,
                               ResultSink& sink)
{
    Outcome outcome{CMPI_RC_ERR_NOT_SUPPORTED, "instances of this class cannot be created"};
    if (const ProviderRoute* route = routeOf(classPath, &ProviderRoute::instances, outcome))
        outcome = route->provider->createInstance(context, classPath, instance, sink);
    return outcome;
}

Outcome Router::modifyInstance(const CMPIContext* context, const PathObject& path, const InstanceObject& instance,
                               const char** properties)
{
    Outcome outcome{CMPI_RC_ERR_NOT_SUPPORTED, "instances of this class cannot be modified"};
    if (const ProviderRoute* route = routeOf(path, &ProviderRoute::instances, outcome))
        outcome = route->provider->modifyInstance(context, path, instance, properties);
    return outcome;
}

Outcome Router::deleteInstance(const CMPIContext* context, const PathObject& path)
{
    Outcome outcome{CMPI_RC_ERR_NOT_SUPPORTED, "instances of this class cannot be deleted"};
    if (const ProviderRoute* route = routeOf(path, &ProviderRoute::instances, outcome))
        outcome = route->provider->deleteInstance(context, path);
    return outcome;
}

// Most servers ask each provider once and leave the association class to it; the Pegasus way is a call for each
// concrete association class.
template <class Ask>
Outcome Router::associate(const PathObject& path, const char* assocClass, Ask ask)
{
    if (!path.classInfo) return {CMPI_RC_ERR_INVALID_PARAMETER, "there is no class " + std::string(path.className)};
    const Namespace& nameSpace = path.classInfo->nameSpace();
    const ClassInfo* wanted = assocClass && *assocClass ? nameSpace.find(assocClass) : nullptr;
    const bool perClass = _broker.profile() == Profile::Pegasus;
    std::vector<ClassProvider*> asked;
    for (const ProviderRoute* route : _providers.associations(nameSpace)) {
        if (wanted && !route->classInfo->isA(*wanted)) continue;
        if (!perClass && std::find(asked.begin(), asked.end(), route->provider) != asked.end()) continue;
        asked.push_back(route->provider);
        Outcome outcome = ask(*route->provider, perClass ? route->classInfo->name().c_str() : assocClass);
        if (outcome.rc != CMPI_RC_OK) return outcome;
    }
    return {};
}

Outcome Router::associators(const CMPIContext* context, const PathObject& path, const char* assocClass,
                            const char* resultClass, const char* role, const char* resultRole, const char** properties,
                            ResultSink& sink)
{
    return associate(path, assocClass, [&](ClassProvider& provider, const char* association) {
        return provider.associators(context, path, association, resultClass, role, resultRole, properties, sink);
    });
}

Outcome Router::associatorNames(const CMPIContext* context, const PathObject& path, const char* assocClass,
                                const char* resultClass, const char* role, const char* resultRole, ResultSink& sink)
{
    return associate(path, assocClass, [&](ClassProvider& provider, const char* association) {
        return provider.associatorNames(context, path, association, resultClass, role, resultRole, sink);
    });
}

Outcome Router::references(const CMPIContext* context, const PathObject& path, const char* resultClass,
                           const char* role, const char** properties, ResultSink& sink)
{
    return associate(path, resultClass, [&](ClassProvider& provider, const char* association) {
        return provider.references(context, path, association, role, properties, sink);
    });
}

Outcome Router::referenceNames(const CMPIContext* context, const PathObject& path, const char* resultClass,
                               const char* role, ResultSink& sink)
{
    return associate(path, resultClass, [&](ClassProvider& provider, const char* association) {
        return provider.referenceNames(context, path, association, role, sink);
    });
}

Outcome Router::invokeMethod(const CMPIContext* context, const PathObject& path, const char* method, const CMPIArgs* in,
                             CMPIArgs* out, ResultSink& sink)
{
    if (!path.classInfo) return unknownClass(path.className);
    // One of the servers leaves the method's name to the provider.
    if (!path.classInfo->findMethod(method) && _broker.profile() != Profile::Sfcb)
        return {CMPI_RC_ERR_METHOD_NOT_FOUND,
                "class " + path.classInfo->name() + " has no method " + std::string(method)};
    Outcome outcome{CMPI_RC_ERR_METHOD_NOT_AVAILABLE, "nobody serves the methods of class " + path.classInfo->name()};
    if (const ProviderRoute* route = routeOf(path, &ProviderRoute::methods, outcome))
        outcome = route->provider->invokeMethod(context, path, method, in, out, sink);
    return outcome;
}

} // namespace KDV::Host
