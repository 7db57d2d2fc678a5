// The provider on a generated machine, inside this process: the library loaded through its entry points, a broker of
// the host as its server. One for the process, because the provider is one for the process. Used by one thread.
#pragma once

#include "broker/Broker.h"
#include "broker/ProviderModule.h"
#include "broker/RequestScope.h"
#include "broker/ResultObject.h"
#include "broker/ResultSink.h"
#include "hostschema/ClassRepository.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace KDV::Bench {

// Counts what it gets and drops it.
class CountingSink : public Host::ResultSink {
public:
    bool instance(const Host::InstanceObject&) override { return ++count; }
    bool objectPath(const Host::PathObject&) override { return ++count; }
    bool data(const CMPIData&) override { return ++count; }
    std::uint64_t count = 0;
};

// A property as it is handed to a broker, kept for the floor.
struct ReadyProperty {
    std::string name;
    CMPIType type;
    std::string text;
    CMPIValue value;
    std::vector<CMPIValue> elements;
    std::vector<std::string> texts;
};

class Machine {
public:
    static Machine& instance();

    // Runs a call of the provider in a scope of its own and gives the number of results.
    std::uint64_t run(const std::function<CMPIStatus(Host::RequestScope&, CMPIResult*)>& call);

    std::uint64_t enumerate(const char* className);
    std::uint64_t getDisk(std::size_t index);
    std::uint64_t hopToPackage(std::size_t index);
    std::uint64_t pass();
    std::uint64_t floorOfEnumeration(); // the broker calls of an enumeration of disks, with ready values

    std::size_t disks() const { return _diskKeys.size(); }
    double secondsToPopulate() const { return _populateSeconds; }

private:
    Machine();
    Host::PathObject& diskPath(Host::RequestScope& scope, std::size_t index);

    Host::Broker _broker;
    Host::ProviderModule _module;
    double _populateSeconds = 0;
    std::vector<std::vector<std::pair<std::string, std::string>>> _diskKeys;
    std::vector<ReadyProperty> _diskProperties;
};

} // namespace KDV::Bench
