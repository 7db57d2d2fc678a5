// A provider library for the tests of ProviderModule: two things to enumerate, and answers to cleanup that its name
// chooses.
#include "cmpi/ProviderTables.h"

#include <string>

namespace {

const CMPIBroker* broker = nullptr;
bool stays = false;
int cleanups = 0;
CMPIStatus ok() { return {CMPI_RC_OK, nullptr}; }
CMPIStatus unsupported() { return {CMPI_RC_ERR_NOT_SUPPORTED, nullptr}; }

CMPIStatus cleaned(CMPIBoolean terminating)
{
    ++cleanups;
    return {stays && !terminating ? CMPI_RC_DO_NOT_UNLOAD : CMPI_RC_OK, nullptr};
}

CMPIStatus cleanupInstance(CMPIInstanceMI*, const CMPIContext*, CMPIBoolean terminating)
{
    return cleaned(terminating);
}
CMPIStatus cleanupMethod(CMPIMethodMI*, const CMPIContext*, CMPIBoolean terminating) { return cleaned(terminating); }

CMPIStatus enumerateInstances(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* result, const CMPIObjectPath* path,
                              const char**)
{
    for (CMPIUint16 number = 1; number <= 2; ++number) {
        CMPIStatus status = ok();
        CMPIInstance* one = broker->eft->newInstance(broker, path, &status);
        CMPIValue value{};
        value.uint16 = number;
        one->ft->setProperty(one, "State", &value, CMPI_uint16);
        status = result->ft->returnInstance(result, one);
        one->ft->release(one);
        if (status.rc != CMPI_RC_OK) return status;
    }
    return result->ft->returnDone(result);
}

CMPIStatus names(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*, const CMPIObjectPath*)
{
    return unsupported();
}
CMPIStatus get(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*, const CMPIObjectPath*, const char**)
{
    return unsupported();
}
CMPIStatus create(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*, const CMPIObjectPath*, const CMPIInstance*)
{
    return unsupported();
}
CMPIStatus modify(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*, const CMPIObjectPath*, const CMPIInstance*,
                  const char**)
{
    return unsupported();
}
CMPIStatus removeOne(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*, const CMPIObjectPath*)
{
    return unsupported();
}
CMPIStatus query(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*, const CMPIObjectPath*, const char*,
                 const char*)
{
    return unsupported();
}

// Answers how often cleanup was called.
CMPIStatus invokeMethod(CMPIMethodMI*, const CMPIContext*, const CMPIResult* result, const CMPIObjectPath*, const char*,
                        const CMPIArgs*, CMPIArgs*)
{
    CMPIValue value{};
    value.sint32 = cleanups;
    return result->ft->returnData(result, &value, CMPI_sint32);
}

const CMPIInstanceMIFT instanceTable{200, 1,      "test", cleanupInstance, names, enumerateInstances,
                                     get, create, modify, removeOne,       query, nullptr};
const CMPIMethodMIFT methodTable{200, 1, "test", cleanupMethod, invokeMethod};

} // namespace

extern "C" __attribute__((visibility("default"))) CMPIInstanceMI*
_Generic_Create_InstanceMI(const CMPIBroker* mb, const CMPIContext* context, const char* name, CMPIStatus* status)
{
    static CMPIInstanceMI mi{nullptr, &instanceTable};
    if (std::string(name) == "Refused") {
        *status = {CMPI_RC_ERR_NOT_FOUND, mb->eft->newString(mb, "unknown name", nullptr)};
        return nullptr;
    }
    if (std::string(name) == "Silent" || !context) return nullptr;
    broker = mb;
    stays = std::string(name) == "Stays";
    cleanups = 0;
    return &mi;
}

extern "C" __attribute__((visibility("default"))) CMPIMethodMI*
_Generic_Create_MethodMI(const CMPIBroker*, const CMPIContext*, const char*, CMPIStatus*)
{
    static CMPIMethodMI mi{nullptr, &methodTable};
    return &mi;
}
