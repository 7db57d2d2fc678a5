// The indication operations of a provider in CMPI order; getIndicationMI gives their C table. Filters and class names
// may be null or empty. Servers call these in any order and some of them never. By default filters are refused with
// "not supported" and the rest does nothing.
#pragma once

#include "cmpi/ProviderTables.h"
#include "cmpicpp/CmpiArgs.h"
#include "cmpicpp/CmpiName.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "cmpicpp/CmpiProvider.h"

namespace CmpiCpp {

class KDV_CMPICPP_API CmpiIndicationProvider : public virtual CmpiProvider {
public:
    CmpiIndicationProvider();
    ~CmpiIndicationProvider() override;

    virtual void authorizeFilter(const CmpiContext& context, const CmpiSelectExp& filter, const CmpiName& className,
                                 const CmpiObjectPath& classPath, const char* owner);
    virtual void mustPoll(const CmpiContext& context);
    virtual void activateFilter(const CmpiContext& context, const CmpiSelectExp& filter, const CmpiName& className,
                                const CmpiObjectPath& classPath, bool firstActivation);
    virtual void deactivateFilter(const CmpiContext& context, const CmpiSelectExp& filter, const CmpiName& className,
                                  const CmpiObjectPath& classPath, bool lastDeactivation);
    virtual void enableIndications(const CmpiContext& context);
    virtual void disableIndications(const CmpiContext& context);

    CMPIIndicationMI* getIndicationMI();

private:
    CMPIIndicationMI _table;
};

} // namespace CmpiCpp
