#include "common/LoggedProvider.h"

#include "cmpicpp/CmpiStatus.h"
#include "logger/LogSettings.h"

#include <exception>
#include <string>

using namespace CmpiCpp;
namespace KDV {
namespace {

// Logs begin, which is called with info lines on only, and how call ended.
template <class Begin, class Call>
auto logged(const Logger& log, const char* operation, Begin begin, Call call)
{
    if (logLevel() < LogLevel::info) return call();
    begin();
    try {
        struct Done {
            const Logger& log;
            const char* operation;
            int exceptions = std::uncaught_exceptions();
            ~Done()
            {
                if (std::uncaught_exceptions() == exceptions) log.info("%s() done", operation);
            }
        } done{log, operation};
        return call();
    } catch (const CmpiStatus& status) {
        log.info("%s() ends with code %d: %s", operation, static_cast<int>(status.code()), status.str());
        throw;
    } catch (const std::exception& failure) {
        log.info("%s() ends with an exception: %s", operation, failure.what());
        throw;
    } catch (...) {
        log.info("%s() ends with an unknown exception", operation);
        throw;
    }
}

// A request is never refused because its log line cannot be made.
std::string textOf(const CmpiObjectPath& path)
{
    try {
        return path.str();
    } catch (const CmpiStatus&) {
        return "?";
    }
}

} // namespace

LoggedProvider::LoggedProvider(const Logger& logger, CmpiProvider* provider)
    : ProviderForwarder(provider), _logger(logger)
{
}

LoggedProvider::~LoggedProvider() = default;

bool LoggedProvider::cleanup(const CmpiContext& context, bool terminating)
{
    return logged(
        _logger, "cleanup", [&] { _logger.info("cleanup() terminating %d", terminating ? 1 : 0); },
        [&] { return ProviderForwarder::cleanup(context, terminating); });
}

bool LoggedProvider::unloadOK(const CmpiContext& context)
{
    return logged(
        _logger, "unloadOK", [&] { _logger.info("unloadOK()"); }, [&] { return ProviderForwarder::unloadOK(context); });
}

void LoggedProvider::enumInstanceNames(const CmpiContext& context, const CmpiObjectPath& classPath,
                                       const CmpiObjectPathResult& result)
{
    logged(
        _logger, "enumInstanceNames", [&] { _logger.info("enumInstanceNames() class %s", textOf(classPath).c_str()); },
        [&] { ProviderForwarder::enumInstanceNames(context, classPath, result); });
}

void LoggedProvider::enumInstances(const CmpiContext& context, const CmpiObjectPath& classPath,
                                   const char* const* properties, const CmpiInstanceResult& result)
{
    logged(
        _logger, "enumInstances", [&] { _logger.info("enumInstances() class %s", textOf(classPath).c_str()); },
        [&] { ProviderForwarder::enumInstances(context, classPath, properties, result); });
}

void LoggedProvider::getInstance(const CmpiContext& context, const CmpiObjectPath& path, const char* const* properties,
                                 const CmpiInstanceResult& result)
{
    logged(
        _logger, "getInstance", [&] { _logger.info("getInstance() path %s", textOf(path).c_str()); },
        [&] { ProviderForwarder::getInstance(context, path, properties, result); });
}

void LoggedProvider::createInstance(const CmpiContext& context, const CmpiObjectPath& path,
                                    const CMPIInstance* instance, const CmpiObjectPathResult& result)
{
    logged(
        _logger, "createInstance", [&] { _logger.info("createInstance() path %s", textOf(path).c_str()); },
        [&] { ProviderForwarder::createInstance(context, path, instance, result); });
}

void LoggedProvider::modifyInstance(const CmpiContext& context, const CmpiObjectPath& path,
                                    const CMPIInstance* instance, const char* const* properties)
{
    logged(
        _logger, "modifyInstance", [&] { _logger.info("modifyInstance() path %s", textOf(path).c_str()); },
        [&] { ProviderForwarder::modifyInstance(context, path, instance, properties); });
}

void LoggedProvider::deleteInstance(const CmpiContext& context, const CmpiObjectPath& path)
{
    logged(
        _logger, "deleteInstance", [&] { _logger.info("deleteInstance() path %s", textOf(path).c_str()); },
        [&] { ProviderForwarder::deleteInstance(context, path); });
}

void LoggedProvider::execQuery(const CmpiContext& context, const CmpiObjectPath& classPath, const char* query,
                               const char* language, const CmpiInstanceResult& result)
{
    logged(
        _logger, "execQuery", [&] { _logger.info("execQuery() class %s", textOf(classPath).c_str()); },
        [&] { ProviderForwarder::execQuery(context, classPath, query, language, result); });
}

void LoggedProvider::associators(const CmpiContext& context, const CmpiObjectPath& path,
                                 const CmpiName& associationClass, const CmpiName& resultClass, const CmpiName& role,
                                 const CmpiName& resultRole, const char* const* properties,
                                 const CmpiInstanceResult& result)
{
    logged(
        _logger, "associators",
        [&] {
            _logger.info(
                "associators() path %s association class \"%s\" result class \"%s\" role \"%s\" result role \"%s\"",
                textOf(path).c_str(), associationClass.c_str(), resultClass.c_str(), role.c_str(), resultRole.c_str());
        },
        [&] {
            ProviderForwarder::associators(context, path, associationClass, resultClass, role, resultRole, properties,
                                           result);
        });
}

void LoggedProvider::associatorNames(const CmpiContext& context, const CmpiObjectPath& path,
                                     const CmpiName& associationClass, const CmpiName& resultClass,
                                     const CmpiName& role, const CmpiName& resultRole,
                                     const CmpiObjectPathResult& result)
{
    logged(
        _logger, "associatorNames",
        [&] {
            _logger.info(
                "associatorNames() path %s association class \"%s\" result class \"%s\" role \"%s\" result role \"%s\"",
                textOf(path).c_str(), associationClass.c_str(), resultClass.c_str(), role.c_str(), resultRole.c_str());
        },
        [&] {
            ProviderForwarder::associatorNames(context, path, associationClass, resultClass, role, resultRole, result);
        });
}

void LoggedProvider::references(const CmpiContext& context, const CmpiObjectPath& path, const CmpiName& resultClass,
                                const CmpiName& role, const char* const* properties, const CmpiInstanceResult& result)
{
    logged(
        _logger, "references",
        [&] {
            _logger.info("references() path %s result class \"%s\" role \"%s\"", textOf(path).c_str(),
                         resultClass.c_str(), role.c_str());
        },
        [&] { ProviderForwarder::references(context, path, resultClass, role, properties, result); });
}

void LoggedProvider::referenceNames(const CmpiContext& context, const CmpiObjectPath& path, const CmpiName& resultClass,
                                    const CmpiName& role, const CmpiObjectPathResult& result)
{
    logged(
        _logger, "referenceNames",
        [&] {
            _logger.info("referenceNames() path %s result class \"%s\" role \"%s\"", textOf(path).c_str(),
                         resultClass.c_str(), role.c_str());
        },
        [&] { ProviderForwarder::referenceNames(context, path, resultClass, role, result); });
}

void LoggedProvider::authorizeFilter(const CmpiContext& context, const CmpiSelectExp& filter, const CmpiName& className,
                                     const CmpiObjectPath& classPath, const char* owner)
{
    logged(
        _logger, "authorizeFilter", [&] { _logger.info("authorizeFilter() class \"%s\"", className.c_str()); },
        [&] { ProviderForwarder::authorizeFilter(context, filter, className, classPath, owner); });
}

void LoggedProvider::mustPoll(const CmpiContext& context)
{
    logged(
        _logger, "mustPoll", [&] { _logger.info("mustPoll()"); }, [&] { ProviderForwarder::mustPoll(context); });
}

void LoggedProvider::activateFilter(const CmpiContext& context, const CmpiSelectExp& filter, const CmpiName& className,
                                    const CmpiObjectPath& classPath, bool firstActivation)
{
    logged(
        _logger, "activateFilter",
        [&] { _logger.info("activateFilter() class \"%s\" first %d", className.c_str(), firstActivation ? 1 : 0); },
        [&] { ProviderForwarder::activateFilter(context, filter, className, classPath, firstActivation); });
}

void LoggedProvider::deactivateFilter(const CmpiContext& context, const CmpiSelectExp& filter,
                                      const CmpiName& className, const CmpiObjectPath& classPath, bool lastDeactivation)
{
    logged(
        _logger, "deactivateFilter",
        [&] { _logger.info("deactivateFilter() class \"%s\" last %d", className.c_str(), lastDeactivation ? 1 : 0); },
        [&] { ProviderForwarder::deactivateFilter(context, filter, className, classPath, lastDeactivation); });
}

void LoggedProvider::enableIndications(const CmpiContext& context)
{
    logged(
        _logger, "enableIndications", [&] { _logger.info("enableIndications()"); },
        [&] { ProviderForwarder::enableIndications(context); });
}

void LoggedProvider::disableIndications(const CmpiContext& context)
{
    logged(
        _logger, "disableIndications", [&] { _logger.info("disableIndications()"); },
        [&] { ProviderForwarder::disableIndications(context); });
}

void LoggedProvider::invokeMethod(const CmpiContext& context, const CmpiObjectPath& path, const CmpiName& method,
                                  const CmpiArgs& arguments, const CmpiMethodResult& result)
{
    logged(
        _logger, "invokeMethod",
        [&] { _logger.info("invokeMethod() path %s method %s", textOf(path).c_str(), method.c_str()); },
        [&] { ProviderForwarder::invokeMethod(context, path, method, arguments, result); });
}

} // namespace KDV
