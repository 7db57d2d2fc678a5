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
// A thread can attach to a broker only with a context that was prepared during another call. The decorator takes one
// from the first operation that it forwards and starts its schedule then; servers make a provider because an operation
// waits for it. Each pass prepares the context of the next one.
//
// cleanup(false) refuses: a server that unloads an idle provider would silently end the alerts. cleanup(true) stops the
// threads without waiting for a call in flight into the broker and without a call to the broker; it is idempotent.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "common/Export.h"
#include "common/PassClock.h"
#include "common/ProviderForwarder.h"
#include "logger/Logger.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace KDV {

class PassSchedule;

// Makes the decorated provider; throws what its constructor throws.
using ProviderFactory = CmpiCpp::CmpiProvider* (*)(const CMPIBroker* broker, const Logger& logger);

class KDV_COMMON_API AutostartDecorator : public ProviderForwarder {
public:
    // The method that a pass calls.
    static constexpr const char* workerMethod = "PerformWork";

    // autostart is not owned, must outlive the decorator and answers from any thread. Its instance has the properties
    // ProviderName and WorkerMethodNameSpace (text), WorkerPollInterval and WorkerPollIntervalStagger (uint16); an
    // interval of 0 has no passes but requested ones. Without a clock of its own it goes by the machine's.
    AutostartDecorator(const Logger& logger, const CMPIBroker* broker, ProviderFactory factory,
                       CmpiManagedInstance* autostart, std::shared_ptr<PassClock> clock = nullptr);
    ~AutostartDecorator() override;

    bool cleanup(const CmpiCpp::CmpiContext& context, bool terminating) override;
    bool unloadOK(const CmpiCpp::CmpiContext& context) override; // not before a terminating cleanup

    // Has a terminating cleanup ended the passes for good? Any thread.
    bool isFinished() const;

    void enumInstanceNames(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& classPath,
                           const CmpiCpp::CmpiObjectPathResult& result) override;
    void enumInstances(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& classPath,
                       const char* const* properties, const CmpiCpp::CmpiInstanceResult& result) override;
    void getInstance(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& path,
                     const char* const* properties, const CmpiCpp::CmpiInstanceResult& result) override;
    void invokeMethod(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& path,
                      const CmpiCpp::CmpiName& method, const CmpiCpp::CmpiArgs& arguments,
                      const CmpiCpp::CmpiMethodResult& result) override;

    // Asks for a pass now instead of at the next interval: something in the hardware changed. Any thread, never blocks.
    // Requests that come before the pass that they led to begins are one.
    static void requestPass() noexcept;

protected:
    void entering(const CmpiCpp::CmpiContext& context) override;

private:
    AutostartDecorator(const Logger& logger, const CMPIBroker* broker, std::shared_ptr<CmpiCpp::CmpiProvider> provider,
                       CmpiManagedInstance* autostart, std::shared_ptr<PassClock> clock);

    enum class Ask { other, above, own };
    Ask kindOf(const CmpiCpp::CmpiName& className);
    void askAgain();

    Logger _logger;
    std::shared_ptr<CmpiCpp::CmpiProvider> _decorated;
    CmpiManagedInstance* _autostart;
    std::shared_ptr<PassSchedule> _schedule;
    std::mutex _askedMutex;
    std::map<std::string, bool> _asked; // is the auto-start instance's class below this one?
};

} // namespace KDV

// The same by an unmangled name, for libraries that know of nothing here but this: a data library that hears of a plug
// event looks it up at run time.
extern "C" KDV_COMMON_API void kdvRequestPass() noexcept;
