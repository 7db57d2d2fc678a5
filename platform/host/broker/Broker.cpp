#include "broker/Broker.h"

#include "broker/Counters.h"
#include "broker/Tables.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace KDV::Host {

ResultSink::~ResultSink() = default;
void ResultSink::done() {}
bool ResultSink::error(const ErrorObject&) { return true; }
IndicationSink::~IndicationSink() = default;
SelectEvaluator::~SelectEvaluator() = default;
SelectCompiler::~SelectCompiler() = default;
LogSink::~LogSink() = default;
Recorder::~Recorder() = default;

template <class Table>
SizedTable<Table>::SizedTable(const Table& table, std::size_t size) : _at(::operator new(size))
{
    std::memcpy(_at, &table, size);
}

Broker::Tables::Tables(Profile profile)
    : broker(brokerTable(profile), offsetof(CMPIBrokerFT, enumerateInstancesFiltered)),
      factories(factoryTable(profile), offsetof(CMPIBrokerEncFT, newPropertyList)),
      system(systemTable(profile), offsetof(CMPIBrokerExtFT, destroyMutex2)), memory(memoryTable()),
      string(stringTable(profile), offsetof(CMPIStringFT, newCharsCP)), array(arrayTable(profile)),
      dateTime(dateTimeTable(profile)), path(pathTable(profile)), instance(instanceTable(profile)),
      args(argsTable(profile)), context(contextTable(profile)), enumeration(enumerationTable(profile)),
      selectExp(selectExpTable(profile)), error(errorTable(profile)), result(resultTable(profile))
{
}

Broker::Tables::~Tables() = default;

Broker::Counters::~Counters()
{
    for (Memory* memory : releasedClones)
        memory->destroy();
    for (void* allocation : allocations)
        std::free(allocation);
}

void Broker::Counters::keepReleasedClone(Memory* memory)
{
    constexpr std::size_t most = 4096;
    const std::lock_guard lock(mutex);
    releasedClones.push_back(memory);
    if (releasedClones.size() > most) {
        releasedClones.front()->destroy();
        releasedClones.pop_front();
    }
}

void* Broker::Counters::track(void* allocation)
{
    const std::lock_guard lock(mutex);
    allocations.push_back(allocation);
    return allocation;
}

bool Broker::Counters::untrack(void* allocation)
{
    const std::lock_guard lock(mutex);
    const auto found = std::find(allocations.begin(), allocations.end(), allocation);
    if (found == allocations.end()) return false;
    allocations.erase(found);
    return true;
}

// What providers hold a pointer to; `hdl` leads back.
struct Broker::Abi {
    CMPIBroker cmpi;
};

Broker::Broker(const ClassRepository& repository, BrokerOptions options)
    : _repository(repository), _options(options), _tables(std::make_unique<Tables>(options.profile)),
      _counters(std::make_shared<Counters>(options.profile)), _abi(std::make_unique<Abi>())
{
    _abi->cmpi = {this, _tables->broker.get(), _tables->factories.get(), _tables->system.get(),
                  options.profile == Profile::Standard ? &_tables->memory : nullptr};
}

Broker::~Broker() = default;

const CMPIBroker* Broker::cmpi() const noexcept { return &_abi->cmpi; }

Broker& Broker::of(const CMPIBroker* broker) noexcept { return *static_cast<Broker*>(const_cast<void*>(broker->hdl)); }

void Broker::failAfter(std::uint64_t n, CMPIrc rc) noexcept
{
    _faultCode.store(rc);
    _faultFired.store(false);
    _faultCountdown.store(n);
}

CMPIrc Broker::takeFault() noexcept
{
    std::uint64_t left = _faultCountdown.load();
    while (left != 0 && !_faultCountdown.compare_exchange_weak(left, left - 1)) {
    }
    if (left != 1) return CMPI_RC_OK;
    _faultFired.store(true);
    return static_cast<CMPIrc>(_faultCode.load());
}

BrokerStatistics Broker::statistics() const
{
    Counters& counters = *_counters;
    const std::lock_guard lock(counters.mutex);
    BrokerStatistics result = counters.sums;
    result.liveClones = counters.liveClones;
    result.doubleReleases = counters.doubleReleases;
    result.usesAfterRelease = counters.usesAfterRelease;
    result.lentReleases = counters.lentReleases;
    result.foreignReleases = counters.foreignReleases;
    result.unattachedCalls = counters.unattachedCalls;
    result.droppedProperties = counters.droppedProperties;
    result.refusedProperties = counters.refusedProperties;
    return result;
}

void Broker::resetStatistics()
{
    Counters& counters = *_counters;
    const std::lock_guard lock(counters.mutex);
    counters.sums = {};
    for (auto* count :
         {&counters.doubleReleases, &counters.usesAfterRelease, &counters.lentReleases, &counters.foreignReleases,
          &counters.unattachedCalls, &counters.droppedProperties, &counters.refusedProperties})
        count->store(0);
}

const PropertyInfo* Broker::undeclaredProperty(std::string_view name, CMPIType type)
{
    Counters& counters = *_counters;
    const std::lock_guard lock(counters.mutex);
    for (const auto& known : counters.undeclared)
        if (known->name == name) return known.get();
    auto made = std::make_unique<PropertyInfo>();
    made->name = name;
    made->type = type;
    counters.undeclared.push_back(std::move(made));
    return counters.undeclared.back().get();
}

} // namespace KDV::Host
