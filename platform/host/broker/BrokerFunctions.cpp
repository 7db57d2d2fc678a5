// The broker's own table (bft): threads, indications and calls back into the server.
#include "broker/Calls.h"

#include <utility>

namespace KDV::Host {
namespace {

CMPIContext* prepareAttachThread(const CMPIBroker* mb, const CMPIContext* ctx)
{
    const ContextObject* context = argument<ContextObject>(ctx);
    if (!mb || !context) return nullptr;
    try {
        return copyOf(Placement::own(Broker::of(mb), nullptr, ObjectKind::Context, ownListSize), *context);
    } catch (...) {
        return nullptr;
    }
}

ContextObject* prepared(const CMPIContext* ctx) noexcept
{
    const ContextObject* context = argument<ContextObject>(ctx);
    return context && context->head.state == ObjectState::Clone ? const_cast<ContextObject*>(context) : nullptr;
}

CMPIStatus attachThread(const CMPIBroker* mb, const CMPIContext* ctx)
{
    ContextObject* context = prepared(ctx);
    if (!mb || !context || context->attached) return failed(CMPI_RC_ERR_INVALID_PARAMETER);
    Broker& broker = Broker::of(mb);
    if (broker.profile() == Profile::Sfcb) return ok(); // objects of the thread live as long as the thread
    try {
        context->attached = new RequestScope(broker);
    } catch (...) {
        return failed(CMPI_RC_ERR_FAILED);
    }
    return ok();
}

CMPIStatus detachThread(const CMPIBroker* mb, const CMPIContext* ctx)
{
    ContextObject* context = prepared(ctx);
    if (!mb || !context) return failed(CMPI_RC_ERR_INVALID_PARAMETER);
    if (context->attached && !context->attached->ownThread()) return failed(CMPI_RC_ERR_INVALID_PARAMETER);
    delete std::exchange(context->attached, nullptr);
    return releaseObject(context->head, context->memory);
}

CMPIStatus asStatus(Broker& broker, const Outcome& outcome) noexcept
{
    if (outcome.rc == CMPI_RC_OK || outcome.message.empty()) return failed(outcome.rc);
    return failedWith(broker, outcome.rc, outcome.message);
}

CMPIStatus deliverIndication(const CMPIBroker* mb, const CMPIContext* ctx, const char* ns, const CMPIInstance* ind)
{
    if (!mb) return failed(CMPI_RC_ERR_INVALID_HANDLE);
    Broker& broker = Broker::of(mb);
    if (broker.faultArmed())
        if (const CMPIrc fault = broker.takeFault(); fault != CMPI_RC_OK) return failed(fault);
    const InstanceObject* instance = argument<InstanceObject>(ind);
    if (!instance || !argument<ContextObject>(ctx)) return failed(CMPI_RC_ERR_INVALID_PARAMETER);
    try {
        if (Recorder* recorder = broker.recorder()) recorder->delivered(viewOf(ns), *instance);
        IndicationSink* sink = broker.indicationSink();
        return sink ? asStatus(broker, sink->deliver(ctx, viewOf(ns), *instance)) : failed(CMPI_RC_ERR_FAILED);
    } catch (...) {
        return failed(CMPI_RC_ERR_FAILED);
    }
}

// Keeps the results of an up-call in an enumeration of the caller's scope.
class EnumerationSink : public ResultSink {
public:
    explicit EnumerationSink(EnumerationObject& enumeration) : _enumeration(enumeration) {}
    bool instance(const InstanceObject& instance) override
    {
        CMPIData data{CMPI_instance, CMPI_goodValue, {}};
        data.value.inst = copyOf(inside(), instance);
        _enumeration.append(data);
        return true;
    }
    bool objectPath(const PathObject& path) override
    {
        CMPIData data{CMPI_ref, CMPI_goodValue, {}};
        data.value.ref = copyOf(inside(), path);
        _enumeration.append(data);
        return true;
    }
    bool data(const CMPIData& data) override
    {
        _enumeration.append(copyData(inside(), data));
        return true;
    }

private:
    Placement inside() const { return Placement::inside(_enumeration.head, _enumeration.memory); }
    EnumerationObject& _enumeration;
};

// The frame of every up-call that has results: `call` asks the server and fills the sink.
template <class Call>
EnumerationObject* ask(const CMPIBroker* mb, const CMPIObjectPath* op, CMPIStatus* status, Call&& call) noexcept
{
    return produce<EnumerationObject>(
        mb, status, [&](Broker& broker, RequestScope& scope, CMPIStatus& outcome) -> EnumerationObject* {
            const PathObject* path = argument<PathObject>(op);
            BrokerUpcalls* server = broker.upcalls();
            if (!path || !server) {
                outcome = failed(path ? CMPI_RC_ERR_NOT_SUPPORTED : CMPI_RC_ERR_INVALID_PARAMETER);
                return nullptr;
            }
            EnumerationObject* results =
                makeEnumeration(Placement::own(broker, &scope, ObjectKind::Enumeration, ownInstanceSize));
            EnumerationSink sink(*results);
            outcome = asStatus(broker, call(*server, *path, sink));
            if (outcome.rc != CMPI_RC_OK) releaseObject(results->head, results->memory);
            return results;
        });
}

// The one result of an up-call, as an object of its own.
template <class Object, class Abi>
Abi* single(const CMPIBroker* mb, EnumerationObject* results, CMPIType type, ObjectKind kind,
            CMPIStatus* status) noexcept
{
    if (!results) return nullptr;
    Abi* abi = nullptr;
    try {
        Broker& broker = Broker::of(mb);
        if (results->count > 0 && results->elements[0].type == type)
            abi = copyOf(Placement::own(broker, results->head.scope, kind, ownInstanceSize),
                         *static_cast<const Object*>(
                             static_cast<const Abi*>(static_cast<const void*>(results->elements[0].value.inst))));
        else
            tell(status, failed(CMPI_RC_ERR_NOT_FOUND));
    } catch (...) {
        tell(status, failed(CMPI_RC_ERR_FAILED));
    }
    releaseObject(results->head, results->memory);
    return abi;
}

CMPIEnumeration* enumerateInstanceNames(const CMPIBroker* mb, const CMPIContext* ctx, const CMPIObjectPath* op,
                                        CMPIStatus* status)
{
    return ask(mb, op, status, [&](BrokerUpcalls& server, const PathObject& path, ResultSink& sink) {
        return server.enumerateInstanceNames(ctx, path, sink);
    });
}

CMPIInstance* getInstance(const CMPIBroker* mb, const CMPIContext* ctx, const CMPIObjectPath* op,
                          const char** properties, CMPIStatus* status)
{
    EnumerationObject* results =
        ask(mb, op, status, [&](BrokerUpcalls& server, const PathObject& path, ResultSink& sink) {
            return server.getInstance(ctx, path, properties, sink);
        });
    return single<InstanceObject, CMPIInstance>(mb, results, CMPI_instance, ObjectKind::Instance, status);
}

CMPIObjectPath* createInstance(const CMPIBroker* mb, const CMPIContext* ctx, const CMPIObjectPath* op,
                               const CMPIInstance* newInst, CMPIStatus* status)
{
    EnumerationObject* results =
        ask(mb, op, status, [&](BrokerUpcalls& server, const PathObject& path, ResultSink& sink) {
            const InstanceObject* instance = argument<InstanceObject>(newInst);
            return instance ? server.createInstance(ctx, path, *instance, sink)
                            : Outcome{CMPI_RC_ERR_INVALID_PARAMETER, {}};
        });
    return single<PathObject, CMPIObjectPath>(mb, results, CMPI_ref, ObjectKind::ObjectPath, status);
}

// Up-calls without results: the enumeration stays empty and is released.
template <class Call>
CMPIStatus tellServer(const CMPIBroker* mb, const CMPIObjectPath* op, Call&& call) noexcept
{
    CMPIStatus status = ok();
    EnumerationObject* results = ask(mb, op, &status, call);
    if (results) releaseObject(results->head, results->memory);
    return status;
}

CMPIStatus modifyInstance(const CMPIBroker* mb, const CMPIContext* ctx, const CMPIObjectPath* op,
                          const CMPIInstance* modInst, const char** properties)
{
    return tellServer(mb, op, [&](BrokerUpcalls& server, const PathObject& path, ResultSink&) {
        const InstanceObject* instance = argument<InstanceObject>(modInst);
        return instance ? server.modifyInstance(ctx, path, *instance, properties)
                        : Outcome{CMPI_RC_ERR_INVALID_PARAMETER, {}};
    });
}

CMPIStatus deleteInstance(const CMPIBroker* mb, const CMPIContext* ctx, const CMPIObjectPath* op)
{
    return tellServer(mb, op, [&](BrokerUpcalls& server, const PathObject& path, ResultSink&) {
        return server.deleteInstance(ctx, path);
    });
}

CMPIEnumeration* execQuery(const CMPIBroker* mb, const CMPIContext* ctx, const CMPIObjectPath* op, const char* query,
                           const char* lang, CMPIStatus* status)
{
    return ask(mb, op, status, [&](BrokerUpcalls& server, const PathObject& path, ResultSink& sink) {
        return server.execQuery(ctx, path, query, lang, sink);
    });
}

CMPIEnumeration* enumerateInstances(const CMPIBroker* mb, const CMPIContext* ctx, const CMPIObjectPath* op,
                                    const char** properties, CMPIStatus* status)
{
    return ask(mb, op, status, [&](BrokerUpcalls& server, const PathObject& path, ResultSink& sink) {
        return server.enumerateInstances(ctx, path, properties, sink);
    });
}

CMPIEnumeration* associators(const CMPIBroker* mb, const CMPIContext* ctx, const CMPIObjectPath* op,
                             const char* assocClass, const char* resultClass, const char* role, const char* resultRole,
                             const char** properties, CMPIStatus* status)
{
    return ask(mb, op, status, [&](BrokerUpcalls& server, const PathObject& path, ResultSink& sink) {
        return server.associators(ctx, path, assocClass, resultClass, role, resultRole, properties, sink);
    });
}

CMPIEnumeration* associatorNames(const CMPIBroker* mb, const CMPIContext* ctx, const CMPIObjectPath* op,
                                 const char* assocClass, const char* resultClass, const char* role,
                                 const char* resultRole, CMPIStatus* status)
{
    return ask(mb, op, status, [&](BrokerUpcalls& server, const PathObject& path, ResultSink& sink) {
        return server.associatorNames(ctx, path, assocClass, resultClass, role, resultRole, sink);
    });
}

CMPIEnumeration* references(const CMPIBroker* mb, const CMPIContext* ctx, const CMPIObjectPath* op,
                            const char* resultClass, const char* role, const char** properties, CMPIStatus* status)
{
    return ask(mb, op, status, [&](BrokerUpcalls& server, const PathObject& path, ResultSink& sink) {
        return server.references(ctx, path, resultClass, role, properties, sink);
    });
}

CMPIEnumeration* referenceNames(const CMPIBroker* mb, const CMPIContext* ctx, const CMPIObjectPath* op,
                                const char* resultClass, const char* role, CMPIStatus* status)
{
    return ask(mb, op, status, [&](BrokerUpcalls& server, const PathObject& path, ResultSink& sink) {
        return server.referenceNames(ctx, path, resultClass, role, sink);
    });
}

CMPIData invokeMethod(const CMPIBroker* mb, const CMPIContext* ctx, const CMPIObjectPath* op, const char* method,
                      const CMPIArgs* in, CMPIArgs* out, CMPIStatus* status)
{
    EnumerationObject* results =
        ask(mb, op, status, [&](BrokerUpcalls& server, const PathObject& path, ResultSink& sink) {
            return method ? server.invokeMethod(ctx, path, method, in, out, sink)
                          : Outcome{CMPI_RC_ERR_INVALID_PARAMETER, {}};
        });
    // The value stays part of the enumeration, which goes with the scope.
    return results && results->count ? results->elements[0] : missing(CMPI_nullValue);
}

// The property operations are obsolete; Sfcb does not have them either.
CMPIStatus setProperty(const CMPIBroker*, const CMPIContext*, const CMPIObjectPath*, const char*, const CMPIValue*,
                       CMPIType)
{
    return failed(CMPI_RC_ERR_NOT_SUPPORTED);
}

CMPIData getProperty(const CMPIBroker*, const CMPIContext*, const CMPIObjectPath*, const char*, CMPIStatus* status)
{
    tell(status, failed(CMPI_RC_ERR_NOT_SUPPORTED));
    return missing(CMPI_nullValue);
}

constexpr unsigned standardCapabilities = CMPI_MB_InstanceManipulation | CMPI_MB_AssociationTraversal |
                                          CMPI_MB_QueryExecution | CMPI_MB_BasicQualifierSupport | CMPI_MB_Indications |
                                          CMPI_MB_OSEncapsulationSupport | CMPI_MB_Supports_MemEnhancements |
                                          CMPI_MB_Supports_Extended_Error;

} // namespace

CMPIBrokerFT brokerTable(Profile profile)
{
    CMPIBrokerFT table{standardCapabilities,
                       CMPIVersion200,
                       "KDV object manager",
                       prepareAttachThread,
                       attachThread,
                       detachThread,
                       deliverIndication,
                       enumerateInstanceNames,
                       getInstance,
                       createInstance,
                       modifyInstance,
                       deleteInstance,
                       execQuery,
                       enumerateInstances,
                       associators,
                       associatorNames,
                       references,
                       referenceNames,
                       invokeMethod,
                       setProperty,
                       getProperty,
                       nullptr,
                       nullptr,
                       nullptr};
    if (profile == Profile::Sfcb) {
        table.brokerCapabilities = 0x1bf;
        table.brokerVersion = 0;
        table.brokerName = "RequestHandler";
    } else if (profile == Profile::Pegasus) {
        table.brokerCapabilities = 0x81ff;
        table.brokerName = "Pegasus";
    }
    return table;
}

} // namespace KDV::Host
