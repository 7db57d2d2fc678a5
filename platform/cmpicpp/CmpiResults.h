// Where a provider puts its answers. Lent by the server for one call. An instance is released by its owner as soon as
// it was returned, since every server has copied it by then; a path stays until the call returns, because a server may
// keep the pointer. Each function throws CmpiStatus when the server refuses.
#pragma once

#include "cmpi/Broker.h"
#include "cmpi/Objects.h"
#include "cmpicpp/CmpiInstance.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "cmpicpp/Export.h"

#include <cstdint>

namespace CmpiCpp {

class KDV_CMPICPP_API CmpiInstanceResult {
public:
    explicit CmpiInstanceResult(const CMPIResult* raw) noexcept : _raw(raw) {}
    void returnInstance(const CmpiInstance& instance) const;
    void returnDone() const;
    const CMPIResult* raw() const noexcept { return _raw; }

private:
    const CMPIResult* _raw;
};

class KDV_CMPICPP_API CmpiObjectPathResult {
public:
    // With a broker a copied path, which no server would ever release, is made anew before it is left to the server.
    explicit CmpiObjectPathResult(const CMPIResult* raw, const CMPIBroker* broker = nullptr) noexcept
        : _raw(raw), _broker(broker)
    {
    }
    void returnObjectPath(CmpiObjectPath path) const; // leaves the object to the server
    void returnDone() const;
    const CMPIResult* raw() const noexcept { return _raw; }

private:
    const CMPIResult* _raw;
    const CMPIBroker* _broker;
};

class KDV_CMPICPP_API CmpiMethodResult {
public:
    explicit CmpiMethodResult(const CMPIResult* raw) noexcept : _raw(raw) {}
    void returnData(std::uint32_t value) const;
    void returnDone() const;
    const CMPIResult* raw() const noexcept { return _raw; }

private:
    const CMPIResult* _raw;
};

} // namespace CmpiCpp
