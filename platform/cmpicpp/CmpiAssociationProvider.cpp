#include "cmpicpp/CmpiAssociationProvider.h"

#include "cmpicpp/Answer.h"
#include "cmpicpp/CmpiStatus.h"

namespace CmpiCpp {

namespace {

CmpiAssociationProvider& self(const CMPIAssociationMI* table) noexcept
{
    return providerOf<CmpiAssociationProvider>(table);
}

[[noreturn]] void refuse(const char* operation)
{
    throw CmpiStatus(CMPI_RC_ERR_NOT_SUPPORTED, std::string(operation) + " is not supported");
}

extern "C" {

CMPIStatus cleanupAssociation(CMPIAssociationMI* mi, const CMPIContext* context, CMPIBoolean terminating) noexcept
{
    return answer(self(mi), [&] { return cleanupCode(self(mi), context, terminating != 0); });
}

CMPIStatus findAssociators(CMPIAssociationMI* mi, const CMPIContext* context, const CMPIResult* result,
                           const CMPIObjectPath* path, const char* associationClass, const char* resultClass,
                           const char* role, const char* resultRole, const char** properties) noexcept
{
    return answer(self(mi), [&] {
        const CmpiInstanceResult instances(result);
        self(mi).associators(CmpiContext(context), CmpiObjectPath::lent(path), associationClass, resultClass, role,
                             resultRole, properties, instances);
        instances.returnDone();
    });
}

CMPIStatus findAssociatorNames(CMPIAssociationMI* mi, const CMPIContext* context, const CMPIResult* result,
                               const CMPIObjectPath* path, const char* associationClass, const char* resultClass,
                               const char* role, const char* resultRole) noexcept
{
    return answer(self(mi), [&] {
        const CmpiObjectPathResult paths(result, self(mi).getBroker());
        self(mi).associatorNames(CmpiContext(context), CmpiObjectPath::lent(path), associationClass, resultClass, role,
                                 resultRole, paths);
        paths.returnDone();
    });
}

CMPIStatus findReferences(CMPIAssociationMI* mi, const CMPIContext* context, const CMPIResult* result,
                          const CMPIObjectPath* path, const char* resultClass, const char* role,
                          const char** properties) noexcept
{
    return answer(self(mi), [&] {
        const CmpiInstanceResult instances(result);
        self(mi).references(CmpiContext(context), CmpiObjectPath::lent(path), resultClass, role, properties, instances);
        instances.returnDone();
    });
}

CMPIStatus findReferenceNames(CMPIAssociationMI* mi, const CMPIContext* context, const CMPIResult* result,
                              const CMPIObjectPath* path, const char* resultClass, const char* role) noexcept
{
    return answer(self(mi), [&] {
        const CmpiObjectPathResult paths(result, self(mi).getBroker());
        self(mi).referenceNames(CmpiContext(context), CmpiObjectPath::lent(path), resultClass, role, paths);
        paths.returnDone();
    });
}

} // extern "C"

// Filled up to the slots of version 2.0, which are those of 1.0.
const CMPIAssociationMIFT functions = {CMPIVersion200,  CMPIVersion200,
                                       "KDVCmpiCpp",    cleanupAssociation,
                                       findAssociators, findAssociatorNames,
                                       findReferences,  findReferenceNames,
                                       nullptr,         nullptr};

} // namespace

CmpiAssociationProvider::CmpiAssociationProvider() : _table{this, &functions} {}

CmpiAssociationProvider::~CmpiAssociationProvider() = default;

void CmpiAssociationProvider::associators(const CmpiContext&, const CmpiObjectPath&, const CmpiName&, const CmpiName&,
                                          const CmpiName&, const CmpiName&, const char* const*,
                                          const CmpiInstanceResult&)
{
    refuse("associators");
}

void CmpiAssociationProvider::associatorNames(const CmpiContext&, const CmpiObjectPath&, const CmpiName&,
                                              const CmpiName&, const CmpiName&, const CmpiName&,
                                              const CmpiObjectPathResult&)
{
    refuse("associatorNames");
}

void CmpiAssociationProvider::references(const CmpiContext&, const CmpiObjectPath&, const CmpiName&, const CmpiName&,
                                         const char* const*, const CmpiInstanceResult&)
{
    refuse("references");
}

void CmpiAssociationProvider::referenceNames(const CmpiContext&, const CmpiObjectPath&, const CmpiName&,
                                             const CmpiName&, const CmpiObjectPathResult&)
{
    refuse("referenceNames");
}

CMPIAssociationMI* CmpiAssociationProvider::getAssociationMI() { return &_table; }

} // namespace CmpiCpp
