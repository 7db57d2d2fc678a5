// The provider objects of this process by name: all entry points hand out the same one. Made at the first request for
// the name and kept until the process ends. After a terminating cleanup the next request makes a new one with the
// broker of that request: a server that disables a provider and enables it again may have ended the broker that the
// first one knew, while the library stayed in memory. Safe from any thread; the registry's lock is never held together
// with the provider's.
#pragma once

#include "cmpi/Broker.h"
#include "cmpicpp/CmpiContext.h"
#include "cmpicpp/CmpiProvider.h"

namespace KDV {

// The provider of that name, with one reference counted; null when this library has none. Throws what the making of
// the provider throws; nothing is kept then, so that the next call tries again.
CmpiCpp::CmpiProvider* obtainProvider(const CMPIBroker* broker, const CmpiCpp::CmpiContext& context, const char* name);

} // namespace KDV
