// Compiles queries for the broker's select expressions and reads the values that they ask for out of broker objects or
// through a provider's accessor. Made by the host, which gives it to the broker; any thread, no lock.
#pragma once

#include "broker/Upcalls.h"
#include "indications/Query.h"

namespace KDV::Host {

// An instance of the broker as queries see it. Lives shorter than the instance.
class InstanceSource : public QuerySource {
public:
    explicit InstanceSource(const InstanceObject& instance) : _instance(instance) {}
    bool isA(std::string_view className) const override;
    QueryValue value(const PropertyPath& path) const override;
    Truth isA(const PropertyPath& path, std::string_view className) const override;

private:
    const InstanceObject& _instance;
};

class QueryCompiler : public SelectCompiler {
public:
    std::shared_ptr<const SelectEvaluator> compile(std::string_view query, std::string_view language,
                                                   Outcome& outcome) override;
};

// The evaluator of a query that is compiled already.
std::shared_ptr<const SelectEvaluator> evaluatorOf(std::shared_ptr<const Query> query);

} // namespace KDV::Host
