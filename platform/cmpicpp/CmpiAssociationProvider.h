// The association operations of a provider; getAssociationMI gives their C table. Null or empty class and role texts
// mean no condition. Defaults refuse with "not supported". See CmpiInstanceProvider.h for lifetimes and errors.
#pragma once

#include "cmpi/ProviderTables.h"
#include "cmpicpp/CmpiName.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "cmpicpp/CmpiProvider.h"
#include "cmpicpp/CmpiResults.h"

namespace CmpiCpp {

class KDV_CMPICPP_API CmpiAssociationProvider : public virtual CmpiProvider {
public:
    CmpiAssociationProvider();
    ~CmpiAssociationProvider() override;

    virtual void associators(const CmpiContext& context, const CmpiObjectPath& path, const CmpiName& associationClass,
                             const CmpiName& resultClass, const CmpiName& role, const CmpiName& resultRole,
                             const char* const* properties, const CmpiInstanceResult& result);
    virtual void associatorNames(const CmpiContext& context, const CmpiObjectPath& path,
                                 const CmpiName& associationClass, const CmpiName& resultClass, const CmpiName& role,
                                 const CmpiName& resultRole, const CmpiObjectPathResult& result);
    virtual void references(const CmpiContext& context, const CmpiObjectPath& path, const CmpiName& resultClass,
                            const CmpiName& role, const char* const* properties, const CmpiInstanceResult& result);
    virtual void referenceNames(const CmpiContext& context, const CmpiObjectPath& path, const CmpiName& resultClass,
                                const CmpiName& role, const CmpiObjectPathResult& result);

    CMPIAssociationMI* getAssociationMI();

private:
    CMPIAssociationMI _table;
};

} // namespace CmpiCpp
