// The objects that a broker hands to a provider: each is a private handle and a table of functions. Tables only ever
// grow at their end; a slot marked with a later version may be missing or null, so callers check ftVersion and the
// pointer before they use it. Who owns an object is told by the function that gave it (see cmpicpp).
#pragma once

#include "cmpi/Types.h"

extern "C" {

struct CMPIObjectPathFT;
struct CMPIObjectPath {
    const void* hdl;
    const CMPIObjectPathFT* ft;
};

struct CMPIObjectPathFT {
    CMPIVersion ftVersion;
    CMPIStatus (*release)(CMPIObjectPath* self);
    CMPIObjectPath* (*clone)(const CMPIObjectPath* self, CMPIStatus* status);
    CMPIStatus (*setNameSpace)(const CMPIObjectPath* self, const char* ns);
    CMPIString* (*getNameSpace)(const CMPIObjectPath* self, CMPIStatus* status);
    CMPIStatus (*setHostname)(const CMPIObjectPath* self, const char* hn);
    CMPIString* (*getHostname)(const CMPIObjectPath* self, CMPIStatus* status);
    CMPIStatus (*setClassName)(const CMPIObjectPath* self, const char* cn);
    CMPIString* (*getClassName)(const CMPIObjectPath* self, CMPIStatus* status);
    CMPIStatus (*addKey)(const CMPIObjectPath* self, const char* key, const CMPIValue* value, CMPIType type);
    CMPIData (*getKey)(const CMPIObjectPath* self, const char* key, CMPIStatus* status);
    CMPIData (*getKeyAt)(const CMPIObjectPath* self, CMPICount index, CMPIString** name, CMPIStatus* status);
    CMPICount (*getKeyCount)(const CMPIObjectPath* self, CMPIStatus* status);
    CMPIStatus (*setNameSpaceFromObjectPath)(const CMPIObjectPath* self, const CMPIObjectPath* src);
    CMPIStatus (*setHostAndNameSpaceFromObjectPath)(const CMPIObjectPath* self, const CMPIObjectPath* src);
    CMPIData (*getClassQualifier)(const CMPIObjectPath* self, const char* qName, CMPIStatus* status);
    CMPIData (*getPropertyQualifier)(const CMPIObjectPath* self, const char* pName, const char* qName,
                                     CMPIStatus* status);
    CMPIData (*getMethodQualifier)(const CMPIObjectPath* self, const char* methodName, const char* qName,
                                   CMPIStatus* status);
    CMPIData (*getParameterQualifier)(const CMPIObjectPath* self, const char* mName, const char* pName,
                                      const char* qName, CMPIStatus* status);
    CMPIString* (*toString)(const CMPIObjectPath* self, CMPIStatus* status);
};

struct CMPIInstanceFT;
struct CMPIInstance {
    const void* hdl;
    const CMPIInstanceFT* ft;
};

struct CMPIInstanceFT {
    CMPIVersion ftVersion;
    CMPIStatus (*release)(CMPIInstance* self);
    CMPIInstance* (*clone)(const CMPIInstance* self, CMPIStatus* status);
    CMPIData (*getProperty)(const CMPIInstance* self, const char* name, CMPIStatus* status);
    CMPIData (*getPropertyAt)(const CMPIInstance* self, CMPICount index, CMPIString** name, CMPIStatus* status);
    CMPICount (*getPropertyCount)(const CMPIInstance* self, CMPIStatus* status);
    CMPIStatus (*setProperty)(const CMPIInstance* self, const char* name, const CMPIValue* value, CMPIType type);
    CMPIObjectPath* (*getObjectPath)(const CMPIInstance* self, CMPIStatus* status);
    CMPIStatus (*setPropertyFilter)(const CMPIInstance* self, const char** properties, const char** keyList);
    CMPIStatus (*setObjectPath)(const CMPIInstance* self, const CMPIObjectPath* op);
    CMPIStatus (*setPropertyWithOrigin)(const CMPIInstance* self, const char* name, const CMPIValue* value,
                                        CMPIType type, const char* origin); // since 2.0
};

struct CMPIArgsFT;
struct CMPIArgs {
    const void* hdl;
    const CMPIArgsFT* ft;
};

struct CMPIArgsFT {
    CMPIVersion ftVersion;
    CMPIStatus (*release)(CMPIArgs* self);
    CMPIArgs* (*clone)(const CMPIArgs* self, CMPIStatus* status);
    CMPIStatus (*addArg)(const CMPIArgs* self, const char* name, const CMPIValue* value, CMPIType type);
    CMPIData (*getArg)(const CMPIArgs* self, const char* name, CMPIStatus* status);
    CMPIData (*getArgAt)(const CMPIArgs* self, CMPICount index, CMPIString** name, CMPIStatus* status);
    CMPICount (*getArgCount)(const CMPIArgs* self, CMPIStatus* status);
};

struct CMPIStringFT;
struct CMPIString {
    const void* hdl;
    const CMPIStringFT* ft;
};

struct CMPIStringFT {
    CMPIVersion ftVersion;
    CMPIStatus (*release)(CMPIString* self);
    CMPIString* (*clone)(const CMPIString* self, CMPIStatus* status);
    const char* (*getCharPtr)(const CMPIString* self, CMPIStatus* status);
    char* (*newCharsCP)(const CMPIString* self, CMPICodepageID cpid, CMPIStatus* status); // since 2.1
};

struct CMPIArrayFT;
struct CMPIArray {
    const void* hdl;
    const CMPIArrayFT* ft;
};

struct CMPIArrayFT {
    CMPIVersion ftVersion;
    CMPIStatus (*release)(CMPIArray* self);
    CMPIArray* (*clone)(const CMPIArray* self, CMPIStatus* status);
    CMPICount (*getSize)(const CMPIArray* self, CMPIStatus* status);
    CMPIType (*getSimpleType)(const CMPIArray* self, CMPIStatus* status);
    CMPIData (*getElementAt)(const CMPIArray* self, CMPICount index, CMPIStatus* status);
    CMPIStatus (*setElementAt)(const CMPIArray* self, CMPICount index, const CMPIValue* value, CMPIType type);
};

struct CMPIEnumerationFT;
struct CMPIEnumeration {
    const void* hdl;
    const CMPIEnumerationFT* ft;
};

struct CMPIEnumerationFT {
    CMPIVersion ftVersion;
    CMPIStatus (*release)(CMPIEnumeration* self);
    CMPIEnumeration* (*clone)(const CMPIEnumeration* self, CMPIStatus* status);
    CMPIData (*getNext)(const CMPIEnumeration* self, CMPIStatus* status);
    CMPIBoolean (*hasNext)(const CMPIEnumeration* self, CMPIStatus* status);
    CMPIArray* (*toArray)(const CMPIEnumeration* self, CMPIStatus* status);
};

struct CMPIDateTimeFT;
struct CMPIDateTime {
    const void* hdl;
    const CMPIDateTimeFT* ft;
};

struct CMPIDateTimeFT {
    CMPIVersion ftVersion;
    CMPIStatus (*release)(CMPIDateTime* self);
    CMPIDateTime* (*clone)(const CMPIDateTime* self, CMPIStatus* status);
    CMPIUint64 (*getBinaryFormat)(const CMPIDateTime* self, CMPIStatus* status);
    CMPIString* (*getStringFormat)(const CMPIDateTime* self, CMPIStatus* status);
    CMPIBoolean (*isInterval)(const CMPIDateTime* self, CMPIStatus* status);
};

struct CMPIContextFT;
struct CMPIContext {
    const void* hdl;
    const CMPIContextFT* ft;
};

struct CMPIContextFT {
    CMPIVersion ftVersion;
    CMPIStatus (*release)(CMPIContext* self);
    CMPIContext* (*clone)(const CMPIContext* self, CMPIStatus* status);
    CMPIData (*getEntry)(const CMPIContext* self, const char* name, CMPIStatus* status);
    CMPIData (*getEntryAt)(const CMPIContext* self, CMPICount index, CMPIString** name, CMPIStatus* status);
    CMPICount (*getEntryCount)(const CMPIContext* self, CMPIStatus* status);
    CMPIStatus (*addEntry)(const CMPIContext* self, const char* name, const CMPIValue* value, CMPIType type);
};

struct CMPIResultFT;
struct CMPIResult {
    const void* hdl;
    const CMPIResultFT* ft;
};

struct CMPIResultFT {
    CMPIVersion ftVersion;
    CMPIStatus (*release)(CMPIResult* self);
    CMPIResult* (*clone)(const CMPIResult* self, CMPIStatus* status);
    CMPIStatus (*returnData)(const CMPIResult* self, const CMPIValue* value, CMPIType type);
    CMPIStatus (*returnInstance)(const CMPIResult* self, const CMPIInstance* inst);
    CMPIStatus (*returnObjectPath)(const CMPIResult* self, const CMPIObjectPath* op);
    CMPIStatus (*returnDone)(const CMPIResult* self);
    CMPIStatus (*returnError)(const CMPIResult* self, const CMPIError* er); // since 2.0
};

struct CMPISelectExpFT;
struct CMPISelectExp {
    const void* hdl;
    const CMPISelectExpFT* ft;
};

struct CMPISelectExpFT {
    CMPIVersion ftVersion;
    CMPIStatus (*release)(CMPISelectExp* self);
    CMPISelectExp* (*clone)(const CMPISelectExp* self, CMPIStatus* status);
    CMPIBoolean (*evaluate)(const CMPISelectExp* self, const CMPIInstance* inst, CMPIStatus* status);
    CMPIString* (*getString)(const CMPISelectExp* self, CMPIStatus* status);
    CMPISelectCond* (*getDOC)(const CMPISelectExp* self, CMPIStatus* status);
    CMPISelectCond* (*getCOD)(const CMPISelectExp* self, CMPIStatus* status);
    CMPIBoolean (*evaluateUsingAccessor)(const CMPISelectExp* self, CMPIAccessor* accessor, void* parm,
                                         CMPIStatus* status);
};

struct CMPISelectCondFT;
struct CMPISelectCond {
    const void* hdl;
    const CMPISelectCondFT* ft;
};

struct CMPISelectCondFT {
    CMPIVersion ftVersion;
    CMPIStatus (*release)(CMPISelectCond* self);
    CMPISelectCond* (*clone)(const CMPISelectCond* self, CMPIStatus* status);
    CMPICount (*getCountAndType)(const CMPISelectCond* self, int* type, CMPIStatus* status);
    CMPISubCond* (*getSubCondAt)(const CMPISelectCond* self, CMPICount index, CMPIStatus* status);
};

struct CMPISubCondFT;
struct CMPISubCond {
    const void* hdl;
    const CMPISubCondFT* ft;
};

struct CMPISubCondFT {
    CMPIVersion ftVersion;
    CMPIStatus (*release)(CMPISubCond* self);
    CMPISubCond* (*clone)(const CMPISubCond* self, CMPIStatus* status);
    CMPICount (*getCount)(const CMPISubCond* self, CMPIStatus* status);
    CMPIPredicate* (*getPredicateAt)(const CMPISubCond* self, CMPICount index, CMPIStatus* status);
    CMPIPredicate* (*getPredicate)(const CMPISubCond* self, const char* name, CMPIStatus* status);
};

struct CMPIPredicateFT;
struct CMPIPredicate {
    const void* hdl;
    const CMPIPredicateFT* ft;
};

struct CMPIPredicateFT {
    CMPIVersion ftVersion;
    CMPIStatus (*release)(CMPIPredicate* self);
    CMPIPredicate* (*clone)(const CMPIPredicate* self, CMPIStatus* status);
    CMPIStatus (*getData)(const CMPIPredicate* self, CMPIType* type, CMPIPredOp* prop, CMPIString** lhs,
                          CMPIString** rhs);
    CMPIBoolean (*evaluateUsingAccessor)(const CMPIPredicate* self, CMPIAccessor* accessorFnc, void* parm,
                                         CMPIStatus* status);
};

struct CMPIErrorFT;
struct CMPIError {
    const void* hdl;
    const CMPIErrorFT* ft;
};

struct CMPIErrorFT {
    CMPIVersion ftVersion;
    CMPIStatus (*release)(CMPIError* self);
    CMPIError* (*clone)(const CMPIError* self, CMPIStatus* status);
    CMPIErrorType (*getErrorType)(const CMPIError* self, CMPIStatus* status);
    CMPIString* (*getOtherErrorType)(const CMPIError* self, CMPIStatus* status);
    CMPIString* (*getOwningEntity)(const CMPIError* self, CMPIStatus* status);
    CMPIString* (*getMessageID)(const CMPIError* self, CMPIStatus* status);
    CMPIString* (*getMessage)(const CMPIError* self, CMPIStatus* status);
    CMPIErrorSeverity (*getPerceivedSeverity)(const CMPIError* self, CMPIStatus* status);
    CMPIErrorProbableCause (*getProbableCause)(const CMPIError* self, CMPIStatus* status);
    CMPIString* (*getProbableCauseDescription)(const CMPIError* self, CMPIStatus* status);
    CMPIArray* (*getRecommendedActions)(const CMPIError* self, CMPIStatus* status);
    CMPIString* (*getErrorSource)(const CMPIError* self, CMPIStatus* status);
    CMPIErrorSrcFormat (*getErrorSourceFormat)(const CMPIError* self, CMPIStatus* status);
    CMPIString* (*getOtherErrorSourceFormat)(const CMPIError* self, CMPIStatus* status);
    CMPIrc (*getCIMStatusCode)(const CMPIError* self, CMPIStatus* status);
    CMPIString* (*getCIMStatusCodeDescription)(const CMPIError* self, CMPIStatus* status);
    CMPIArray* (*getMessageArguments)(const CMPIError* self, CMPIStatus* status);
    CMPIStatus (*setErrorType)(const CMPIError* self, CMPIErrorType et);
    CMPIStatus (*setOtherErrorType)(const CMPIError* self, const char* ot);
    CMPIStatus (*setProbableCauseDescription)(const CMPIError* self, const char* pcd);
    CMPIStatus (*setRecommendedActions)(const CMPIError* self, const CMPIArray* ra);
    CMPIStatus (*setErrorSource)(const CMPIError* self, const char* es);
    CMPIStatus (*setErrorSourceFormat)(const CMPIError* self, CMPIErrorSrcFormat esf);
    CMPIStatus (*setOtherErrorSourceFormat)(const CMPIError* self, const char* oef);
    CMPIStatus (*setCIMStatusCodeDescription)(const CMPIError* self, const char* scd);
    CMPIStatus (*setMessageArguments)(const CMPIError* self, const CMPIArray* values);
};

struct CMPIPropertyListFT;
struct CMPIPropertyList {
    const void* hdl;
    const CMPIPropertyListFT* ft;
};

struct CMPIPropertyListFT {
    CMPIVersion ftVersion;
    CMPIStatus (*release)(CMPIPropertyList* self);
    CMPIPropertyList* (*clone)(const CMPIPropertyList* self, CMPIStatus* status);
    CMPIBoolean (*isPropertyInList)(const CMPIPropertyList* self, const char* pname, CMPIStatus* status);
    const char** (*getProperties)(const CMPIPropertyList* self, CMPIStatus* status);
};

struct CMPIEnumerationFilterFT;
struct CMPIEnumerationFilter {
    const void* hdl;
    const CMPIEnumerationFilterFT* ft;
};

struct CMPIEnumerationFilterFT {
    CMPIVersion ftVersion;
    CMPIStatus (*release)(CMPIEnumerationFilter* self);
    CMPIEnumerationFilter* (*clone)(const CMPIEnumerationFilter* self, CMPIStatus* status);
    CMPIBoolean (*match)(const CMPIEnumerationFilter* self, const CMPIInstance* inst, CMPIStatus* status);
};

} // extern "C"
