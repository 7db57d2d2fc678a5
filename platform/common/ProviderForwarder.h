// A provider that serves all four interfaces by forwarding every operation to another provider. Operations of an
// interface that the other lacks are refused as "not supported". The other is not owned and outlives the forwarder.
// Has no state that changes, so it is as thread-safe as the other is.
#pragma once

#include "cmpicpp/CmpiAssociationProvider.h"
#include "cmpicpp/CmpiIndicationProvider.h"
#include "cmpicpp/CmpiInstanceProvider.h"
#include "cmpicpp/CmpiMethodProvider.h"
#include "common/Export.h"

namespace KDV {

class KDV_COMMON_API ProviderForwarder : public CmpiCpp::CmpiInstanceProvider,
                                         public CmpiCpp::CmpiAssociationProvider,
                                         public CmpiCpp::CmpiIndicationProvider,
                                         public CmpiCpp::CmpiMethodProvider {
public:
    // Throws std::invalid_argument without a provider.
    explicit ProviderForwarder(CmpiCpp::CmpiProvider* provider);
    ~ProviderForwarder() override;

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

protected:
    // Comes before each forwarded operation, on the server's thread; does nothing here.
    virtual void entering(const CmpiCpp::CmpiContext& context);

private:
    template <class Interface>
    Interface& forward(Interface* provider, const CmpiCpp::CmpiContext& context, const char* operation);

    CmpiCpp::CmpiProvider& _provider;
    CmpiCpp::CmpiInstanceProvider* _instances; // null: the other does not serve them
    CmpiCpp::CmpiAssociationProvider* _associations;
    CmpiCpp::CmpiIndicationProvider* _indications;
    CmpiCpp::CmpiMethodProvider* _methods;
};

} // namespace KDV
