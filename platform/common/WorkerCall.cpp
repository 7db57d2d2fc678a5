#include "common/WorkerCall.h"

#include "cmpicpp/CmpiStatus.h"
#include "common/AutostartDecorator.h"
#include "common/KDVUtil.h"

#include <exception>

using namespace CmpiCpp;
namespace KDV {
namespace {

// A result object of our own for calls that no server makes: keeps the one number that a method returns.
struct NumberResult {
    NumberResult();
    CMPIResult raw;
    CMPIUint32 value = 0;
    bool isSet = false;
};

NumberResult& numberOf(const CMPIResult* result) { return *static_cast<NumberResult*>(const_cast<void*>(result->hdl)); }

extern "C" {

static CMPIStatus releaseNumber(CMPIResult*) { return {CMPI_RC_OK, nullptr}; }

static CMPIResult* cloneNumber(const CMPIResult*, CMPIStatus* status)
{
    if (status) *status = {CMPI_RC_ERR_NOT_SUPPORTED, nullptr};
    return nullptr;
}

static CMPIStatus returnNumber(const CMPIResult* self, const CMPIValue* value, CMPIType type)
{
    if (!value || type != CMPI_uint32) return {CMPI_RC_ERR_TYPE_MISMATCH, nullptr};
    numberOf(self).value = value->uint32;
    numberOf(self).isSet = true;
    return {CMPI_RC_OK, nullptr};
}

static CMPIStatus returnNoInstance(const CMPIResult*, const CMPIInstance*)
{
    return {CMPI_RC_ERR_NOT_SUPPORTED, nullptr};
}

static CMPIStatus returnNoPath(const CMPIResult*, const CMPIObjectPath*)
{
    return {CMPI_RC_ERR_NOT_SUPPORTED, nullptr};
}

static CMPIStatus numberDone(const CMPIResult*) { return {CMPI_RC_OK, nullptr}; }

static CMPIStatus returnNoError(const CMPIResult*, const CMPIError*) { return {CMPI_RC_ERR_NOT_SUPPORTED, nullptr}; }

} // extern "C"

const CMPIResultFT numberFunctions = {CMPIVersion200,   releaseNumber, cloneNumber, returnNumber,
                                      returnNoInstance, returnNoPath,  numberDone,  returnNoError};

NumberResult::NumberResult() : raw{this, &numberFunctions} {}

// Arguments of a call; none are put in.
class Arguments {
public:
    Arguments(const CMPIBroker* broker, const std::atomic<bool>& stopped) : _stopped(stopped)
    {
        CMPIStatus status{CMPI_RC_OK, nullptr};
        _raw = broker->eft->newArgs(broker, &status);
        throwIfFailed(status, "newArgs");
        if (!_raw) throw CmpiStatus(CMPI_RC_ERR_FAILED, "newArgs gave nothing");
    }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;
    ~Arguments()
    {
        if (!_stopped) _raw->ft->release(_raw);
    }
    CMPIArgs* raw() const noexcept { return _raw; }

private:
    CMPIArgs* _raw;
    const std::atomic<bool>& _stopped;
};

// The path of the auto-start instance; left to the server when the schedule was stopped in the meantime.
class WorkerPath {
public:
    WorkerPath(const WorkerTarget& target, const std::atomic<bool>& stopped)
        : _path(makeCmpiObjectPath(target.broker, target.nameSpace, target.className)), _stopped(stopped)
    {
        _path.setHost(KDVUtil::getHostName());
        _path.addKey("ProviderName", target.providerName);
    }
    WorkerPath(const WorkerPath&) = delete;
    WorkerPath& operator=(const WorkerPath&) = delete;
    ~WorkerPath()
    {
        if (_stopped) _path.detach();
    }
    const CmpiObjectPath& path() const noexcept { return _path; }

private:
    CmpiObjectPath _path;
    const std::atomic<bool>& _stopped;
};

PassOutcome outcomeOf(CMPIUint32 value)
{
    return value == 0 ? PassOutcome() : "the worker method returned " + std::to_string(value);
}

PassOutcome callProvider(WorkerTarget& target, const CMPIContext* context, const CmpiObjectPath& path,
                         const CmpiArgs& arguments)
{
    const std::shared_ptr<CmpiProvider> provider = target.provider.lock();
    auto* const methods = dynamic_cast<CmpiMethodProvider*>(provider.get());
    if (!methods) return "the provider has no methods";
    NumberResult result; // its functions write to it
    methods->invokeMethod(CmpiContext(context), path, AutostartDecorator::workerMethod, arguments,
                          CmpiMethodResult(&result.raw));
    return result.isSet ? outcomeOf(result.value) : "the worker method returned nothing";
}

PassOutcome callThroughBroker(WorkerTarget& target, const CMPIContext* context, const CmpiObjectPath& path,
                              const CmpiArgs& arguments, const std::atomic<bool>& stopped)
{
    const CMPIBroker* const broker = target.broker;
    const unsigned seen = target.callsSeen;
    if (stopped) return {};
    if (broker->bft->invokeMethod) {
        CMPIStatus status{CMPI_RC_OK, nullptr};
        const CMPIData value = broker->bft->invokeMethod(broker, context, path.raw(), AutostartDecorator::workerMethod,
                                                         arguments.in(), arguments.out(), &status);
        if (stopped) return {};
        if (status.rc == CMPI_RC_OK)
            return value.type == CMPI_uint32 && value.state == CMPI_goodValue ? outcomeOf(value.value.uint32)
                                                                              : PassOutcome();
        // The provider was called and failed; another call would be a second pass.
        if (target.callsSeen != seen) return refusal("the worker method failed", status);
    }
    return stopped ? PassOutcome() : callProvider(target, context, path, arguments);
}

} // namespace

PassOutcome refusal(const char* what, const CMPIStatus& status)
{
    PassOutcome text = std::string(what) + ": code " + std::to_string(static_cast<int>(status.rc));
    CMPIStatus read{CMPI_RC_OK, nullptr};
    if (const char* const given = status.msg ? status.msg->ft->getCharPtr(status.msg, &read) : nullptr)
        text.append(", ").append(given);
    return text;
}

PassOutcome callWorker(WorkerTarget& target, const CMPIContext* context, const std::atomic<bool>& stopped)
{
    try {
        const WorkerPath worker(target, stopped);
        const Arguments in(target.broker, stopped);
        const Arguments out(target.broker, stopped);
        return callThroughBroker(target, context, worker.path(), CmpiArgs(in.raw(), out.raw()), stopped);
    } catch (const CmpiStatus& status) {
        return std::string("code ") + std::to_string(static_cast<int>(status.code())) + ", " + status.str();
    } catch (const std::exception& failure) {
        return failure.what();
    } catch (...) {
        return "unknown exception";
    }
}

} // namespace KDV
