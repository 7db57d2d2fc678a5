// A provider that logs every call at info level, with what it was asked and how it ended, and forwards it to another,
// which it is given as its CmpiProvider and does not own. Operations of an interface that the other does not have are
// refused as not supported. Nothing is formatted while info lines are off. Thread-safe as far as the other is.
#pragma once

#include "cmpicpp/CmpiAssociationProvider.h"
#include "cmpicpp/CmpiIndicationProvider.h"
#include "cmpicpp/CmpiInstanceProvider.h"
#include "cmpicpp/CmpiMethodProvider.h"
#include "common/Export.h"
#include "common/ProviderForwarder.h"
#include "logger/Logger.h"

namespace KDV {

class KDV_COMMON_API LoggedProvider : public ProviderForwarder {
public:
    LoggedProvider(const Logger& logger, CmpiCpp::CmpiProvider* provider);
    ~LoggedProvider() override;

    bool cleanup(const CmpiCpp::CmpiContext& context, bool terminating) override;
    bool unloadOK(const CmpiCpp::CmpiContext& context) override;

    void enumInstanceNames(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& classPath,
                           const CmpiCpp::CmpiObjectPathResult& result) override;
    void enumInstances(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& classPath,
                       const char* const* properties, const CmpiCpp::CmpiInstanceResult& result) override;
    void getInstance(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& path,
                     const char* const* properties, const CmpiCpp::CmpiInstanceResult& result) override;
    void createInstance(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& path,
                        const CMPIInstance* instance, const CmpiCpp::CmpiObjectPathResult& result) override;
    void modifyInstance(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& path,
                        const CMPIInstance* instance, const char* const* properties) override;
    void deleteInstance(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& path) override;
    void execQuery(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& classPath, const char* query,
                   const char* language, const CmpiCpp::CmpiInstanceResult& result) override;

    void associators(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& path,
                     const CmpiCpp::CmpiName& associationClass, const CmpiCpp::CmpiName& resultClass,
                     const CmpiCpp::CmpiName& role, const CmpiCpp::CmpiName& resultRole, const char* const* properties,
                     const CmpiCpp::CmpiInstanceResult& result) override;
    void associatorNames(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& path,
                         const CmpiCpp::CmpiName& associationClass, const CmpiCpp::CmpiName& resultClass,
                         const CmpiCpp::CmpiName& role, const CmpiCpp::CmpiName& resultRole,
                         const CmpiCpp::CmpiObjectPathResult& result) override;
    void references(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& path,
                    const CmpiCpp::CmpiName& resultClass, const CmpiCpp::CmpiName& role, const char* const* properties,
                    const CmpiCpp::CmpiInstanceResult& result) override;
    void referenceNames(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& path,
                        const CmpiCpp::CmpiName& resultClass, const CmpiCpp::CmpiName& role,
                        const CmpiCpp::CmpiObjectPathResult& result) override;

    void authorizeFilter(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiSelectExp& filter,
                         const CmpiCpp::CmpiName& className, const CmpiCpp::CmpiObjectPath& classPath,
                         const char* owner) override;
    void mustPoll(const CmpiCpp::CmpiContext& context) override;
    void activateFilter(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiSelectExp& filter,
                        const CmpiCpp::CmpiName& className, const CmpiCpp::CmpiObjectPath& classPath,
                        bool firstActivation) override;
    void deactivateFilter(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiSelectExp& filter,
                          const CmpiCpp::CmpiName& className, const CmpiCpp::CmpiObjectPath& classPath,
                          bool lastDeactivation) override;
    void enableIndications(const CmpiCpp::CmpiContext& context) override;
    void disableIndications(const CmpiCpp::CmpiContext& context) override;

    void invokeMethod(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& path,
                      const CmpiCpp::CmpiName& method, const CmpiCpp::CmpiArgs& arguments,
                      const CmpiCpp::CmpiMethodResult& result) override;

private:
    Logger _logger;
};

} // namespace KDV
