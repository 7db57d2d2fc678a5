// What a provider can ask of the server through the broker: the host implements these and registers them with the
// Broker, which does not own them. Called on the provider's thread, from several threads at once.
#pragma once

#include "broker/ResultSink.h"
#include "cmpi/Objects.h"

#include <memory>
#include <string>
#include <string_view>

namespace KDV::Host {

struct Outcome {
    CMPIrc rc = CMPI_RC_OK;
    std::string message;
};

// Every call answers 7 unless overridden. `properties` and the filters mean what they mean in the C interface.
class BrokerUpcalls {
public:
    virtual ~BrokerUpcalls();
    virtual Outcome enumerateInstanceNames(const CMPIContext* context, const PathObject& classPath, ResultSink& sink);
    virtual Outcome enumerateInstances(const CMPIContext* context, const PathObject& classPath, const char** properties,
                                       ResultSink& sink);
    virtual Outcome getInstance(const CMPIContext* context, const PathObject& path, const char** properties,
                                ResultSink& sink);
    virtual Outcome createInstance(const CMPIContext* context, const PathObject& classPath,
                                   const InstanceObject& instance, ResultSink& sink);
    virtual Outcome modifyInstance(const CMPIContext* context, const PathObject& path, const InstanceObject& instance,
                                   const char** properties);
    virtual Outcome deleteInstance(const CMPIContext* context, const PathObject& path);
    virtual Outcome execQuery(const CMPIContext* context, const PathObject& classPath, const char* query,
                              const char* language, ResultSink& sink);
    virtual Outcome associators(const CMPIContext* context, const PathObject& path, const char* assocClass,
                                const char* resultClass, const char* role, const char* resultRole,
                                const char** properties, ResultSink& sink);
    virtual Outcome associatorNames(const CMPIContext* context, const PathObject& path, const char* assocClass,
                                    const char* resultClass, const char* role, const char* resultRole,
                                    ResultSink& sink);
    virtual Outcome references(const CMPIContext* context, const PathObject& path, const char* resultClass,
                               const char* role, const char** properties, ResultSink& sink);
    virtual Outcome referenceNames(const CMPIContext* context, const PathObject& path, const char* resultClass,
                                   const char* role, ResultSink& sink);
    // The return value goes to the sink's data(); out-parameters into `out`.
    virtual Outcome invokeMethod(const CMPIContext* context, const PathObject& path, const char* method,
                                 const CMPIArgs* in, CMPIArgs* out, ResultSink& sink);
};

// Takes indications; they are read during the call. Rc 1 while nobody may be told, as servers answer.
class IndicationSink {
public:
    virtual ~IndicationSink();
    virtual Outcome deliver(const CMPIContext* context, std::string_view nameSpace,
                            const InstanceObject& indication) = 0;
};

// A compiled query, for select expressions.
class SelectEvaluator {
public:
    virtual ~SelectEvaluator();
    virtual bool matches(const InstanceObject& instance) const = 0;
    virtual bool matches(CMPIAccessor* accessor, void* parameter) const = 0;
};

class SelectCompiler {
public:
    virtual ~SelectCompiler();
    // Null and a code other than 0 (14, 15) if the query cannot be understood.
    virtual std::shared_ptr<const SelectEvaluator> compile(std::string_view query, std::string_view language,
                                                           Outcome& outcome) = 0;
};

// Texts that providers write with logMessage and trace.
class LogSink {
public:
    virtual ~LogSink();
    virtual void message(CMPISeverity severity, std::string_view id, std::string_view text) = 0;
    virtual void trace(CMPILevel level, std::string_view component, std::string_view text) = 0;
};

// Sees every object that a provider returns or delivers, as it was set; for tests.
class Recorder {
public:
    virtual ~Recorder();
    virtual void returned(const InstanceObject& instance) = 0;
    virtual void returned(const PathObject& path) = 0;
    virtual void returned(const CMPIData& data) = 0;
    virtual void delivered(std::string_view nameSpace, const InstanceObject& indication) = 0;
};

} // namespace KDV::Host
