// Where the results of a provider call go, one by one, at the moment they are returned. The objects belong to the
// provider: a sink reads them during the call and keeps copies of what it needs. Called on the provider's thread.
#pragma once

#include "broker/InstanceObject.h"

namespace KDV::Host {

struct ErrorObject;

// Each returns false when it takes no more (a client that went away): the provider's call then fails with 1.
class ResultSink {
public:
    virtual ~ResultSink();
    virtual bool instance(const InstanceObject& instance) = 0;
    virtual bool objectPath(const PathObject& path) = 0;
    virtual bool data(const CMPIData& data) = 0; // texts as CMPI_string
    virtual void done();
    virtual bool error(const ErrorObject& error);
};

} // namespace KDV::Host
