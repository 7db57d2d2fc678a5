// The CIM headers of an HTTP request: CIMOperation, CIMMethod, CIMObject and their kin, under the prefix that the Man
// header of an M-POST request gives them (HTTP Extension Framework). What contradicts the message is RequestError.
#pragma once

#include "hostserver/HttpRequest.h"
#include "hostserver/ReplyStream.h"
#include "hostxml/CimRequest.h"

#include <string>
#include <string_view>

namespace KDV::Host {

class CimHeaders {
public:
    // HttpError with 510 for an M-POST without the extension that CIM needs.
    explicit CimHeaders(const HttpRequest& request);

    // Before the message is read: what kind of request it says it is.
    void check() const;
    // Against the message.
    void check(const CimRequest& message) const;

    // The head of a reply with this status to a client that asked so.
    void answer(ReplyHead& head, unsigned status) const;

private:
    const std::string* find(std::string_view name) const;

    const HttpRequest& _request;
    bool _extended = false;
    std::string _prefix; // "23-" or empty
};

} // namespace KDV::Host
