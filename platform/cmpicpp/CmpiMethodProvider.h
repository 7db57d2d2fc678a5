// The extrinsic methods of a provider; getMethodMI gives their C table. The default refuses with "not supported".
#pragma once

#include "cmpi/ProviderTables.h"
#include "cmpicpp/CmpiArgs.h"
#include "cmpicpp/CmpiName.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "cmpicpp/CmpiProvider.h"
#include "cmpicpp/CmpiResults.h"

namespace CmpiCpp {

class KDV_CMPICPP_API CmpiMethodProvider : public virtual CmpiProvider {
public:
    CmpiMethodProvider();
    ~CmpiMethodProvider() override;

    virtual void invokeMethod(const CmpiContext& context, const CmpiObjectPath& path, const CmpiName& method,
                              const CmpiArgs& arguments, const CmpiMethodResult& result);

    CMPIMethodMI* getMethodMI();

private:
    CMPIMethodMI _table;
};

} // namespace CmpiCpp
