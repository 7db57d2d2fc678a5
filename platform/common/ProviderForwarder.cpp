#include "common/ProviderForwarder.h"

#include "cmpicpp/CmpiStatus.h"

#include <stdexcept>
#include <string>

using namespace CmpiCpp;
namespace KDV {
namespace {

CmpiProvider& required(CmpiProvider* provider)
{
    if (!provider) throw std::invalid_argument("no provider to forward to");
    return *provider;
}

} // namespace

ProviderForwarder::ProviderForwarder(CmpiProvider* provider)
    : _provider(required(provider)), _instances(dynamic_cast<CmpiInstanceProvider*>(provider)),
      _associations(dynamic_cast<CmpiAssociationProvider*>(provider)),
      _indications(dynamic_cast<CmpiIndicationProvider*>(provider)),
      _methods(dynamic_cast<CmpiMethodProvider*>(provider))
{
    setBroker(provider->getBroker()); // for the texts of errors at the C boundary
}

ProviderForwarder::~ProviderForwarder() = default;

void ProviderForwarder::entering(const CmpiContext&) {}

template <class Interface>
Interface& ProviderForwarder::forward(Interface* provider, const CmpiContext& context, const char* operation)
{
    if (!provider) throw CmpiStatus(CMPI_RC_ERR_NOT_SUPPORTED, std::string(operation) + " is not supported");
    entering(context);
    return *provider;
}

bool ProviderForwarder::cleanup(const CmpiContext& context, bool terminating)
{
    return _provider.cleanup(context, terminating);
}

bool ProviderForwarder::unloadOK(const CmpiContext& context) { return _provider.unloadOK(context); }

void ProviderForwarder::enumInstanceNames(const CmpiContext& context, const CmpiObjectPath& classPath,
                                          const CmpiObjectPathResult& result)
{
    forward(_instances, context, "enumInstanceNames").enumInstanceNames(context, classPath, result);
}

void ProviderForwarder::enumInstances(const CmpiContext& context, const CmpiObjectPath& classPath,
                                      const char* const* properties, const CmpiInstanceResult& result)
{
    forward(_instances, context, "enumInstances").enumInstances(context, classPath, properties, result);
}

void ProviderForwarder::getInstance(const CmpiContext& context, const CmpiObjectPath& path,
                                    const char* const* properties, const CmpiInstanceResult& result)
{
    forward(_instances, context, "getInstance").getInstance(context, path, properties, result);
}

void ProviderForwarder::createInstance(const CmpiContext& context, const CmpiObjectPath& path,
                                       const CMPIInstance* instance, const CmpiObjectPathResult& result)
{
    forward(_instances, context, "createInstance").createInstance(context, path, instance, result);
}

void ProviderForwarder::modifyInstance(const CmpiContext& context, const CmpiObjectPath& path,
                                       const CMPIInstance* instance, const char* const* properties)
{
    forward(_instances, context, "modifyInstance").modifyInstance(context, path, instance, properties);
}

void ProviderForwarder::deleteInstance(const CmpiContext& context, const CmpiObjectPath& path)
{
    forward(_instances, context, "deleteInstance").deleteInstance(context, path);
}

void ProviderForwarder::execQuery(const CmpiContext& context, const CmpiObjectPath& classPath, const char* query,
                                  const char* language, const CmpiInstanceResult& result)
{
    forward(_instances, context, "execQuery").execQuery(context, classPath, query, language, result);
}

void ProviderForwarder::associators(const CmpiContext& context, const CmpiObjectPath& path,
                                    const CmpiName& associationClass, const CmpiName& resultClass, const CmpiName& role,
                                    const CmpiName& resultRole, const char* const* properties,
                                    const CmpiInstanceResult& result)
{
    forward(_associations, context, "associators")
        .associators(context, path, associationClass, resultClass, role, resultRole, properties, result);
}

void ProviderForwarder::associatorNames(const CmpiContext& context, const CmpiObjectPath& path,
                                        const CmpiName& associationClass, const CmpiName& resultClass,
                                        const CmpiName& role, const CmpiName& resultRole,
                                        const CmpiObjectPathResult& result)
{
    forward(_associations, context, "associatorNames")
        .associatorNames(context, path, associationClass, resultClass, role, resultRole, result);
}

void ProviderForwarder::references(const CmpiContext& context, const CmpiObjectPath& path, const CmpiName& resultClass,
                                   const CmpiName& role, const char* const* properties,
                                   const CmpiInstanceResult& result)
{
    forward(_associations, context, "references").references(context, path, resultClass, role, properties, result);
}

void ProviderForwarder::referenceNames(const CmpiContext& context, const CmpiObjectPath& path,
                                       const CmpiName& resultClass, const CmpiName& role,
                                       const CmpiObjectPathResult& result)
{
    forward(_associations, context, "referenceNames").referenceNames(context, path, resultClass, role, result);
}

void ProviderForwarder::authorizeFilter(const CmpiContext& context, const CmpiSelectExp& filter,
                                        const CmpiName& className, const CmpiObjectPath& classPath, const char* owner)
{
    forward(_indications, context, "authorizeFilter").authorizeFilter(context, filter, className, classPath, owner);
}

void ProviderForwarder::mustPoll(const CmpiContext& context)
{
    forward(_indications, context, "mustPoll").mustPoll(context);
}

void ProviderForwarder::activateFilter(const CmpiContext& context, const CmpiSelectExp& filter,
                                       const CmpiName& className, const CmpiObjectPath& classPath, bool firstActivation)
{
    forward(_indications, context, "activateFilter")
        .activateFilter(context, filter, className, classPath, firstActivation);
}

void ProviderForwarder::deactivateFilter(const CmpiContext& context, const CmpiSelectExp& filter,
                                         const CmpiName& className, const CmpiObjectPath& classPath,
                                         bool lastDeactivation)
{
    forward(_indications, context, "deactivateFilter")
        .deactivateFilter(context, filter, className, classPath, lastDeactivation);
}

void ProviderForwarder::enableIndications(const CmpiContext& context)
{
    forward(_indications, context, "enableIndications").enableIndications(context);
}

void ProviderForwarder::disableIndications(const CmpiContext& context)
{
    forward(_indications, context, "disableIndications").disableIndications(context);
}

void ProviderForwarder::invokeMethod(const CmpiContext& context, const CmpiObjectPath& path, const CmpiName& method,
                                     const CmpiArgs& arguments, const CmpiMethodResult& result)
{
    forward(_methods, context, "invokeMethod").invokeMethod(context, path, method, arguments, result);
}

} // namespace KDV
