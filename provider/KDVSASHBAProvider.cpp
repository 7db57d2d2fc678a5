#include "provider/KDVSASHBAProvider.h"

#include "cmpicpp/CmpiStatus.h"
#include "common/AutoMutex.h"
#include "common/KDVUtil.h"

#include <exception>
#include <utility>

using namespace CmpiCpp;
namespace KDV {

KDVSASHBAProvider::KDVSASHBAProvider(const CMPIBroker* broker, const Logger& logger)
    : _devices(std::make_unique<DeviceObjects>()), _logger(logger), _collection(logger), _indicationsEnabled(false),
      _sasData(), _mutex()
{
    setBroker(broker);
    KDVUtil::setBroker(broker);
    CmpiObjectPath::setDefaultNameSpace(sasNameSpace);
    _logger.info("cxtor() loading provider");
    pthread_mutex_init(&_mutex, nullptr);
    try {
        _cmpiManagedInstanceFactory(); // without the lock: nobody else can reach the object yet
    } catch (const std::exception& failure) {
        _logger.error(":_cmpiManagedInstanceFactory() has raised exception: %s", failure.what());
        pthread_mutex_destroy(&_mutex);
        throw std::exception(); // the text was for the log
    } catch (...) {
        pthread_mutex_destroy(&_mutex);
        throw;
    }
}

KDVSASHBAProvider::~KDVSASHBAProvider()
{
    _logger.info("dxtor() unloading provider");
    pthread_mutex_destroy(&_mutex);
    DeviceObjects::keepForever(std::move(_devices));
}

void KDVSASHBAProvider::enumInstanceNames(const CmpiContext& context, const CmpiObjectPath& classPath,
                                          const CmpiObjectPathResult& result)
{
    AutoMutex lock(_mutex);
    _collection.enumInstanceNames(result, context, classPath);
}

void KDVSASHBAProvider::enumInstances(const CmpiContext& context, const CmpiObjectPath& classPath,
                                      const char* const* properties, const CmpiInstanceResult& result)
{
    AutoMutex lock(_mutex);
    _collection.enumInstances(result, context, classPath, properties);
}

void KDVSASHBAProvider::getInstance(const CmpiContext& context, const CmpiObjectPath& path,
                                    const char* const* properties, const CmpiInstanceResult& result)
{
    AutoMutex lock(_mutex);
    if (!_collection.getInstance(result, context, path, properties)) throw CmpiStatus(CMPI_RC_ERR_NOT_FOUND);
}

bool KDVSASHBAProvider::cleanup(const CmpiContext&, bool terminating)
{
    if (terminating) _ending = true;
    return terminating;
}

void KDVSASHBAProvider::associators(const CmpiContext& context, const CmpiObjectPath& path,
                                    const CmpiName& associationClass, const CmpiName& resultClass, const CmpiName& role,
                                    const CmpiName& resultRole, const char* const* properties,
                                    const CmpiInstanceResult& result)
{
    AutoMutex lock(_mutex);
    _collection.associators(result, context, path, associationClass, resultClass, role, resultRole, properties);
}

void KDVSASHBAProvider::associatorNames(const CmpiContext& context, const CmpiObjectPath& path,
                                        const CmpiName& associationClass, const CmpiName& resultClass,
                                        const CmpiName& role, const CmpiName& resultRole,
                                        const CmpiObjectPathResult& result)
{
    AutoMutex lock(_mutex);
    _collection.associatorNames(result, context, path, associationClass, resultClass, role, resultRole);
}

void KDVSASHBAProvider::references(const CmpiContext& context, const CmpiObjectPath& path, const CmpiName& resultClass,
                                   const CmpiName& role, const char* const* properties,
                                   const CmpiInstanceResult& result)
{
    AutoMutex lock(_mutex);
    _collection.references(result, context, path, resultClass, role, properties);
}

void KDVSASHBAProvider::referenceNames(const CmpiContext& context, const CmpiObjectPath& path,
                                       const CmpiName& resultClass, const CmpiName& role,
                                       const CmpiObjectPathResult& result)
{
    AutoMutex lock(_mutex);
    _collection.referenceNames(result, context, path, resultClass, role);
}

// Every filter is welcome and no polling is needed: changes are found by the pass.
void KDVSASHBAProvider::authorizeFilter(const CmpiContext&, const CmpiSelectExp&, const CmpiName&,
                                        const CmpiObjectPath&, const char*)
{
}

void KDVSASHBAProvider::mustPoll(const CmpiContext&) {}

void KDVSASHBAProvider::activateFilter(const CmpiContext&, const CmpiSelectExp&, const CmpiName&, const CmpiObjectPath&,
                                       bool)
{
    _indicationsEnabled = true;
}

// Only disableIndications ends the alerts: servers deactivate filters one by one and in any order.
void KDVSASHBAProvider::deactivateFilter(const CmpiContext&, const CmpiSelectExp&, const CmpiName&,
                                         const CmpiObjectPath&, bool)
{
}

void KDVSASHBAProvider::enableIndications(const CmpiContext&) { _indicationsEnabled = true; }

void KDVSASHBAProvider::disableIndications(const CmpiContext&) { _indicationsEnabled = false; }

void KDVSASHBAProvider::invokeMethod(const CmpiContext& context, const CmpiObjectPath&, const CmpiName& method,
                                     const CmpiArgs&, const CmpiMethodResult& result)
{
    std::uint32_t answer = 1; // not a method of ours; the path is not looked at
    if (method == CmpiName(workerMethod)) answer = _backgroundWorker(context);
    result.returnData(answer);
}

bool KDVSASHBAProvider::unloadOK(const CmpiContext&) { return true; }

} // namespace KDV
