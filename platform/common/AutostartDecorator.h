// Drives a provider's periodic work. It makes the real provider through the factory when it is itself made (so that a
// failure reaches whoever makes it, who may try again), forwards every operation to it, and calls the worker method on
// a schedule that the auto-start instance gives: the first pass after a random part of the stagger, then one at every
// full interval, both in seconds, measured from start to start; a pass that overruns is followed at the next full
// interval.
//
// The thread that keeps the time makes no broker objects. Each pass runs on a short-lived thread of its own that
// attaches to the broker, calls the worker method through the broker on the auto-start instance's path (or the provider
// directly when the broker refuses or cannot), detaches and ends, because some servers free what a thread made only
// when the thread ends. An outcome is logged once, then again only when it changes.
//
// The decorator itself answers enumeration and getInstance for the auto-start instance's class, which no collection
// holds, so that a client can find the path on which to call the worker method.
//
// cleanup(false) refuses: a server that unloads an idle provider would silently end the alerts. cleanup(true) stops the
// threads without waiting for a call in flight into the broker and without a call to the broker; it is idempotent.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "common/Export.h"
#include "common/ProviderForwarder.h"
#include "logger/Logger.h"

#include <memory>

namespace KDV {

// Makes the decorated provider; throws what its constructor throws.
using ProviderFactory = CmpiCpp::CmpiProvider* (*)(const CMPIBroker* broker, const Logger& logger);

class KDV_COMMON_API AutostartDecorator : public ProviderForwarder {
public:
    // autostart is not owned and must outlive the decorator.
    AutostartDecorator(const Logger& logger, const CMPIBroker* broker, ProviderFactory factory,
                       CmpiManagedInstance* autostart);
    ~AutostartDecorator() override;

    bool cleanup(const CmpiCpp::CmpiContext& context, bool terminating) override;

    // Asks for a pass now instead of at the next interval: something in the hardware changed. Any thread, never blocks.
    static void requestPass() noexcept;

private:
    class Schedule;
    Logger _logger;
    CmpiManagedInstance* _autostart;
    std::shared_ptr<Schedule> _schedule;
};

} // namespace KDV
