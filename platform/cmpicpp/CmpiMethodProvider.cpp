#include "cmpicpp/CmpiMethodProvider.h"

#include "cmpicpp/Answer.h"
#include "cmpicpp/CmpiStatus.h"

namespace CmpiCpp {

namespace {

CmpiMethodProvider& self(const CMPIMethodMI* table) noexcept { return providerOf<CmpiMethodProvider>(table); }

extern "C" {

CMPIStatus cleanupMethod(CMPIMethodMI* mi, const CMPIContext* context, CMPIBoolean terminating) noexcept
{
    return answer(self(mi), [&] { return cleanupCode(self(mi), context, terminating != 0); });
}

CMPIStatus invokeOneMethod(CMPIMethodMI* mi, const CMPIContext* context, const CMPIResult* result,
                           const CMPIObjectPath* path, const char* method, const CMPIArgs* in, CMPIArgs* out) noexcept
{
    return answer(self(mi), [&] {
        const CmpiMethodResult value(result);
        self(mi).invokeMethod(CmpiContext(context), CmpiObjectPath::lent(path), method, CmpiArgs(in, out), value);
        value.returnDone();
    });
}

} // extern "C"

const CMPIMethodMIFT functions = {CMPIVersion200, CMPIVersion200, "KDVCmpiCpp", cleanupMethod, invokeOneMethod};

} // namespace

CmpiMethodProvider::CmpiMethodProvider() : _table{this, &functions} {}

CmpiMethodProvider::~CmpiMethodProvider() = default;

void CmpiMethodProvider::invokeMethod(const CmpiContext&, const CmpiObjectPath&, const CmpiName&, const CmpiArgs&,
                                      const CmpiMethodResult&)
{
    throw CmpiStatus(CMPI_RC_ERR_NOT_SUPPORTED, "invokeMethod is not supported");
}

CMPIMethodMI* CmpiMethodProvider::getMethodMI() { return &_table; }

} // namespace CmpiCpp
