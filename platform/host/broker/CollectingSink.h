// A sink and recorder that keeps what it gets as plain values, for tests and small hosts: they stay valid after the
// provider's call and its scope.
#pragma once

#include "broker/Upcalls.h"

#include <string>
#include <vector>

namespace KDV::Host {

struct CollectedProperty {
    std::string name;
    std::string type;  // "string", "uint16[]", ...
    std::string value; // "NULL"; texts quoted; arrays as {a, b}; dates as they are written; paths quoted
    CMPIType cmpiType = CMPI_null;
    bool preset = false;
};

struct CollectedInstance {
    std::string className;
    std::string path; // PathObject::text()
    std::vector<CollectedProperty> properties;

    const CollectedProperty* find(std::string_view name) const;
    std::string value(std::string_view name) const; // "absent" if it is not there
};

std::string valueText(const CMPIData& data);
std::string typeText(CMPIType type);
CollectedInstance collect(const InstanceObject& instance);

class CollectingSink : public ResultSink, public Recorder {
public:
    ~CollectingSink() override;
    bool instance(const InstanceObject& instance) override;
    bool objectPath(const PathObject& path) override;
    bool data(const CMPIData& data) override;
    void done() override;

    void returned(const InstanceObject& instance) override;
    void returned(const PathObject& path) override;
    void returned(const CMPIData& data) override;
    void delivered(std::string_view nameSpace, const InstanceObject& indication) override;

    std::vector<CollectedInstance> instances;
    std::vector<std::string> paths;
    std::vector<std::string> values;
    std::vector<CollectedInstance> indications;
    bool isDone = false;
};

} // namespace KDV::Host
