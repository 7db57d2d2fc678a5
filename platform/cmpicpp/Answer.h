// The C boundary of this library: what a server called ends here, whatever it throws, as a status. A CmpiStatus becomes
// its code and text, a standard exception code 1 and its text, anything else code 1.
#pragma once

#include "cmpi/Broker.h"
#include "cmpicpp/CmpiProvider.h"

#include <type_traits>

namespace CmpiCpp {

// The status for the exception being handled; its text is an object of the broker, or null when that fails too.
CMPIStatus statusOfException(const CMPIBroker* broker) noexcept;

// Runs call, which gives nothing or a return code.
template <class Call>
CMPIStatus answer(const CmpiProvider& provider, Call call) noexcept
{
    try {
        if constexpr (std::is_void_v<decltype(call())>) {
            call();
            return {CMPI_RC_OK, nullptr};
        } else {
            return {call(), nullptr};
        }
    } catch (...) {
        return statusOfException(provider.getBroker());
    }
}

// The table function that every kind of provider has: may it go?
CMPIrc cleanupCode(CmpiProvider& provider, const CMPIContext* context, bool terminating);

// The provider behind a table; the pointer was put there as exactly this type.
template <class Provider, class Table>
Provider& providerOf(const Table* table) noexcept
{
    return *static_cast<Provider*>(const_cast<void*>(table->hdl));
}

} // namespace CmpiCpp
