// The broker as a provider sees it. The object belongs to the server and may be larger than declared here: keep the
// pointer, never a copy. mft is null in most servers, and slots of later versions may lie beyond a table's end.
#pragma once

#include "cmpi/Objects.h"

#include <cstddef>
#include <ctime>

extern "C" {

struct CMPIBrokerFT;
struct CMPIBrokerEncFT;
struct CMPIBrokerExtFT;
struct CMPIBrokerMemFT;

struct CMPIBroker {
    const void* hdl;
    const CMPIBrokerFT* bft;
    const CMPIBrokerEncFT* eft;
    const CMPIBrokerExtFT* xft;
    const CMPIBrokerMemFT* mft; // since 2.0
};

struct CMPIBrokerFT {
    unsigned int brokerCapabilities;
    CMPIVersion brokerVersion;
    const char* brokerName;
    CMPIContext* (*prepareAttachThread)(const CMPIBroker* broker, const CMPIContext* context);
    CMPIStatus (*attachThread)(const CMPIBroker* broker, const CMPIContext* context);
    CMPIStatus (*detachThread)(const CMPIBroker* broker, const CMPIContext* context);
    CMPIStatus (*deliverIndication)(const CMPIBroker* broker, const CMPIContext* context, const char* ns,
                                    const CMPIInstance* ind);
    CMPIEnumeration* (*enumerateInstanceNames)(const CMPIBroker* broker, const CMPIContext* context,
                                               const CMPIObjectPath* classPath, CMPIStatus* status);
    CMPIInstance* (*getInstance)(const CMPIBroker* broker, const CMPIContext* context, const CMPIObjectPath* instPath,
                                 const char** properties, CMPIStatus* status);
    CMPIObjectPath* (*createInstance)(const CMPIBroker* broker, const CMPIContext* context,
                                      const CMPIObjectPath* classPath, const CMPIInstance* newInst, CMPIStatus* status);
    CMPIStatus (*modifyInstance)(const CMPIBroker* broker, const CMPIContext* context, const CMPIObjectPath* instPath,
                                 const CMPIInstance* modInst, const char** properties);
    CMPIStatus (*deleteInstance)(const CMPIBroker* broker, const CMPIContext* context, const CMPIObjectPath* instPath);
    CMPIEnumeration* (*execQuery)(const CMPIBroker* broker, const CMPIContext* context, const CMPIObjectPath* classPath,
                                  const char* query, const char* lang, CMPIStatus* status);
    CMPIEnumeration* (*enumerateInstances)(const CMPIBroker* broker, const CMPIContext* context,
                                           const CMPIObjectPath* classPath, const char** properties,
                                           CMPIStatus* status);
    CMPIEnumeration* (*associators)(const CMPIBroker* broker, const CMPIContext* context,
                                    const CMPIObjectPath* instPath, const char* assocClass, const char* resultClass,
                                    const char* role, const char* resultRole, const char** properties,
                                    CMPIStatus* status);
    CMPIEnumeration* (*associatorNames)(const CMPIBroker* broker, const CMPIContext* context,
                                        const CMPIObjectPath* instPath, const char* assocClass, const char* resultClass,
                                        const char* role, const char* resultRole, CMPIStatus* status);
    CMPIEnumeration* (*references)(const CMPIBroker* broker, const CMPIContext* context, const CMPIObjectPath* instPath,
                                   const char* resultClass, const char* role, const char** properties,
                                   CMPIStatus* status);
    CMPIEnumeration* (*referenceNames)(const CMPIBroker* broker, const CMPIContext* context,
                                       const CMPIObjectPath* instPath, const char* resultClass, const char* role,
                                       CMPIStatus* status);
    CMPIData (*invokeMethod)(const CMPIBroker* broker, const CMPIContext* context, const CMPIObjectPath* objPath,
                             const char* method, const CMPIArgs* in, CMPIArgs* out, CMPIStatus* status);
    CMPIStatus (*setProperty)(const CMPIBroker* broker, const CMPIContext* context, const CMPIObjectPath* instPath,
                              const char* name, const CMPIValue* value, CMPIType type);
    CMPIData (*getProperty)(const CMPIBroker* broker, const CMPIContext* context, const CMPIObjectPath* instPath,
                            const char* name, CMPIStatus* status);
    CMPIEnumeration* (*enumerateInstancesFiltered)(const CMPIBroker* broker, const CMPIContext* context,
                                                   const CMPIObjectPath* classPath, const char** properties,
                                                   const char* filterQueryLanguage, const char* filterQuery,
                                                   CMPIStatus* status); // since 2.1
    CMPIEnumeration* (*associatorsFiltered)(const CMPIBroker* broker, const CMPIContext* context,
                                            const CMPIObjectPath* instPath, const char* assocClass,
                                            const char* resultClass, const char* role, const char* resultRole,
                                            const char** properties, const char* filterQueryLanguage,
                                            const char* filterQuery, CMPIStatus* status); // since 2.1
    CMPIEnumeration* (*referencesFiltered)(const CMPIBroker* broker, const CMPIContext* context,
                                           const CMPIObjectPath* instPath, const char* resultClass, const char* role,
                                           const char** properties, const char* filterQueryLanguage,
                                           const char* filterQuery, CMPIStatus* status); // since 2.1
};

struct CMPIBrokerEncFT {
    CMPIVersion ftVersion;
    CMPIInstance* (*newInstance)(const CMPIBroker* broker, const CMPIObjectPath* instPath, CMPIStatus* status);
    CMPIObjectPath* (*newObjectPath)(const CMPIBroker* broker, const char* ns, const char* cn, CMPIStatus* status);
    CMPIArgs* (*newArgs)(const CMPIBroker* broker, CMPIStatus* status);
    CMPIString* (*newString)(const CMPIBroker* broker, const char* data, CMPIStatus* status);
    CMPIArray* (*newArray)(const CMPIBroker* broker, CMPICount size, CMPIType type, CMPIStatus* status);
    CMPIDateTime* (*newDateTime)(const CMPIBroker* broker, CMPIStatus* status);
    CMPIDateTime* (*newDateTimeFromBinary)(const CMPIBroker* broker, CMPIUint64 binTime, CMPIBoolean interval,
                                           CMPIStatus* status);
    CMPIDateTime* (*newDateTimeFromChars)(const CMPIBroker* broker, const char* datetime, CMPIStatus* status);
    CMPISelectExp* (*newSelectExp)(const CMPIBroker* broker, const char* query, const char* lang,
                                   CMPIArray** projection, CMPIStatus* status);
    CMPIBoolean (*classPathIsA)(const CMPIBroker* broker, const CMPIObjectPath* classPath, const char* className,
                                CMPIStatus* status);
    CMPIString* (*toString)(const CMPIBroker* broker, const void* object, CMPIStatus* status);
    CMPIBoolean (*isOfType)(const CMPIBroker* broker, const void* object, const char* type, CMPIStatus* status);
    CMPIString* (*getType)(const CMPIBroker* broker, const void* object, CMPIStatus* status);
    CMPIString* (*getMessage)(const CMPIBroker* broker, const char* msgId, const char* defMsg, CMPIStatus* status,
                              CMPICount count, ...);
    CMPIStatus (*logMessage)(const CMPIBroker* broker, CMPISeverity severity, const char* id, const char* text,
                             const CMPIString* string);
    CMPIStatus (*trace)(const CMPIBroker* broker, CMPILevel level, const char* component, const char* text,
                        const CMPIString* string);
    CMPIError* (*newCMPIError)(const CMPIBroker* broker, const char* owner, const char* msgID, const char* msg,
                               CMPIErrorSeverity sev, CMPIErrorProbableCause pc, CMPIrc cimStatusCode,
                               CMPIStatus* status); // since 2.0
    CMPIStatus (*openMessageFile)(const CMPIBroker* broker, const char* msgFile,
                                  CMPIMsgFileHandle* msgFileHandle);                           // since 2.0
    CMPIStatus (*closeMessageFile)(const CMPIBroker* broker, CMPIMsgFileHandle msgFileHandle); // since 2.0
    CMPIString* (*getMessage2)(const CMPIBroker* broker, const char* msgId, CMPIMsgFileHandle msgFileHandle,
                               const char* defMsg, CMPIStatus* status, CMPICount count, ...); // since 2.0
    CMPIPropertyList* (*newPropertyList)(const CMPIBroker* broker, const char** properties,
                                         CMPIStatus* status); // since 2.1
    CMPIString* (*newStringCP)(const CMPIBroker* broker, const char* data, CMPICodepageID cpid,
                               CMPIStatus* status); // since 2.1
    CMPIEnumerationFilter* (*newEnumerationFilter)(const CMPIBroker* broker, const char* filterQueryLanguage,
                                                   const char* filterQuery, CMPIStatus* status); // since 2.1
};

struct CMPIBrokerExtFT {
    CMPIVersion ftVersion;
    char* (*resolveFileName)(const char* libName);
    CMPI_THREAD_TYPE (*newThread)(CMPIThreadFunc start, void* parm, int detached);
    int (*joinThread)(CMPI_THREAD_TYPE thread, CMPI_THREAD_RETURN* retval);
    int (*exitThread)(CMPI_THREAD_RETURN return_code);
    int (*cancelThread)(CMPI_THREAD_TYPE thread);
    int (*threadSleep)(CMPIUint32 msec);
    int (*threadOnce)(int* once, CMPIThreadOnceFunc function);
    int (*createThreadKey)(CMPI_THREAD_KEY_TYPE* key, CMPIThreadKeyCleanupFunc cleanup);
    int (*destroyThreadKey)(CMPI_THREAD_KEY_TYPE key);
    void* (*getThreadSpecific)(CMPI_THREAD_KEY_TYPE key);
    int (*setThreadSpecific)(CMPI_THREAD_KEY_TYPE key, void* value);
    CMPI_MUTEX_TYPE (*newMutex)(int opt);
    void (*destroyMutex)(CMPI_MUTEX_TYPE mutex);
    void (*lockMutex)(CMPI_MUTEX_TYPE mutex);
    void (*unlockMutex)(CMPI_MUTEX_TYPE mutex);
    CMPI_COND_TYPE (*newCondition)(int opt);
    void (*destroyCondition)(CMPI_COND_TYPE cond);
    int (*condWait)(CMPI_COND_TYPE cond, CMPI_MUTEX_TYPE mutex);
    int (*timedCondWait)(CMPI_COND_TYPE cond, CMPI_MUTEX_TYPE mutex, struct timespec* wait);
    int (*signalCondition)(CMPI_COND_TYPE cond);
    int (*destroyMutex2)(CMPI_MUTEX_TYPE mutex);   // since 2.1
    int (*lockMutex2)(CMPI_MUTEX_TYPE mutex);      // since 2.1
    int (*unlockMutex2)(CMPI_MUTEX_TYPE mutex);    // since 2.1
    int (*destroyCondition2)(CMPI_COND_TYPE cond); // since 2.1
};

struct CMPIBrokerMemFT {
    CMPIVersion ftVersion;
    CMPIGcStat* (*mark)(const CMPIBroker* broker, CMPIStatus* status);
    CMPIStatus (*release)(const CMPIBroker* broker, const CMPIGcStat* gc);
    void* (*cmpiMalloc)(const CMPIBroker* broker, size_t size);
    void* (*cmpiCalloc)(const CMPIBroker* broker, size_t nElems, size_t sizeElem);
    void* (*cmpiRealloc)(const CMPIBroker* broker, void* ptr, size_t size);
    char* (*cmpiStrDup)(const CMPIBroker* broker, const char* str);
    void (*cmpiFree)(const CMPIBroker* broker, void* ptr);
    void (*freeInstance)(const CMPIBroker* broker, CMPIInstance* inst);
    void (*freeObjectPath)(const CMPIBroker* broker, CMPIObjectPath* obj);
    void (*freeArgs)(const CMPIBroker* broker, CMPIArgs* args);
    void (*freeString)(const CMPIBroker* broker, CMPIString* str);
    void (*freeArray)(const CMPIBroker* broker, CMPIArray* array);
    void (*freeDateTime)(const CMPIBroker* broker, CMPIDateTime* dt);
    void (*freeSelectExp)(const CMPIBroker* broker, CMPISelectExp* se);
    void (*freeChars)(const CMPIBroker* broker, char* chars); // since 2.1
};

} // extern "C"
