// A provider library as the host calls it: its function tables, made when they are first needed and again after a
// failure. Any thread may call it; making and ending are serialised here. The host keeps it until the broker ends.
#pragma once

#include "broker/ProviderModule.h"
#include "broker/ResultObject.h"
#include "broker/Upcalls.h"

#include <atomic>
#include <mutex>
#include <string>

namespace KDV::Host {

class LibraryProvider : public BrokerUpcalls {
public:
    // std::runtime_error with the loader's message if there is no such library.
    LibraryProvider(Broker& broker, std::string name, const std::string& location, const std::string& directory);
    ~LibraryProvider() override;

    const std::string& name() const noexcept { return _name; }
    const std::string& file() const noexcept { return _module.file(); }
    Outcome create();
    Outcome cleanup();
    // Null until created, and if the library has none.
    CMPIIndicationMI* indicationMI() const noexcept { return _module.indicationMI(); }

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
    template <class MI, class Body>
    Outcome call(MI* (ProviderModule::*table)() const noexcept, ResultSink* sink, ResultKind kind, Body body);

    Broker& _broker;
    std::string _name;
    std::mutex _mutex; // making and ending
    ProviderModule _module;
    std::atomic<bool> _ready{false};
    bool _ended = false;
};

} // namespace KDV::Host
