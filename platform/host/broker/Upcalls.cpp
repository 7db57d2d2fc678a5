#include "broker/Upcalls.h"

namespace KDV::Host {
namespace {

Outcome notServed() { return {CMPI_RC_ERR_NOT_SUPPORTED, {}}; }

} // namespace

BrokerUpcalls::~BrokerUpcalls() = default;

Outcome BrokerUpcalls::enumerateInstanceNames(const CMPIContext*, const PathObject&, ResultSink&)
{
    return notServed();
}
Outcome BrokerUpcalls::enumerateInstances(const CMPIContext*, const PathObject&, const char**, ResultSink&)
{
    return notServed();
}
Outcome BrokerUpcalls::getInstance(const CMPIContext*, const PathObject&, const char**, ResultSink&)
{
    return notServed();
}
Outcome BrokerUpcalls::createInstance(const CMPIContext*, const PathObject&, const InstanceObject&, ResultSink&)
{
    return notServed();
}
Outcome BrokerUpcalls::modifyInstance(const CMPIContext*, const PathObject&, const InstanceObject&, const char**)
{
    return notServed();
}
Outcome BrokerUpcalls::deleteInstance(const CMPIContext*, const PathObject&) { return notServed(); }
Outcome BrokerUpcalls::execQuery(const CMPIContext*, const PathObject&, const char*, const char*, ResultSink&)
{
    return notServed();
}
Outcome BrokerUpcalls::associators(const CMPIContext*, const PathObject&, const char*, const char*, const char*,
                                   const char*, const char**, ResultSink&)
{
    return notServed();
}
Outcome BrokerUpcalls::associatorNames(const CMPIContext*, const PathObject&, const char*, const char*, const char*,
                                       const char*, ResultSink&)
{
    return notServed();
}
Outcome BrokerUpcalls::references(const CMPIContext*, const PathObject&, const char*, const char*, const char**,
                                  ResultSink&)
{
    return notServed();
}
Outcome BrokerUpcalls::referenceNames(const CMPIContext*, const PathObject&, const char*, const char*, ResultSink&)
{
    return notServed();
}
Outcome BrokerUpcalls::invokeMethod(const CMPIContext*, const PathObject&, const char*, const CMPIArgs*, CMPIArgs*,
                                    ResultSink&)
{
    return notServed();
}

} // namespace KDV::Host
