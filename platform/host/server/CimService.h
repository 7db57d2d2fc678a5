// CIM operations over HTTP (DSP0200): takes a request from the HTTP server, checks headers against message, executes
// the operation and writes the reply. Called on the connections' threads; everything it holds is constant after start
// or guards itself.
#pragma once

#include "broker/Broker.h"
#include "hostserver/HttpServer.h"
#include "hostserver/Operations.h"
#include "hostxml/XmlFragments.h"

#include <string>

namespace KDV::Host {

class CimService : public HttpService {
public:
    CimService(Broker& broker, Router& router, const OperationTable& operations, std::string hostName);
    ~CimService() override;

    std::unique_ptr<Session> newSession() override;
    unsigned precheck(const std::string& method, const std::string& target, ReplyHead& head) override;
    void serve(const HttpRequest& request, Session* session, ReplyStream& reply) override;

private:
    const std::string& hostOf(const HttpRequest& request) const;
    void execute(const CimRequest& request, const std::string& host, ReplyStream& stream);
    void run(const CimRequest& request, const std::string& host, CimReply& reply);

    Broker& _broker;
    Router& _router;
    const OperationTable& _operations;
    FragmentCache _fragments;
    std::string _hostName;
};

} // namespace KDV::Host
