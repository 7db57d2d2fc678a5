#include "cmpicpp/CmpiIndicationProvider.h"

#include "cmpicpp/Answer.h"
#include "cmpicpp/CmpiStatus.h"

namespace CmpiCpp {

namespace {

CmpiIndicationProvider& self(const CMPIIndicationMI* table) noexcept
{
    return providerOf<CmpiIndicationProvider>(table);
}

[[noreturn]] void refuse(const char* operation)
{
    throw CmpiStatus(CMPI_RC_ERR_NOT_SUPPORTED, std::string(operation) + " is not supported");
}

extern "C" {

CMPIStatus cleanupIndication(CMPIIndicationMI* mi, const CMPIContext* context, CMPIBoolean terminating) noexcept
{
    return answer(self(mi), [&] { return cleanupCode(self(mi), context, terminating != 0); });
}

CMPIStatus authorizeOneFilter(CMPIIndicationMI* mi, const CMPIContext* context, const CMPISelectExp* filter,
                              const char* className, const CMPIObjectPath* classPath, const char* owner) noexcept
{
    return answer(self(mi), [&] {
        self(mi).authorizeFilter(CmpiContext(context), CmpiSelectExp(filter), className,
                                 CmpiObjectPath::lent(classPath), owner);
    });
}

// What follows the context differs between the versions of the standard, so nothing of it is read.
CMPIStatus mustPollNothing(CMPIIndicationMI* mi, const CMPIContext* context, const CMPIResult*, const CMPISelectExp*,
                           const char*, const CMPIObjectPath*) noexcept
{
    return answer(self(mi), [&] { self(mi).mustPoll(CmpiContext(context)); });
}

CMPIStatus activateOneFilter(CMPIIndicationMI* mi, const CMPIContext* context, const CMPISelectExp* filter,
                             const char* className, const CMPIObjectPath* classPath,
                             CMPIBoolean firstActivation) noexcept
{
    return answer(self(mi), [&] {
        self(mi).activateFilter(CmpiContext(context), CmpiSelectExp(filter), className, CmpiObjectPath::lent(classPath),
                                firstActivation != 0);
    });
}

CMPIStatus deactivateOneFilter(CMPIIndicationMI* mi, const CMPIContext* context, const CMPISelectExp* filter,
                               const char* className, const CMPIObjectPath* classPath,
                               CMPIBoolean lastDeactivation) noexcept
{
    return answer(self(mi), [&] {
        self(mi).deactivateFilter(CmpiContext(context), CmpiSelectExp(filter), className,
                                  CmpiObjectPath::lent(classPath), lastDeactivation != 0);
    });
}

CMPIStatus enableAllIndications(CMPIIndicationMI* mi, const CMPIContext* context) noexcept
{
    return answer(self(mi), [&] { self(mi).enableIndications(CmpiContext(context)); });
}

CMPIStatus disableAllIndications(CMPIIndicationMI* mi, const CMPIContext* context) noexcept
{
    return answer(self(mi), [&] { self(mi).disableIndications(CmpiContext(context)); });
}

} // extern "C"

// Filled up to the slots of version 2.0, which are those of 1.0.
const CMPIIndicationMIFT functions = {CMPIVersion200,
                                      CMPIVersion200,
                                      "KDVCmpiCpp",
                                      cleanupIndication,
                                      authorizeOneFilter,
                                      mustPollNothing,
                                      activateOneFilter,
                                      deactivateOneFilter,
                                      enableAllIndications,
                                      disableAllIndications,
                                      nullptr,
                                      nullptr,
                                      nullptr};

} // namespace

CmpiIndicationProvider::CmpiIndicationProvider() : _table{this, &functions} {}

CmpiIndicationProvider::~CmpiIndicationProvider() = default;

void CmpiIndicationProvider::authorizeFilter(const CmpiContext&, const CmpiSelectExp&, const CmpiName&,
                                             const CmpiObjectPath&, const char*)
{
    refuse("authorizeFilter");
}

void CmpiIndicationProvider::mustPoll(const CmpiContext&) {}

void CmpiIndicationProvider::activateFilter(const CmpiContext&, const CmpiSelectExp&, const CmpiName&,
                                            const CmpiObjectPath&, bool)
{
    refuse("activateFilter");
}

void CmpiIndicationProvider::deactivateFilter(const CmpiContext&, const CmpiSelectExp&, const CmpiName&,
                                              const CmpiObjectPath&, bool)
{
}

void CmpiIndicationProvider::enableIndications(const CmpiContext&) {}

void CmpiIndicationProvider::disableIndications(const CmpiContext&) {}

CMPIIndicationMI* CmpiIndicationProvider::getIndicationMI() { return &_table; }

} // namespace CmpiCpp
