// A provider inside the host whose instances are few and made anew for each request: a derived class says what there is
// of a class, and the operations follow from that. Any thread; holds no state and no lock.
#pragma once

#include "broker/RequestScope.h"
#include "hostserver/ProviderTable.h"

#include <string>
#include <vector>

namespace KDV::Host {

class BuiltInProvider : public BrokerUpcalls {
public:
    explicit BuiltInProvider(Broker& broker) : _broker(broker) {}
    ~BuiltInProvider() override;

    Outcome enumerateInstanceNames(const CMPIContext* context, const PathObject& classPath, ResultSink& sink) override;
    Outcome enumerateInstances(const CMPIContext* context, const PathObject& classPath, const char** properties,
                               ResultSink& sink) override;
    Outcome getInstance(const CMPIContext* context, const PathObject& path, const char** properties,
                        ResultSink& sink) override;
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

protected:
    using Instances = std::vector<InstanceObject*>;

    // All instances of the class, made in the scope.
    virtual Instances instancesOf(RequestScope& scope, const ClassInfo& classInfo) const = 0;
    // The association classes among those that it serves in the namespace.
    virtual std::vector<const ClassInfo*> associationsIn(const Namespace& nameSpace) const = 0;

    static InstanceObject& make(RequestScope& scope, const ClassInfo& classInfo);
    // Sets a property, and the key of the path if it is one.
    static void set(InstanceObject& instance, const char* name, const std::string& text);
    static void set(InstanceObject& instance, const char* name, std::uint16_t number);
    static void set(InstanceObject& instance, const char* name, bool truth);
    static void set(InstanceObject& instance, const char* name, const PathObject& path);
    static void setList(RequestScope& scope, InstanceObject& instance, const char* name,
                        const std::vector<std::uint16_t>& numbers);

    const Broker& broker() const noexcept { return _broker; }

private:
    struct Link;
    std::vector<Link> linksOf(RequestScope& scope, const PathObject& path, const char* assocClass, const char* role,
                              const char* resultRole) const;
    InstanceObject* find(RequestScope& scope, const PathObject& path) const;

    Broker& _broker;
};

// Same class and same keys; hosts make no difference, and a namespace only if both paths have one.
bool samePath(const PathObject& a, const PathObject& b);

} // namespace KDV::Host
