// The function tables that a provider gives to a server, one per kind of operations. Every slot up to the table's
// ftVersion must be filled. Servers differ in the form of mustPoll (2.1 added the result argument): an implementation
// reads nothing after the context.
#pragma once

#include "cmpi/Broker.h"

extern "C" {

struct CMPIInstanceMIFT;
struct CMPIInstanceMI {
    const void* hdl;
    const CMPIInstanceMIFT* ft;
};

struct CMPIInstanceMIFT {
    CMPIVersion ftVersion;
    int miVersion;
    const char* miName;
    CMPIStatus (*cleanup)(CMPIInstanceMI* self, const CMPIContext* context, CMPIBoolean terminating);
    CMPIStatus (*enumerateInstanceNames)(CMPIInstanceMI* self, const CMPIContext* context, const CMPIResult* result,
                                         const CMPIObjectPath* classPath);
    CMPIStatus (*enumerateInstances)(CMPIInstanceMI* self, const CMPIContext* context, const CMPIResult* result,
                                     const CMPIObjectPath* classPath, const char** properties);
    CMPIStatus (*getInstance)(CMPIInstanceMI* self, const CMPIContext* context, const CMPIResult* result,
                              const CMPIObjectPath* instPath, const char** properties);
    CMPIStatus (*createInstance)(CMPIInstanceMI* self, const CMPIContext* context, const CMPIResult* result,
                                 const CMPIObjectPath* classPath, const CMPIInstance* inst);
    CMPIStatus (*modifyInstance)(CMPIInstanceMI* self, const CMPIContext* context, const CMPIResult* result,
                                 const CMPIObjectPath* instPath, const CMPIInstance* modInst, const char** properties);
    CMPIStatus (*deleteInstance)(CMPIInstanceMI* self, const CMPIContext* context, const CMPIResult* result,
                                 const CMPIObjectPath* op);
    CMPIStatus (*execQuery)(CMPIInstanceMI* self, const CMPIContext* context, const CMPIResult* result,
                            const CMPIObjectPath* classPath, const char* query, const char* lang);
    CMPIStatus (*enumerateInstancesFiltered)(CMPIInstanceMI* self, const CMPIContext* context, const CMPIResult* result,
                                             const CMPIObjectPath* classPath, const char** properties,
                                             const char* filterQuerylanguage, const char* filterQuery,
                                             CMPIStatus* status); // since 2.1
};

struct CMPIAssociationMIFT;
struct CMPIAssociationMI {
    const void* hdl;
    const CMPIAssociationMIFT* ft;
};

struct CMPIAssociationMIFT {
    CMPIVersion ftVersion;
    int miVersion;
    const char* miName;
    CMPIStatus (*cleanup)(CMPIAssociationMI* self, const CMPIContext* context, CMPIBoolean terminating);
    CMPIStatus (*associators)(CMPIAssociationMI* self, const CMPIContext* context, const CMPIResult* result,
                              const CMPIObjectPath* instPath, const char* assocClass, const char* resultClass,
                              const char* role, const char* resultRole, const char** properties);
    CMPIStatus (*associatorNames)(CMPIAssociationMI* self, const CMPIContext* context, const CMPIResult* result,
                                  const CMPIObjectPath* instPath, const char* assocClass, const char* resultClass,
                                  const char* role, const char* resultRole);
    CMPIStatus (*references)(CMPIAssociationMI* self, const CMPIContext* context, const CMPIResult* result,
                             const CMPIObjectPath* instPath, const char* resultClass, const char* role,
                             const char** properties);
    CMPIStatus (*referenceNames)(CMPIAssociationMI* self, const CMPIContext* context, const CMPIResult* result,
                                 const CMPIObjectPath* instPath, const char* resultClass, const char* role);
    CMPIStatus (*associatorsFiltered)(CMPIAssociationMI* self, const CMPIContext* context, const CMPIResult* result,
                                      const CMPIObjectPath* instPath, const char* assocClass, const char* resultClass,
                                      const char* role, const char* resultRole, const char** properties,
                                      const char* filterQueryLanguage, const char* filterQuery,
                                      CMPIBoolean continueOnError); // since 2.1
    CMPIStatus (*referencesFiltered)(CMPIAssociationMI* self, const CMPIContext* context, const CMPIResult* result,
                                     const CMPIObjectPath* instPath, const char* resultClass, const char* role,
                                     const char** properties, const char* filterQueryLanguage, const char* filterQuery,
                                     CMPIBoolean continueOnError); // since 2.1
};

struct CMPIMethodMIFT;
struct CMPIMethodMI {
    const void* hdl;
    const CMPIMethodMIFT* ft;
};

struct CMPIMethodMIFT {
    CMPIVersion ftVersion;
    int miVersion;
    const char* miName;
    CMPIStatus (*cleanup)(CMPIMethodMI* self, const CMPIContext* context, CMPIBoolean terminating);
    CMPIStatus (*invokeMethod)(CMPIMethodMI* self, const CMPIContext* context, const CMPIResult* result,
                               const CMPIObjectPath* objPath, const char* method, const CMPIArgs* in, CMPIArgs* out);
};

struct CMPIPropertyMIFT;
struct CMPIPropertyMI {
    const void* hdl;
    const CMPIPropertyMIFT* ft;
};

struct CMPIPropertyMIFT {
    CMPIVersion ftVersion;
    int miVersion;
    const char* miName;
    CMPIStatus (*cleanup)(CMPIPropertyMI* self, const CMPIContext* context, CMPIBoolean terminating);
    CMPIStatus (*setProperty)(CMPIPropertyMI* self, const CMPIContext* context, const CMPIResult* result,
                              const CMPIObjectPath* instPath, const char* name, CMPIData data);
    CMPIStatus (*getProperty)(CMPIPropertyMI* self, const CMPIContext* context, const CMPIResult* result,
                              const CMPIObjectPath* instPath, const char* name);
    CMPIStatus (*setPropertyWithOrigin)(CMPIPropertyMI* self, const CMPIContext* context, const CMPIResult* result,
                                        CMPIObjectPath* instPath, const char* name, CMPIData data,
                                        const char* origin); // since 2.0
};

struct CMPIIndicationMIFT;
struct CMPIIndicationMI {
    const void* hdl;
    const CMPIIndicationMIFT* ft;
};

struct CMPIIndicationMIFT {
    CMPIVersion ftVersion;
    int miVersion;
    const char* miName;
    CMPIStatus (*cleanup)(CMPIIndicationMI* self, const CMPIContext* context, CMPIBoolean terminating);
    CMPIStatus (*authorizeFilter)(CMPIIndicationMI* self, const CMPIContext* context, const CMPISelectExp* filter,
                                  const char* className, const CMPIObjectPath* classPath, const char* owner);
    CMPIStatus (*mustPoll)(CMPIIndicationMI* self, const CMPIContext* context, const CMPIResult* result,
                           const CMPISelectExp* filter, const char* className, const CMPIObjectPath* classPath);
    CMPIStatus (*activateFilter)(CMPIIndicationMI* self, const CMPIContext* context, const CMPISelectExp* filter,
                                 const char* className, const CMPIObjectPath* classPath, CMPIBoolean firstActivation);
    CMPIStatus (*deActivateFilter)(CMPIIndicationMI* self, const CMPIContext* context, const CMPISelectExp* filter,
                                   const char* className, const CMPIObjectPath* classPath,
                                   CMPIBoolean lastDeActiviation);
    CMPIStatus (*enableIndications)(CMPIIndicationMI* self, const CMPIContext* context);
    CMPIStatus (*disableIndications)(CMPIIndicationMI* self, const CMPIContext* context);
    CMPIStatus (*authorizeFilterCollection)(CMPIIndicationMI* self, const CMPIContext* context,
                                            const CMPIInstance* collInst); // since 2.1
    CMPIStatus (*activateFilterCollection)(CMPIIndicationMI* self, const CMPIContext* context,
                                           const CMPIInstance* collInst, CMPIBoolean firstActivation); // since 2.1
    CMPIStatus (*deActivateFilterCollection)(CMPIIndicationMI* self, const CMPIContext* context,
                                             const CMPIInstance* collInst, CMPIBoolean lastDeActivation); // since 2.1
};

} // extern "C"
