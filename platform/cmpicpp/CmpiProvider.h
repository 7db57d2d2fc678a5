// What every provider object shares, whatever interfaces it serves: the broker, a count of the interfaces handed out,
// and the two questions that a server asks before it lets a provider go. Each interface class derives from it
// virtually, so that a provider has one of it.
#pragma once

#include "cmpi/Broker.h"
#include "cmpicpp/CmpiContext.h"
#include "cmpicpp/Export.h"

#include <atomic>

namespace CmpiCpp {

class KDV_CMPICPP_API CmpiProvider {
public:
    CmpiProvider();
    CmpiProvider(const CmpiProvider&) = delete;
    CmpiProvider& operator=(const CmpiProvider&) = delete;
    virtual ~CmpiProvider();

    // May the provider be cleaned up? A refusal reaches the server as "do not unload". Asked once per interface, in any
    // order and again, so it must be idempotent.
    virtual bool cleanup(const CmpiContext& context, bool terminating);
    virtual bool unloadOK(const CmpiContext& context);

    void setBroker(const CMPIBroker* broker) noexcept { _broker = broker; }
    const CMPIBroker* getBroker() const noexcept { return _broker; }

    void incRefcount() noexcept { ++_refcount; }
    unsigned refcount() const noexcept { return _refcount; }

private:
    const CMPIBroker* _broker = nullptr;
    std::atomic<unsigned> _refcount{0};
};

} // namespace CmpiCpp
