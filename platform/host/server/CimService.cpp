#include "hostserver/CimService.h"

#include "hostserver/CimError.h"
#include "hostserver/CimHeaders.h"
#include "hostserver/Percent.h"
#include "hostxml/RequestError.h"
#include "hostxml/RequestReader.h"

namespace KDV::Host {

namespace {

struct CimSession : HttpService::Session {
    RequestReader reader;
};

constexpr const char* knownMethods[] = {"GET", "HEAD", "PUT", "DELETE", "OPTIONS", "TRACE", "PATCH", "CONNECT"};

// "/cimom", "/" or either as a whole URL; a query makes no difference.
bool isOurTarget(std::string_view target)
{
    constexpr std::string_view scheme = "http://";
    if (sameName(target.substr(0, scheme.size()), scheme)) {
        const std::size_t path = target.find('/', scheme.size());
        target = path == target.npos ? std::string_view("/") : target.substr(path);
    }
    target = target.substr(0, target.find('?'));
    return target == "/" || target == "/cimom";
}

// What a message must not be if it is to be read as XML; clients that say nothing are taken at their word.
bool isXmlType(const HttpRequest& request)
{
    const std::string* type = request.find("Content-Type");
    return !type || type->find("xml") != type->npos || type->find("XML") != type->npos;
}

} // namespace

CimService::CimService(Broker& broker, Router& router, const OperationTable& operations, std::string hostName)
    : _broker(broker), _router(router), _operations(operations), _fragments(broker.repository()),
      _hostName(std::move(hostName))
{
}

CimService::~CimService() = default;

std::unique_ptr<HttpService::Session> CimService::newSession() { return std::make_unique<CimSession>(); }

unsigned CimService::precheck(const std::string& method, const std::string& target, ReplyHead& head)
{
    if (method == "POST" || method == "M-POST") return isOurTarget(target) ? 0 : 404;
    for (const char* known : knownMethods)
        if (method == known) {
            head.fields.emplace_back("Allow", "POST, M-POST");
            return 405;
        }
    return 501;
}

// Paths name this server as its client does, so that a path can be asked for just as it was printed.
const std::string& CimService::hostOf(const HttpRequest& request) const
{
    const std::string* given = request.find("Host");
    return given && !given->empty() ? *given : _hostName;
}

void CimService::serve(const HttpRequest& request, Session* session, ReplyStream& stream)
{
    try {
        const CimHeaders headers(request);
        try {
            headers.check();
            if (!isXmlType(request)) throw HttpError(415, "the message must be XML");
            const CimRequest message = static_cast<CimSession*>(session)->reader.read(request.body);
            headers.check(message);
            headers.answer(stream.head(), 200);
            execute(message, hostOf(request), stream);
        } catch (const RequestError& error) {
            headers.answer(stream.head(), httpStatusOf(error.fault()));
            stream.head().fields.emplace_back("CIMError", cimErrorName(error.fault()));
            stream.head().fields.emplace_back("PGErrorDetail", percentEncoded(error.what()));
        }
    } catch (const HttpError& error) {
        stream.head().status = error.status();
    }
}

void CimService::execute(const CimRequest& request, const std::string& host, ReplyStream& stream)
{
    CimReply reply(stream, request);
    try {
        run(request, host, reply);
    } catch (const CimError& error) {
        reply.fail(error.code(), error.what());
    } catch (const std::exception& error) {
        // Not from a provider, whose failures are outcomes: out of memory or disk. An element may be half written.
        if (stream.started())
            stream.abort();
        else
            reply.fail(CMPI_RC_ERR_FAILED, error.what());
    }
    reply.close();
}

void CimService::run(const CimRequest& request, const std::string& host, CimReply& reply)
{
    const OperationTable::Operation* operation = request.intrinsic ? _operations.find(request.method) : nullptr;
    if (request.intrinsic && !operation)
        throw CimError(CMPI_RC_ERR_NOT_SUPPORTED, "the operation " + request.method + " is not supported");
    const Namespace* nameSpace = _broker.repository().findNamespace(request.nameSpace);
    if (!nameSpace)
        throw CimError(CMPI_RC_ERR_INVALID_NAMESPACE, "there is no namespace \"" + request.nameSpace + "\"");
    RequestScope scope(_broker, nameSpace->name());
    InstanceWriter writer(reply.out(), _fragments, host, nameSpace->name());
    Call call(request, *nameSpace, scope, reply, writer);
    call.context.addNumber("CMPIInvocationFlags", 0);
    call.context.addText("CMPIPrincipal", "");
    if (_broker.profile() != Profile::Sfcb) call.context.addText("CMPIInitNameSpace", nameSpace->name());
    if (operation)
        (*operation)(call);
    else
        invokeMethod(_router, call);
}

} // namespace KDV::Host
