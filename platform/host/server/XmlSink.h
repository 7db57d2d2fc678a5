// Writes what a provider returns straight into a reply, each object in the form that the operation wants. Lives for one
// operation on its thread.
#pragma once

#include "broker/ResultSink.h"
#include "hostserver/Call.h"
#include "hostserver/CimError.h"

namespace KDV::Host {

class XmlSink : public ResultSink {
public:
    using InstanceForm = void (InstanceWriter::*)(const InstanceObject&);
    using PathForm = void (InstanceWriter::*)(const PathObject&);

    XmlSink(Call& call, InstanceForm form) : _writer(call.writer), _stream(call.reply.stream()), _instanceForm(form) {}
    XmlSink(Call& call, PathForm form) : _writer(call.writer), _stream(call.reply.stream()), _pathForm(form) {}

    bool instance(const InstanceObject& instance) override
    {
        if (!_instanceForm) return false;
        (_writer.*_instanceForm)(instance);
        return _stream.elementWritten();
    }
    bool objectPath(const PathObject& path) override
    {
        if (!_pathForm) return false;
        (_writer.*_pathForm)(path);
        return _stream.elementWritten();
    }
    bool data(const CMPIData&) override { return false; }

private:
    InstanceWriter& _writer;
    ReplyStream& _stream;
    InstanceForm _instanceForm = nullptr;
    PathForm _pathForm = nullptr;
};

// Runs a provider's call whose results are streamed: a client that stalls meanwhile does not hold the provider.
template <class Ask>
void streamResults(Call& call, Ask ask)
{
    ReplyStream& stream = call.reply.stream();
    call.reply.openReturn();
    stream.providerBegins();
    const Outcome outcome = ask();
    stream.providerEnds();
    if (stream.alive()) throwIfFailed(outcome);
    call.reply.closeReturn();
}

} // namespace KDV::Host
