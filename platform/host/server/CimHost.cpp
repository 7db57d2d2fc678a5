#include "hostserver/CimHost.h"

#include <algorithm>
#include <array>
#include <set>
#include <stdexcept>
#include <unistd.h>

namespace KDV::Host {

namespace fs = std::filesystem;

std::string localHostName()
{
    std::array<char, 256> name{};
    if (::gethostname(name.data(), name.size() - 1) != 0 || !name[0]) return "localhost";
    return name.data();
}

CimHost::CimHost(HostOptions options)
    : _options(std::move(options)), _registrations(readRegistrations(_options.schemaDirectory / "kdv-sas.reg")),
      _contexts(_options.pull)
{
    loadSchema();
    _broker = std::make_unique<Broker>(_repository, _options.broker);
    _table = std::make_unique<ProviderTable>(_repository);
    loadProviders();
    _interop = std::make_unique<InteropProvider>(*_broker, localHostName());
    for (const ProviderRoute& route : _interop->routes())
        _table->add(route);
    _router = std::make_unique<Router>(*_broker, *_table);
    _broker->setUpcalls(_router.get());
    addInstanceOperations(_operations, *_router);
    addClassOperations(_operations);
    addAssociationOperations(_operations, *_router);
    addPullOperations(_operations, *_router, _contexts);
    _service = std::make_unique<CimService>(*_broker, *_router, _operations, localHostName());
    _server = std::make_unique<HttpServer>(*_service, _options.limits);
}

CimHost::~CimHost() { stop(); }

// Every namespace has the common classes and, where providers are registered, ours. Clients look for the interop
// namespace under either name.
void CimHost::loadSchema()
{
    std::vector<fs::path> core;
    for (const auto& entry : fs::directory_iterator(_options.schemaDirectory / "core"))
        if (entry.path().extension() == ".mof") core.push_back(entry.path());
    std::sort(core.begin(), core.end());
    std::set<std::string> nameSpaces;
    for (const Registration& registration : _registrations)
        nameSpaces.insert(registration.nameSpaces.begin(), registration.nameSpaces.end());
    const auto load = [&](const std::string& nameSpace) {
        for (const fs::path& file : core)
            _repository.loadFile(file, nameSpace);
    };
    for (const std::string& nameSpace : nameSpaces) {
        load(nameSpace);
        _repository.loadFile(_options.schemaDirectory / "kdv-sas.mof", nameSpace);
    }
    load("interop");
    load("root");
    _repository.addAlias("root/interop", "interop");
    _repository.checkReferences();
}

LibraryProvider& CimHost::library(const Registration& registration)
{
    for (const auto& each : _libraries)
        if (each->name() == registration.provider) return *each;
    _libraries.push_back(std::make_unique<LibraryProvider>(*_broker, registration.provider, registration.location,
                                                           _options.providerDirectory.string()));
    return *_libraries.back();
}

void CimHost::loadProviders()
{
    for (const Registration& registration : _registrations)
        for (const std::string& nameSpace : registration.nameSpaces) {
            const ClassInfo* classInfo = _repository.find(nameSpace, registration.className);
            if (!classInfo)
                throw std::runtime_error("class " + registration.className + " is registered in namespace " +
                                         nameSpace + ", but no MOF declares it there");
            ProviderRoute route;
            route.classInfo = classInfo;
            route.provider = &library(registration);
            route.instances = registration.instances;
            route.associations = registration.associations;
            route.methods = registration.methods;
            route.indications = registration.indications;
            _table->add(route);
        }
}

void CimHost::addRoute(const ProviderRoute& route) { _table->add(route); }

std::vector<std::string> CimHost::createProviders()
{
    std::vector<std::string> failures;
    for (const auto& provider : _libraries)
        if (const Outcome made = provider->create(); made.rc != CMPI_RC_OK)
            failures.push_back(provider->name() + " in " + provider->file() + ": " + made.message + " (code " +
                               std::to_string(made.rc) + ")");
    return failures;
}

Endpoint CimHost::listen(const std::string& addressAndPort) { return _server->listen(Endpoint::parse(addressAndPort)); }

void CimHost::serve() { _server->start(); }

void CimHost::stop()
{
    if (_stopped) return;
    _stopped = true;
    _server->stop();
    for (const auto& ending : _endings)
        ending();
    for (const auto& provider : _libraries)
        provider->cleanup();
    _broker->setUpcalls(nullptr);
}

} // namespace KDV::Host
