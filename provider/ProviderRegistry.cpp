#include "provider/ProviderRegistry.h"

#include "cmpicpp/CmpiName.h"
#include "common/AutoMutex.h"
#include "common/AutostartDecorator.h"
#include "common/LoggedProvider.h"
#include "provider/KDVSASHBAProvider.h"
#include "provider/KDV_AutoStartSASHBA.h"
#include "provider/Names.h"

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

using namespace CmpiCpp;
namespace KDV {
namespace {

// Names of providers are compared like all CIM names, so two spellings of one name share one provider.
struct NameLess {
    static char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

    bool operator()(const std::string& a, const std::string& b) const
    {
        return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                            [](char x, char y) { return lower(x) < lower(y); });
    }
};

struct WrappedProvider;
using Registry = std::map<std::string, WrappedProvider*, NameLess>;

pthread_mutex_t registryMutex = PTHREAD_MUTEX_INITIALIZER;

Registry& registry()
{
    static Registry providers;
    return providers;
}

CmpiProvider* newProvider(const CMPIBroker* broker, const Logger& logger)
{
    return std::make_unique<KDVSASHBAProvider>(broker, logger).release();
}

// What a provider consists of, outermost last. Servers keep the function tables and threads of the schedule may be on
// their way out, so a whole that was finished is never freed.
struct WrappedProvider {
    WrappedProvider(const CMPIBroker* broker, const Logger& logger)
        : autoStart(logger, sasNameSpace), decorator(logger, broker, &newProvider, &autoStart),
          logged(logger, &decorator)
    {
    }

    KDV_AutoStartSASHBA autoStart;
    AutostartDecorator decorator;
    LoggedProvider logged;
};

Logger processLogger()
{
    Logger logger(providerName);
    logger.appendLogSource(":");
    logger.appendLogSource(std::to_string(getpid()));
    return logger;
}

WrappedProvider* createProvider(const CMPIBroker* broker, const char* name)
{
    if (CmpiName(name) != CmpiName(providerName)) return nullptr;
    static const Logger logger = processLogger();
    static auto& everMade = *std::make_unique<std::vector<std::unique_ptr<WrappedProvider>>>().release();
    everMade.push_back(std::make_unique<WrappedProvider>(broker, logger));
    return everMade.back().get();
}

} // namespace

CmpiProvider* obtainProvider(const CMPIBroker* broker, const CmpiContext&, const char* name)
{
    CmpiProvider* provider = nullptr;
    {
        AutoMutex lock(registryMutex);
        Registry& providers = registry();
        const std::string key = name ? name : "";
        const auto found = providers.find(key);
        if (found != providers.end() && !found->second->decorator.isFinished()) {
            provider = &found->second->logged;
        } else if (WrappedProvider* const made = createProvider(broker, name)) {
            providers[key] = made;
            provider = &made->logged;
        }
    }
    if (provider) provider->incRefcount();
    return provider;
}

} // namespace KDV
