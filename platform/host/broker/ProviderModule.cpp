#include "broker/ProviderModule.h"

#include "broker/RequestScope.h"

#include <dlfcn.h>
#include <stdexcept>

namespace KDV::Host {
namespace {

constexpr const char* instanceFactory = "_Generic_Create_InstanceMI";
constexpr const char* associationFactory = "_Generic_Create_AssociationMI";
constexpr const char* methodFactory = "_Generic_Create_MethodMI";
constexpr const char* indicationFactory = "_Generic_Create_IndicationMI";

std::string textOfMessage(const CMPIStatus& status)
{
    return status.msg ? std::string(StringObject::of(status.msg).text()) : std::string();
}

} // namespace

ProviderModule::ProviderModule(const std::string& location, const std::string& directory)
    : _file(directory.empty() ? location : directory + "/lib" + location + ".so")
{
    if (_file.empty() || _file.front() != '/')
        throw std::runtime_error("expected an absolute path of a provider library, found \"" + _file + "\"");
    // nodelete: threads of the provider may run on after its last cleanup.
    _library = dlopen(_file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (!_library) {
        const char* why = dlerror();
        throw std::runtime_error(why ? why : "cannot load " + _file);
    }
    for (const char* symbol : {instanceFactory, associationFactory, methodFactory, indicationFactory})
        if (dlsym(_library, symbol)) return;
    dlclose(_library);
    throw std::runtime_error(_file + " has none of the factories " + instanceFactory + ", " + associationFactory +
                             ", " + methodFactory + ", " + indicationFactory);
}

ProviderModule::~ProviderModule() { dlclose(_library); }

template <class MI>
Outcome ProviderModule::make(Broker& broker, const char* symbol, const std::string& name, MI*& table)
{
    using Factory = MI* (*)(const CMPIBroker*, const CMPIContext*, const char*, CMPIStatus*);
    void* found = dlsym(_library, symbol);
    if (table || !found) return {};
    RequestScope scope(broker);
    ContextObject& context = scope.context();
    if (broker.profile() == Profile::Sfcb) {
        context.addNumber("CMPIInvocationFlags", 0);
        context.addText("CMPIPrincipal", "$$");
        context.addNumber("CMPISessionId", 1);
    }
    CMPIStatus status{CMPI_RC_OK, nullptr};
    MI* made = reinterpret_cast<Factory>(found)(broker.cmpi(), &context, name.c_str(), &status);
    if (made && status.rc == CMPI_RC_OK) {
        table = made;
        return {};
    }
    const CMPIrc rc = status.rc == CMPI_RC_OK ? CMPI_RC_ERR_FAILED : status.rc;
    std::string text = textOfMessage(status);
    if (text.empty()) text = std::string(symbol) + " gave no provider for the name \"" + name + "\"";
    return {rc, std::move(text)};
}

Outcome ProviderModule::create(Broker& broker, const std::string& providerName)
{
    Outcome outcome = make(broker, instanceFactory, providerName, _instance);
    if (outcome.rc == CMPI_RC_OK) outcome = make(broker, associationFactory, providerName, _association);
    if (outcome.rc == CMPI_RC_OK) outcome = make(broker, methodFactory, providerName, _method);
    if (outcome.rc == CMPI_RC_OK) outcome = make(broker, indicationFactory, providerName, _indication);
    return outcome;
}

template <class MI>
void ProviderModule::end(Broker& broker, bool terminating, MI*& table, Outcome& worst)
{
    if (!table) return;
    RequestScope scope(broker);
    const CMPIStatus status = table->ft->cleanup(table, &scope.context(), terminating);
    if (status.rc != CMPI_RC_OK && worst.rc == CMPI_RC_OK) worst = {status.rc, textOfMessage(status)};
    if (terminating) table = nullptr;
}

Outcome ProviderModule::cleanup(Broker& broker, bool terminating)
{
    Outcome worst;
    end(broker, terminating, _instance, worst);
    end(broker, terminating, _association, worst);
    end(broker, terminating, _method, worst);
    end(broker, terminating, _indication, worst);
    if (worst.rc == CMPI_RC_OK) {
        _instance = nullptr;
        _association = nullptr;
        _method = nullptr;
        _indication = nullptr;
    }
    return worst;
}

} // namespace KDV::Host
