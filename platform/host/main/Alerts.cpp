#include "Alerts.h"

#include <sys/un.h>

namespace KDV::Host {
namespace {

constexpr const char* interop = "interop";

LibraryProvider* libraryOf(CimHost& host, const std::string& provider)
{
    for (const auto& library : host.libraries())
        if (library->name() == provider) return library.get();
    return nullptr;
}

std::vector<IndicationRegistration> registrationsOf(CimHost& host)
{
    std::vector<IndicationRegistration> result;
    for (const Registration& registration : host.registrations()) {
        LibraryProvider* const library = libraryOf(host, registration.provider);
        if (!registration.indications || !library) continue;
        for (const std::string& nameSpace : registration.nameSpaces)
            result.push_back({registration.provider, nameSpace, registration.className, [library](Outcome& outcome) {
                                  outcome = library->create(); // does nothing when it is there already
                                  return library->indicationMI();
                              }});
    }
    return result;
}

} // namespace

IndicationOptions Alerts::optionsFor(const std::filesystem::path& stateDirectory)
{
    std::filesystem::create_directories(stateDirectory);
    std::filesystem::permissions(stateDirectory, std::filesystem::perms::owner_all);
    IndicationOptions options;
    options.stateDirectory = stateDirectory;
    options.systemName = localHostName();
    const std::string socket = (stateDirectory / "alerts.sock").string();
    if (socket.size() < sizeof(sockaddr_un::sun_path)) {
        StreamOptions stream;
        stream.path = socket;
        options.stream = stream;
        _streamPath = socket;
    }
    addStaticFilter(options, "VNR:KDV_SAS:AllAlerts", "KDV_SASIndication", "root/vnr");
    return options;
}

Alerts::Alerts(CimHost& host, const std::filesystem::path& stateDirectory)
    : _host(host), _service(host.broker(), optionsFor(stateDirectory), registrationsOf(host)), _provider(_service)
{
    for (const char* className : SubscriptionProvider::classNames()) {
        const ClassInfo* const classInfo = host.repository().find(interop, className);
        if (!classInfo) throw std::runtime_error(std::string("the schema lacks ") + className + " in interop");
        ProviderRoute route;
        route.classInfo = classInfo;
        route.provider = &_provider;
        route.instances = true;
        route.associations = SubscriptionProvider::isAssociation(className);
        host.addRoute(route);
    }
    host.broker().setSelectCompiler(&_compiler);
    host.broker().setIndicationSink(&_service);
    host.beforeCleanup([this] { _service.stop(); });
}

Alerts::~Alerts()
{
    _host.stop(); // nobody may ask the broker for what ends here
    _host.broker().setIndicationSink(nullptr);
    _host.broker().setSelectCompiler(nullptr);
}

void Alerts::start() { _service.start(); }

} // namespace KDV::Host
