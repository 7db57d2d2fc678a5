// A provider library and the function tables it made. Loading, making and cleaning up are for one thread at a time; the
// tables may be called from any. Everything goes through the four generic factory symbols and the CMPI tables.
// The library stays mapped for the life of the process: its threads may still be on their way out.
#pragma once

#include "broker/Broker.h"
#include "cmpi/ProviderTables.h"

#include <string>

namespace KDV::Host {

class ProviderModule {
public:
    // `location` is an absolute path of a library or, with a directory, the name in "lib<location>.so". Throws
    // std::runtime_error with the loader's message, or if the library has none of the four factories.
    explicit ProviderModule(const std::string& location, const std::string& directory = {});
    ~ProviderModule(); // does not clean up: a host asks for that while its broker is alive
    ProviderModule(const ProviderModule&) = delete;
    ProviderModule& operator=(const ProviderModule&) = delete;

    // Calls each factory that has not given a table yet, in the order instance, association, method, indication, each
    // in a scope of its own with the context that the profile's server passes. The first failure is returned (with the
    // provider's text); what was made before stays, and a later call tries the rest again.
    Outcome create(Broker& broker, const std::string& providerName);

    // Cleans up each table that was made, in the same order. An outcome other than 0 of a call with terminating =
    // false (50, 51: do not unload) is returned and the tables stay in use; after terminating = true they are gone.
    Outcome cleanup(Broker& broker, bool terminating);

    CMPIInstanceMI* instanceMI() const noexcept { return _instance; }
    CMPIAssociationMI* associationMI() const noexcept { return _association; }
    CMPIMethodMI* methodMI() const noexcept { return _method; }
    CMPIIndicationMI* indicationMI() const noexcept { return _indication; }
    const std::string& file() const noexcept { return _file; }

private:
    template <class MI>
    Outcome make(Broker& broker, const char* symbol, const std::string& name, MI*& table);
    template <class MI>
    void end(Broker& broker, bool terminating, MI*& table, Outcome& worst);

    std::string _file;
    void* _library = nullptr;
    CMPIInstanceMI* _instance = nullptr;
    CMPIAssociationMI* _association = nullptr;
    CMPIMethodMI* _method = nullptr;
    CMPIIndicationMI* _indication = nullptr;
};

} // namespace KDV::Host
