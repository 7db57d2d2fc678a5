// The four functions through which an object manager obtains the provider's function tables, one for each interface of
// the one provider object. They are C functions: nothing is thrown out of them, a null table is the answer to every
// failure. Servers pass a fourth parameter, a status that starts as success; it is neither read nor written, so a
// caller with three arguments is served too.
#include "cmpi/ProviderTables.h"
#include "cmpicpp/CmpiAssociationProvider.h"
#include "cmpicpp/CmpiIndicationProvider.h"
#include "cmpicpp/CmpiInstanceProvider.h"
#include "cmpicpp/CmpiMethodProvider.h"
#include "cmpicpp/CmpiStatus.h"
#include "logger/Logger.h"
#include "provider/ProviderRegistry.h"

#include <exception>

using namespace CmpiCpp;

namespace {

template <class Interface, class Table>
Table* tableOf(const char* entryPoint, const CMPIBroker* broker, const CMPIContext* context, const char* name,
               Table* (Interface::*table)())
{
    const Logger logger(name);
    try {
        CmpiProvider* provider = KDV::obtainProvider(broker, CmpiContext(context), name);
        auto* served = dynamic_cast<Interface*>(provider);
        return served ? (served->*table)() : nullptr;
    } catch (const CmpiStatus& status) {
        logger.error("%s: %s constructor threw CmpiStatus exception: %s", entryPoint, name, status.str());
    } catch (const std::exception& failure) {
        logger.error("%s: %s constructor threw std::exception: %s", entryPoint, name, failure.what());
    } catch (...) {
        logger.error("%s: %s constructor threw unknown exception", entryPoint, name);
    }
    return nullptr;
}

// Even the logger may find no memory.
template <class Interface, class Table>
Table* answer(const char* entryPoint, const CMPIBroker* broker, const CMPIContext* context, const char* name,
              Table* (Interface::*table)()) noexcept
{
    try {
        return tableOf(entryPoint, broker, context, name ? name : "", table);
    } catch (...) {
        return nullptr;
    }
}

} // namespace

#define KDV_ENTRY_POINT extern "C" __attribute__((visibility("default")))

KDV_ENTRY_POINT CMPIInstanceMI* _Generic_Create_InstanceMI(const CMPIBroker* broker, const CMPIContext* context,
                                                           const char* name)
{
    return answer(__func__, broker, context, name, &CmpiInstanceProvider::getInstanceMI);
}

KDV_ENTRY_POINT CMPIAssociationMI* _Generic_Create_AssociationMI(const CMPIBroker* broker, const CMPIContext* context,
                                                                 const char* name)
{
    return answer(__func__, broker, context, name, &CmpiAssociationProvider::getAssociationMI);
}

KDV_ENTRY_POINT CMPIMethodMI* _Generic_Create_MethodMI(const CMPIBroker* broker, const CMPIContext* context,
                                                       const char* name)
{
    return answer(__func__, broker, context, name, &CmpiMethodProvider::getMethodMI);
}

KDV_ENTRY_POINT CMPIIndicationMI* _Generic_Create_IndicationMI(const CMPIBroker* broker, const CMPIContext* context,
                                                               const char* name)
{
    return answer(__func__, broker, context, name, &CmpiIndicationProvider::getIndicationMI);
}
