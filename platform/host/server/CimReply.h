// The CIM-XML message around the result of one operation, written into the stream of an HTTP reply. Until the first
// chunk has left, a failure replaces what was written; after that it goes into the trailers of a client that takes
// them, or else the connection breaks off, so that no client takes half a result for a whole one.
#pragma once

#include "hostserver/ReplyStream.h"
#include "hostxml/CimRequest.h"

#include <string_view>

namespace KDV::Host {

class CimReply {
public:
    CimReply(ReplyStream& stream, const CimRequest& request);

    ReplyStream& stream() noexcept { return _stream; }
    ReplyBuffer& out() noexcept { return _stream.buffer(); }

    void openReturn(); // IRETURNVALUE; operations without a result have none
    void closeReturn();
    void parameter(std::string_view name, std::string_view type, std::string_view text); // PARAMVALUE with a VALUE
    void nullParameter(std::string_view name, std::string_view type);
    void fail(int code, std::string_view description);
    void close(); // once, at the end of the reply

private:
    ReplyStream& _stream;
    bool _intrinsic;
    std::size_t _content = 0; // where the content of the response begins in the buffer
};

} // namespace KDV::Host
