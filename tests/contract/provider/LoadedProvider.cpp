#include "LoadedProvider.h"

#include "broker/RequestScope.h"
#include "cmpicpp/CmpiAssociationProvider.h"
#include "cmpicpp/CmpiIndicationProvider.h"
#include "cmpicpp/CmpiInstanceProvider.h"
#include "cmpicpp/CmpiMethodProvider.h"
#include "harness/Schema.h"

#include <dlfcn.h>
#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <unistd.h>

namespace KDV::Test {

using namespace Host;
using namespace CmpiCpp;

namespace {

constexpr char builtLibrary[] = KDV_BUILD_DIR "/lib/libKDVSASHBAProvider.so";

void* openLibrary(const std::string& file, int mode)
{
    void* library = dlopen(file.c_str(), mode);
    if (!library) throw std::runtime_error(dlerror());
    return library;
}

void* openCopy()
{
    char name[] = "/tmp/provider-copy-XXXXXX";
    const int file = mkstemp(name);
    if (file < 0) throw std::runtime_error("no temporary file");
    close(file);
    std::filesystem::copy_file(builtLibrary, name, std::filesystem::copy_options::overwrite_existing);
    void* library = openLibrary(name, RTLD_NOW | RTLD_LOCAL);
    std::filesystem::remove(name);
    return library;
}

template <class Interface, class Table>
const CmpiProvider* behind(const Table* table)
{
    return table ? static_cast<const Interface*>(table->hdl) : nullptr;
}

} // namespace

Broker& brokerOf(Profile profile)
{
    static auto* const brokers = new std::map<Profile, std::unique_ptr<Broker>>;
    std::unique_ptr<Broker>& broker = (*brokers)[profile];
    if (!broker) broker = std::make_unique<Broker>(schema(), BrokerOptions{profile, true});
    return *broker;
}

TestMachine& loadedMachine()
{
    static void* const library = openLibrary("libKDVSasHbaMRA.so", RTLD_NOW);
    static const auto machine = reinterpret_cast<TestMachine* (*)()>(dlsym(library, "kdvTestMachine"));
    if (!machine) throw std::runtime_error("the shipped data library is in place instead of the test's");
    return *machine();
}

const CmpiProvider* providerOf(const CMPIInstanceMI* table) { return behind<CmpiInstanceProvider>(table); }
const CmpiProvider* providerOf(const CMPIAssociationMI* table) { return behind<CmpiAssociationProvider>(table); }
const CmpiProvider* providerOf(const CMPIMethodMI* table) { return behind<CmpiMethodProvider>(table); }
const CmpiProvider* providerOf(const CMPIIndicationMI* table) { return behind<CmpiIndicationProvider>(table); }

LoadedProvider::LoadedProvider(Profile profile) : _broker(brokerOf(profile)), _library(openCopy()) {}

LoadedProvider::~LoadedProvider()
{
    for (int table = 0; table < 4; ++table)
        cleanup(true, table);
}

template <class Table>
Table* LoadedProvider::create(const char* symbol, const char* name)
{
    using Create = Table* (*)(const CMPIBroker*, const CMPIContext*, const char*, CMPIStatus*);
    const auto entryPoint = reinterpret_cast<Create>(dlsym(_library, symbol));
    if (!entryPoint) throw std::runtime_error(dlerror());
    RequestScope scope(_broker, "root/vnr");
    CMPIStatus status{CMPI_RC_OK, nullptr};
    Table* table = entryPoint(_broker.cmpi(), &scope.context(), name, &status);
    if (status.rc != CMPI_RC_OK || status.msg) throw std::runtime_error("the fourth parameter was written");
    return table;
}

CMPIInstanceMI* LoadedProvider::createInstanceMI(const char* name)
{
    return create<CMPIInstanceMI>("_Generic_Create_InstanceMI", name);
}

CMPIAssociationMI* LoadedProvider::createAssociationMI(const char* name)
{
    return create<CMPIAssociationMI>("_Generic_Create_AssociationMI", name);
}

CMPIMethodMI* LoadedProvider::createMethodMI(const char* name)
{
    return create<CMPIMethodMI>("_Generic_Create_MethodMI", name);
}

CMPIIndicationMI* LoadedProvider::createIndicationMI(const char* name)
{
    return create<CMPIIndicationMI>("_Generic_Create_IndicationMI", name);
}

Requests LoadedProvider::requests() { return _tables.instance ? Requests{_broker, _tables} : requestsAfresh(); }

Requests LoadedProvider::requestsAfresh()
{
    _tables = {createInstanceMI(), createAssociationMI(), createMethodMI(), createIndicationMI()};
    return {_broker, _tables};
}

CMPIrc LoadedProvider::cleanup(bool terminating, int table)
{
    RequestScope scope(_broker, "root/vnr");
    const auto end = [&](auto* mi) { return mi ? mi->ft->cleanup(mi, &scope.context(), terminating).rc : CMPI_RC_OK; };
    switch (table) {
    case 0:
        return end(_tables.instance);
    case 1:
        return end(_tables.association);
    case 2:
        return end(_tables.method);
    default:
        return end(_tables.indication);
    }
}

} // namespace KDV::Test
