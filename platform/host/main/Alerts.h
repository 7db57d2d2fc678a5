// The alerts of a running object manager: subscriptions in interop, delivery, journal and local stream, wired into the
// host. Made after the host and before it serves; ended by the host's stop() before providers are cleaned up.
#pragma once

#include "hostserver/CimHost.h"
#include "indications/IndicationService.h"
#include "indications/QueryCompiler.h"
#include "indications/SubscriptionProvider.h"

#include <filesystem>

namespace KDV::Host {

class Alerts {
public:
    // Keeps subscriptions in stateDirectory, which is made when it is missing. Throws std::runtime_error or
    // std::system_error when that cannot be.
    Alerts(CimHost& host, const std::filesystem::path& stateDirectory);
    Alerts(const Alerts&) = delete;
    Alerts& operator=(const Alerts&) = delete;
    ~Alerts();

    void start();                                                          // once the providers can be asked
    const std::string& streamPath() const noexcept { return _streamPath; } // empty: no stream

private:
    IndicationOptions optionsFor(const std::filesystem::path& stateDirectory);

    CimHost& _host;
    std::string _streamPath;
    QueryCompiler _compiler;
    IndicationService _service;
    SubscriptionProvider _provider;
};

} // namespace KDV::Host
