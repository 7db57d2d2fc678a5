// One call of the worker method, on the thread of a pass, which is attached to the broker: through the broker, so that
// the server sees it like a client's; directly to the provider when the broker has no such call or the call never
// reached the provider. Every object that it makes is released before it ends.
#pragma once

#include "cmpi/Broker.h"
#include "cmpicpp/CmpiMethodProvider.h"

#include <atomic>
#include <memory>
#include <string>

namespace KDV {

struct WorkerTarget {
    const CMPIBroker* broker = nullptr;
    std::string nameSpace;    // in which the method is called
    std::string className;    // of the auto-start instance
    std::string providerName; // its key
    std::weak_ptr<CmpiCpp::CmpiProvider> provider;
    std::atomic<unsigned> callsSeen{0}; // calls of the worker method that came to the provider
};

// How a pass ended: empty text when it went well.
using PassOutcome = std::string;

// Once stopped is set no further call goes to the broker, not even to release an object.
PassOutcome callWorker(WorkerTarget& target, const CMPIContext* context, const std::atomic<bool>& stopped);

// "what: code 6, text", the text as far as the broker gave one.
PassOutcome refusal(const char* what, const CMPIStatus& status);

} // namespace KDV
