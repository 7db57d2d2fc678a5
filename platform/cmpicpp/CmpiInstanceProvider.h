// The instance operations of a provider. getInstanceMI gives the C table through which a server calls them; every call
// through it is a C boundary at which exceptions become a status. Defaults refuse with "not supported".
// Property lists are null-terminated, null for everything; they and every path and result live for the call only.
#pragma once

#include "cmpi/ProviderTables.h"
#include "cmpicpp/CmpiInstance.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "cmpicpp/CmpiProvider.h"
#include "cmpicpp/CmpiResults.h"

namespace CmpiCpp {

class KDV_CMPICPP_API CmpiInstanceProvider : public virtual CmpiProvider {
public:
    CmpiInstanceProvider();
    ~CmpiInstanceProvider() override;

    virtual void enumInstanceNames(const CmpiContext& context, const CmpiObjectPath& classPath,
                                   const CmpiObjectPathResult& result);
    virtual void enumInstances(const CmpiContext& context, const CmpiObjectPath& classPath,
                               const char* const* properties, const CmpiInstanceResult& result);
    virtual void getInstance(const CmpiContext& context, const CmpiObjectPath& path, const char* const* properties,
                             const CmpiInstanceResult& result);
    virtual void createInstance(const CmpiContext& context, const CmpiObjectPath& path, const CMPIInstance* instance,
                                const CmpiObjectPathResult& result);
    virtual void modifyInstance(const CmpiContext& context, const CmpiObjectPath& path, const CMPIInstance* instance,
                                const char* const* properties);
    virtual void deleteInstance(const CmpiContext& context, const CmpiObjectPath& path);
    virtual void execQuery(const CmpiContext& context, const CmpiObjectPath& classPath, const char* query,
                           const char* language, const CmpiInstanceResult& result);

    CMPIInstanceMI* getInstanceMI(); // lives as long as the provider

private:
    CMPIInstanceMI _table;
};

} // namespace CmpiCpp
