#include "broker/ResultObject.h"

#include "broker/Calls.h"

namespace KDV::Host {

struct ResultFunctions {
    // The frame of every return: what the operation may not return is 7, a sink that takes no more is 1.
    template <class Give>
    static CMPIStatus give(const CMPIResult* self, ResultKind kind, bool checkKind, Give&& passOn) noexcept
    {
        if (!self || !self->hdl) return failed(CMPI_RC_ERR_INVALID_HANDLE);
        auto& result = *static_cast<ResultObject*>(const_cast<CMPIResult*>(self));
        Broker& broker = *result._head.broker;
        if (broker.faultArmed()) {
            const CMPIStatus fault = failed(broker.takeFault());
            if (fault.rc != CMPI_RC_OK) return fault;
        }
        if (checkKind && broker.profile() != Profile::Sfcb && result._kind != ResultKind::Any && result._kind != kind)
            return failedWith(broker, CMPI_RC_ERR_NOT_SUPPORTED, "not a result of this operation");
        if (result._stopped) return failed(CMPI_RC_ERR_FAILED);
        try {
            const CMPIStatus status = passOn(result, broker);
            if (status.rc == CMPI_RC_OK) ++result._count;
            return status;
        } catch (...) {
            return failed(CMPI_RC_ERR_FAILED);
        }
    }

    static CMPIStatus sent(ResultObject& result, bool taken) noexcept
    {
        result._stopped = !taken;
        return failed(taken ? CMPI_RC_OK : CMPI_RC_ERR_FAILED);
    }

    // The path that the receiver sees has every key that is set as a property.
    static void completePath(InstanceObject& instance, Profile profile)
    {
        const ClassInfo* info = instance.classInfo;
        if (!info || profile == Profile::Sfcb ||
            (profile == Profile::Standard && instance.path->keyCount >= info->keys().size()))
            return;
        for (int key : info->keys()) {
            const std::uint16_t place = instance.places[key];
            if (!place || instance.entries[place - 1].isNull()) continue;
            const PropertyInfo& property = info->properties()[static_cast<std::size_t>(key)];
            const Placement inside = Placement::inside(instance.path->head, instance.memory);
            bindKey(*instance.path, property.name, &property) = copyData(inside, instance.entries[place - 1].data());
        }
    }

    static CMPIStatus returnInstance(const CMPIResult* self, const CMPIInstance* inst)
    {
        return give(self, ResultKind::Instances, true, [&](ResultObject& result, Broker& broker) {
            const InstanceObject* instance = argument<InstanceObject>(inst);
            if (!instance) return failed(CMPI_RC_ERR_INVALID_PARAMETER);
            completePath(const_cast<InstanceObject&>(*instance), broker.profile());
            if (Recorder* recorder = broker.recorder()) recorder->returned(*instance);
            return sent(result, result._sink->instance(*instance));
        });
    }

    static CMPIStatus returnObjectPath(const CMPIResult* self, const CMPIObjectPath* op)
    {
        return give(self, ResultKind::ObjectPaths, true, [&](ResultObject& result, Broker& broker) {
            const PathObject* path = argument<PathObject>(op);
            if (!path) return failed(CMPI_RC_ERR_INVALID_PARAMETER);
            if (Recorder* recorder = broker.recorder()) recorder->returned(*path);
            return sent(result, result._sink->objectPath(*path));
        });
    }

    static CMPIStatus returnData(const CMPIResult* self, const CMPIValue* value, CMPIType type)
    {
        return give(self, ResultKind::Data, true, [&](ResultObject& result, Broker& broker) {
            if (!value && broker.profile() == Profile::Pegasus) return failed(CMPI_RC_ERR_INVALID_PARAMETER);
            if (type == CMPI_ref && broker.profile() == Profile::Sfcb)
                return failed(CMPI_RC_ERR_FAILED); // the real server ends its process here
            Memory* memory = Memory::create(nullptr, 512);
            CMPIData data;
            CMPIStatus status = failed(CMPI_RC_ERR_INVALID_DATA_TYPE);
            try {
                if (copyValue(Placement::inside(result._head, memory), value, type, data)) {
                    if (Recorder* recorder = broker.recorder()) recorder->returned(data);
                    status = sent(result, result._sink->data(data));
                }
            } catch (...) {
                memory->destroy();
                throw;
            }
            memory->destroy();
            return status;
        });
    }

    static CMPIStatus returnDone(const CMPIResult* self)
    {
        return give(self, ResultKind::Any, false, [&](ResultObject& result, Broker&) {
            --result._count; // counts results, of which this is none
            if (!result._done) result._sink->done();
            result._done = true;
            return ok();
        });
    }

    static CMPIStatus returnError(const CMPIResult* self, const CMPIError* er)
    {
        return give(self, ResultKind::Any, false, [&](ResultObject& result, Broker&) {
            const ErrorObject* error = argument<ErrorObject>(er);
            if (!error) return failed(CMPI_RC_ERR_INVALID_PARAMETER);
            --result._count;
            return sent(result, result._sink->error(*error));
        });
    }

    static CMPIStatus release(CMPIResult* self)
    {
        if (!self || !self->hdl) return failed(CMPI_RC_ERR_INVALID_HANDLE);
        return releaseObject(static_cast<ResultObject*>(self)->_head, nullptr);
    }

    static CMPIResult* clone(const CMPIResult*, CMPIStatus* status)
    {
        tell(status, failed(CMPI_RC_ERR_NOT_SUPPORTED));
        return nullptr;
    }
};

ResultObject::ResultObject(Broker& broker, ResultSink& sink, ResultKind kind)
    : CMPIResult{&_head, &broker.tables().result}, _head{&broker,           nullptr,
                                                         ObjectHead::mark,  ObjectKind::Result,
                                                         ObjectState::Lent, 0},
      _sink(&sink), _kind(kind)
{
}

CMPIResultFT resultTable(Profile profile)
{
    CMPIResultFT table{objectTableVersion(profile), ResultFunctions::release,        ResultFunctions::clone,
                       ResultFunctions::returnData, ResultFunctions::returnInstance, ResultFunctions::returnObjectPath,
                       ResultFunctions::returnDone, ResultFunctions::returnError};
    if (profile == Profile::Sfcb) table.returnError = nullptr;
    if (profile == Profile::Pegasus) {
        table.release = nullptr;
        table.clone = nullptr;
    }
    return table;
}

} // namespace KDV::Host
