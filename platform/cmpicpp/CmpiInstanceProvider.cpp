#include "cmpicpp/CmpiInstanceProvider.h"

#include "cmpicpp/Answer.h"
#include "cmpicpp/CmpiStatus.h"

namespace CmpiCpp {

namespace {

CmpiInstanceProvider& self(const CMPIInstanceMI* table) noexcept { return providerOf<CmpiInstanceProvider>(table); }

[[noreturn]] void refuse(const char* operation)
{
    throw CmpiStatus(CMPI_RC_ERR_NOT_SUPPORTED, std::string(operation) + " is not supported");
}

extern "C" {

CMPIStatus cleanupInstance(CMPIInstanceMI* mi, const CMPIContext* context, CMPIBoolean terminating) noexcept
{
    return answer(self(mi), [&] { return cleanupCode(self(mi), context, terminating != 0); });
}

CMPIStatus enumerateInstanceNames(CMPIInstanceMI* mi, const CMPIContext* context, const CMPIResult* result,
                                  const CMPIObjectPath* classPath) noexcept
{
    return answer(self(mi), [&] {
        const CmpiObjectPathResult paths(result, self(mi).getBroker());
        self(mi).enumInstanceNames(CmpiContext(context), CmpiObjectPath::lent(classPath), paths);
        paths.returnDone();
    });
}

CMPIStatus enumerateInstances(CMPIInstanceMI* mi, const CMPIContext* context, const CMPIResult* result,
                              const CMPIObjectPath* classPath, const char** properties) noexcept
{
    return answer(self(mi), [&] {
        const CmpiInstanceResult instances(result);
        self(mi).enumInstances(CmpiContext(context), CmpiObjectPath::lent(classPath), properties, instances);
        instances.returnDone();
    });
}

CMPIStatus getOneInstance(CMPIInstanceMI* mi, const CMPIContext* context, const CMPIResult* result,
                          const CMPIObjectPath* path, const char** properties) noexcept
{
    return answer(self(mi), [&] {
        const CmpiInstanceResult instances(result);
        self(mi).getInstance(CmpiContext(context), CmpiObjectPath::lent(path), properties, instances);
        instances.returnDone();
    });
}

CMPIStatus createOneInstance(CMPIInstanceMI* mi, const CMPIContext* context, const CMPIResult* result,
                             const CMPIObjectPath* classPath, const CMPIInstance* instance) noexcept
{
    return answer(self(mi), [&] {
        const CmpiObjectPathResult paths(result, self(mi).getBroker());
        self(mi).createInstance(CmpiContext(context), CmpiObjectPath::lent(classPath), instance, paths);
        paths.returnDone();
    });
}

CMPIStatus modifyOneInstance(CMPIInstanceMI* mi, const CMPIContext* context, const CMPIResult*,
                             const CMPIObjectPath* path, const CMPIInstance* instance, const char** properties) noexcept
{
    return answer(self(mi), [&] {
        self(mi).modifyInstance(CmpiContext(context), CmpiObjectPath::lent(path), instance, properties);
    });
}

CMPIStatus deleteOneInstance(CMPIInstanceMI* mi, const CMPIContext* context, const CMPIResult*,
                             const CMPIObjectPath* path) noexcept
{
    return answer(self(mi), [&] { self(mi).deleteInstance(CmpiContext(context), CmpiObjectPath::lent(path)); });
}

CMPIStatus executeQuery(CMPIInstanceMI* mi, const CMPIContext* context, const CMPIResult* result,
                        const CMPIObjectPath* classPath, const char* query, const char* language) noexcept
{
    return answer(self(mi), [&] {
        const CmpiInstanceResult instances(result);
        self(mi).execQuery(CmpiContext(context), CmpiObjectPath::lent(classPath), query, language, instances);
        instances.returnDone();
    });
}

} // extern "C"

// Filled up to the slots of version 2.0, which are those of 1.0.
const CMPIInstanceMIFT functions = {CMPIVersion200,         CMPIVersion200,     "KDVCmpiCpp",   cleanupInstance,
                                    enumerateInstanceNames, enumerateInstances, getOneInstance, createOneInstance,
                                    modifyOneInstance,      deleteOneInstance,  executeQuery,   nullptr};

} // namespace

CmpiInstanceProvider::CmpiInstanceProvider() : _table{this, &functions} {}

CmpiInstanceProvider::~CmpiInstanceProvider() = default;

void CmpiInstanceProvider::enumInstanceNames(const CmpiContext&, const CmpiObjectPath&, const CmpiObjectPathResult&)
{
    refuse("enumInstanceNames");
}

void CmpiInstanceProvider::enumInstances(const CmpiContext&, const CmpiObjectPath&, const char* const*,
                                         const CmpiInstanceResult&)
{
    refuse("enumInstances");
}

void CmpiInstanceProvider::getInstance(const CmpiContext&, const CmpiObjectPath&, const char* const*,
                                       const CmpiInstanceResult&)
{
    refuse("getInstance");
}

void CmpiInstanceProvider::createInstance(const CmpiContext&, const CmpiObjectPath&, const CMPIInstance*,
                                          const CmpiObjectPathResult&)
{
    refuse("createInstance");
}

void CmpiInstanceProvider::modifyInstance(const CmpiContext&, const CmpiObjectPath&, const CMPIInstance*,
                                          const char* const*)
{
    refuse("modifyInstance");
}

void CmpiInstanceProvider::deleteInstance(const CmpiContext&, const CmpiObjectPath&) { refuse("deleteInstance"); }

void CmpiInstanceProvider::execQuery(const CmpiContext&, const CmpiObjectPath&, const char*, const char*,
                                     const CmpiInstanceResult&)
{
    refuse("execQuery");
}

CMPIInstanceMI* CmpiInstanceProvider::getInstanceMI() { return &_table; }

} // namespace CmpiCpp
