#include "cmpicpp/CmpiResults.h"

#include "cmpicpp/BrokerObject.h"

#include <utility>

namespace CmpiCpp {

namespace {

const CMPIResultFT& tableOf(const CMPIResult* raw)
{
    if (!raw || !raw->ft) throw CmpiStatus(CMPI_RC_ERR_INVALID_HANDLE, "no result to answer to");
    return *raw->ft;
}

void finish(const CMPIResult* raw) { throwIfFailed(tableOf(raw).returnDone(raw), "returnDone"); }

} // namespace

void CmpiInstanceResult::returnInstance(const CmpiInstance& instance) const
{
    throwIfFailed(tableOf(_raw).returnInstance(_raw, instance.raw()), "returnInstance");
}

void CmpiInstanceResult::returnDone() const { finish(_raw); }

void CmpiObjectPathResult::returnObjectPath(CmpiObjectPath path) const
{
    if (!path.raw()) throw CmpiStatus(CMPI_RC_ERR_INVALID_HANDLE, "an empty object path cannot be returned");
    if (path.isCopy() && _broker) path = remakeCmpiObjectPath(_broker, path);
    throwIfFailed(tableOf(_raw).returnObjectPath(_raw, path.raw()), "returnObjectPath");
    if (!path.isCopy()) path.detach();
}

void CmpiObjectPathResult::returnDone() const { finish(_raw); }

void CmpiMethodResult::returnData(std::uint32_t value) const
{
    CMPIValue content = blankValue();
    content.uint32 = value;
    throwIfFailed(tableOf(_raw).returnData(_raw, &content, CMPI_uint32), "returnData");
}

void CmpiMethodResult::returnDone() const { finish(_raw); }

} // namespace CmpiCpp
