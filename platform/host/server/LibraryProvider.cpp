#include "hostserver/LibraryProvider.h"

#include "broker/Values.h"

namespace KDV::Host {

namespace {

// For calls that return nothing.
class NoSink : public ResultSink {
public:
    bool instance(const InstanceObject&) override { return true; }
    bool objectPath(const PathObject&) override { return true; }
    bool data(const CMPIData&) override { return true; }
};

Outcome outcomeOf(const CMPIStatus& status)
{
    Outcome outcome{status.rc, {}};
    if (status.msg) outcome.message = StringObject::of(status.msg).text();
    return outcome;
}

} // namespace

LibraryProvider::LibraryProvider(Broker& broker, std::string name, const std::string& location,
                                 const std::string& directory)
    : _broker(broker), _name(std::move(name)), _module(location, directory)
{
}

LibraryProvider::~LibraryProvider() = default;

Outcome LibraryProvider::create()
{
    const std::lock_guard lock(_mutex);
    if (_ended) return {CMPI_RC_ERR_FAILED, "the server is stopping"};
    if (_ready) return {};
    const Outcome made = _module.create(_broker, _name);
    _ready = made.rc == CMPI_RC_OK;
    return made;
}

Outcome LibraryProvider::cleanup()
{
    const std::lock_guard lock(_mutex);
    _ended = true;
    _ready = false;
    return _module.cleanup(_broker, true);
}

template <class MI, class Body>
Outcome LibraryProvider::call(MI* (ProviderModule::*table)() const noexcept, ResultSink* sink, ResultKind kind,
                              Body body)
{
    if (!_ready)
        if (Outcome made = create(); made.rc != CMPI_RC_OK) return made;
    MI* mi = (_module.*table)();
    if (!mi) return {CMPI_RC_ERR_NOT_SUPPORTED, "the provider " + _name + " has no functions for this operation"};
    NoSink none;
    ResultObject result(_broker, sink ? *sink : none, kind);
    return outcomeOf(body(mi, result.cmpi()));
}

Outcome LibraryProvider::enumerateInstanceNames(const CMPIContext* context, const PathObject& classPath,
                                                ResultSink& sink)
{
    return call(&ProviderModule::instanceMI, &sink, ResultKind::ObjectPaths, [&](auto* mi, CMPIResult* result) {
        return mi->ft->enumerateInstanceNames(mi, context, result, &classPath);
    });
}

Outcome LibraryProvider::enumerateInstances(const CMPIContext* context, const PathObject& classPath,
                                            const char** properties, ResultSink& sink)
{
    return call(&ProviderModule::instanceMI, &sink, ResultKind::Instances, [&](auto* mi, CMPIResult* result) {
        return mi->ft->enumerateInstances(mi, context, result, &classPath, properties);
    });
}

Outcome LibraryProvider::getInstance(const CMPIContext* context, const PathObject& path, const char** properties,
                                     ResultSink& sink)
{
    return call(&ProviderModule::instanceMI, &sink, ResultKind::Instances, [&](auto* mi, CMPIResult* result) {
        return mi->ft->getInstance(mi, context, result, &path, properties);
    });
}

Outcome LibraryProvider::createInstance(const CMPIContext* context, const PathObject& classPath,
                                        const InstanceObject& instance, ResultSink& sink)
{
    return call(&ProviderModule::instanceMI, &sink, ResultKind::ObjectPaths, [&](auto* mi, CMPIResult* result) {
        return mi->ft->createInstance(mi, context, result, &classPath, &instance);
    });
}

Outcome LibraryProvider::modifyInstance(const CMPIContext* context, const PathObject& path,
                                        const InstanceObject& instance, const char** properties)
{
    return call(&ProviderModule::instanceMI, nullptr, ResultKind::Any, [&](auto* mi, CMPIResult* result) {
        return mi->ft->modifyInstance(mi, context, result, &path, &instance, properties);
    });
}

Outcome LibraryProvider::deleteInstance(const CMPIContext* context, const PathObject& path)
{
    return call(&ProviderModule::instanceMI, nullptr, ResultKind::Any,
                [&](auto* mi, CMPIResult* result) { return mi->ft->deleteInstance(mi, context, result, &path); });
}

Outcome LibraryProvider::associators(const CMPIContext* context, const PathObject& path, const char* assocClass,
                                     const char* resultClass, const char* role, const char* resultRole,
                                     const char** properties, ResultSink& sink)
{
    return call(&ProviderModule::associationMI, &sink, ResultKind::Instances, [&](auto* mi, CMPIResult* result) {
        return mi->ft->associators(mi, context, result, &path, assocClass, resultClass, role, resultRole, properties);
    });
}

Outcome LibraryProvider::associatorNames(const CMPIContext* context, const PathObject& path, const char* assocClass,
                                         const char* resultClass, const char* role, const char* resultRole,
                                         ResultSink& sink)
{
    return call(&ProviderModule::associationMI, &sink, ResultKind::ObjectPaths, [&](auto* mi, CMPIResult* result) {
        return mi->ft->associatorNames(mi, context, result, &path, assocClass, resultClass, role, resultRole);
    });
}

Outcome LibraryProvider::references(const CMPIContext* context, const PathObject& path, const char* resultClass,
                                    const char* role, const char** properties, ResultSink& sink)
{
    return call(&ProviderModule::associationMI, &sink, ResultKind::Instances, [&](auto* mi, CMPIResult* result) {
        return mi->ft->references(mi, context, result, &path, resultClass, role, properties);
    });
}

Outcome LibraryProvider::referenceNames(const CMPIContext* context, const PathObject& path, const char* resultClass,
                                        const char* role, ResultSink& sink)
{
    return call(&ProviderModule::associationMI, &sink, ResultKind::ObjectPaths, [&](auto* mi, CMPIResult* result) {
        return mi->ft->referenceNames(mi, context, result, &path, resultClass, role);
    });
}

Outcome LibraryProvider::invokeMethod(const CMPIContext* context, const PathObject& path, const char* method,
                                      const CMPIArgs* in, CMPIArgs* out, ResultSink& sink)
{
    return call(&ProviderModule::methodMI, &sink, ResultKind::Data, [&](auto* mi, CMPIResult* result) {
        return mi->ft->invokeMethod(mi, context, result, &path, method, in, out);
    });
}

} // namespace KDV::Host
