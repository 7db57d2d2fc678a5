#include "cmpicpp/CmpiProvider.h"

#include "cmpicpp/Answer.h"
#include "cmpicpp/BrokerObject.h"

#include <exception>

namespace CmpiCpp {

namespace {

CMPIStatus statusWith(const CMPIBroker* broker, CMPIrc code, const char* text) noexcept
{
    CMPIStatus answered{code == CMPI_RC_OK ? CMPI_RC_ERR_FAILED : code, nullptr};
    if (broker && broker->eft && broker->eft->newString) {
        CMPIStatus status{CMPI_RC_OK, nullptr};
        CMPIString* message = broker->eft->newString(broker, text ? text : "", &status);
        answered.msg = status.rc == CMPI_RC_OK ? message : nullptr;
    }
    return answered;
}

} // namespace

CMPIStatus statusOfException(const CMPIBroker* broker) noexcept
{
    try {
        throw;
    } catch (const CmpiStatus& status) {
        return statusWith(broker, status.code(), status.str());
    } catch (const std::exception& failure) {
        return statusWith(broker, CMPI_RC_ERR_FAILED, failure.what());
    } catch (...) {
        return statusWith(broker, CMPI_RC_ERR_FAILED, "unknown exception");
    }
}

CMPIrc cleanupCode(CmpiProvider& provider, const CMPIContext* context, bool terminating)
{
    const CmpiContext lent(context);
    const bool mayGo = provider.cleanup(lent, terminating) && provider.unloadOK(lent);
    return mayGo ? CMPI_RC_OK : CMPI_RC_DO_NOT_UNLOAD;
}

CmpiProvider::CmpiProvider() = default;

CmpiProvider::~CmpiProvider() = default;

bool CmpiProvider::cleanup(const CmpiContext&, bool) { return true; }

bool CmpiProvider::unloadOK(const CmpiContext&) { return true; }

} // namespace CmpiCpp
