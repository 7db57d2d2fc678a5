// The CMPIResult that a provider function returns its results to. The host makes one on its stack for one call, over a
// sink that outlives it; it is not the provider's to release.
#pragma once

#include "broker/Broker.h"
#include "broker/ResultSink.h"

namespace KDV::Host {

// What the operation may return; strict servers refuse the other kinds with 7.
enum class ResultKind { Instances, ObjectPaths, Data, Any };

class ResultObject : public CMPIResult {
public:
    ResultObject(Broker& broker, ResultSink& sink, ResultKind kind = ResultKind::Any);
    ResultObject(const ResultObject&) = delete;
    ResultObject& operator=(const ResultObject&) = delete;

    CMPIResult* cmpi() noexcept { return this; }
    std::uint64_t returnedCount() const noexcept { return _count; }
    bool stopped() const noexcept { return _stopped; } // the sink takes no more
    bool isDone() const noexcept { return _done; }

private:
    friend struct ResultFunctions;
    ObjectHead _head;
    ResultSink* _sink;
    ResultKind _kind;
    std::uint64_t _count = 0;
    bool _stopped = false;
    bool _done = false;
};

} // namespace KDV::Host
