// The built-in provider of the interop namespace for filters, their collections, listener destinations and
// subscriptions, and for the associations that subscriptions and members of collections are. The host registers it for
// classNames(). Any thread; every call makes a scope of its own.
#pragma once

#include "broker/Upcalls.h"
#include "indications/IndicationService.h"
#include "indications/InteropObjects.h"

#include <functional>
#include <string_view>
#include <vector>

namespace KDV::Host {

class SubscriptionProvider : public BrokerUpcalls {
public:
    explicit SubscriptionProvider(IndicationService& service) : _service(service) {}
    ~SubscriptionProvider() override;

    // The classes that it serves, those of associations last.
    static const std::vector<const char*>& classNames();
    static bool isAssociation(std::string_view className);

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

private:
    struct Question; // of an association operation
    using Visit = std::function<void(InstanceObject&)>;

    template <class Body>
    Outcome answer(const PathObject& path, const char** properties, Body body);
    void each(const InteropContext& at, std::string_view className, const Visit& visit);
    InstanceObject& find(const InteropContext& at, const PathObject& path);
    Outcome follow(const PathObject& path, const Question& question, const char** properties, bool ends,
                   const Visit& visit);
    static std::string creatorOf(const CMPIContext* context);

    IndicationService& _service;
};

} // namespace KDV::Host
