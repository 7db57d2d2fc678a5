// The object manager as a whole: reads schema and registration, loads the providers, answers clients. Made and ended by
// one thread (a program's main, a test). Start-up errors are std::runtime_error or MofError with file and place; after
// that failures of a provider are answers to its clients.
#pragma once

#include "hostserver/CimService.h"
#include "hostserver/HttpServer.h"
#include "hostserver/InteropProvider.h"
#include "hostserver/LibraryProvider.h"
#include "hostserver/PullContexts.h"
#include "hostserver/Registration.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace KDV::Host {

struct HostOptions {
    std::filesystem::path schemaDirectory;   // with kdv-sas.reg, kdv-sas.mof and core/
    std::filesystem::path providerDirectory; // with the libraries that the registration names
    BrokerOptions broker;
    ServerLimits limits;
    PullLimits pull;
};

std::string localHostName();

class CimHost {
public:
    explicit CimHost(HostOptions options);
    ~CimHost();
    CimHost(const CimHost&) = delete;
    CimHost& operator=(const CimHost&) = delete;

    // Further built-in providers are added before serve(); they must outlive the host.
    const ClassRepository& repository() const noexcept { return _repository; }
    void addRoute(const ProviderRoute& route);
    // Run by stop() when no request is being served any more and the providers have not been cleaned up yet.
    void beforeCleanup(std::function<void()> action) { _endings.push_back(std::move(action)); }

    // Makes the providers' function tables; the failures, one line each. A failed one is tried again when it is asked.
    std::vector<std::string> createProviders();
    Endpoint listen(const std::string& addressAndPort);
    void serve(); // returns at once
    // Answers no more, then cleans the providers up. Also done by the destructor.
    void stop();

    Broker& broker() noexcept { return *_broker; }
    Router& router() noexcept { return *_router; }
    OperationTable& operations() noexcept { return _operations; }
    const ProviderTable& providers() const noexcept { return *_table; }
    const std::vector<std::unique_ptr<LibraryProvider>>& libraries() const noexcept { return _libraries; }
    const std::vector<Registration>& registrations() const noexcept { return _registrations; }

private:
    void loadSchema();
    void loadProviders();
    LibraryProvider& library(const Registration& registration);

    HostOptions _options;
    std::vector<Registration> _registrations;
    ClassRepository _repository;
    std::unique_ptr<Broker> _broker;
    std::unique_ptr<ProviderTable> _table;
    std::vector<std::unique_ptr<LibraryProvider>> _libraries;
    std::unique_ptr<InteropProvider> _interop;
    std::unique_ptr<Router> _router;
    PullContexts _contexts;
    OperationTable _operations;
    std::unique_ptr<CimService> _service;
    std::unique_ptr<HttpServer> _server;
    std::vector<std::function<void()>> _endings;
    bool _stopped = false;
};

} // namespace KDV::Host
