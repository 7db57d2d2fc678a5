// CIM_Error objects: their making, copying and function table.
#include "broker/Calls.h"

namespace KDV::Host {

ErrorObject* makeError(const Placement& at)
{
    auto* object = place<ErrorObject>(at, ObjectKind::Error, &at.broker->tables().error);
    const ErrorObject blank{{object->hdl, object->ft},
                            object->head,
                            at.memory,
                            UnknownErrorType,
                            ErrorSevUnknown,
                            ErrorProbCauseUnknown,
                            CMPIErrSrcUnknown,
                            CMPI_RC_OK,
                            nullptr,
                            nullptr,
                            nullptr,
                            nullptr,
                            nullptr,
                            nullptr,
                            nullptr,
                            nullptr,
                            nullptr,
                            nullptr};
    *object = blank;
    return object;
}

ErrorObject* copyOf(const Placement& at, const ErrorObject& from)
{
    ErrorObject* object = makeError(at);
    const Placement inside = Placement::inside(object->head, at.memory);
    object->errorType = from.errorType;
    object->severity = from.severity;
    object->probableCause = from.probableCause;
    object->sourceFormat = from.sourceFormat;
    object->statusCode = from.statusCode;
    for (StringObject* ErrorObject::*text :
         {&ErrorObject::otherErrorType, &ErrorObject::owningEntity, &ErrorObject::messageID, &ErrorObject::message,
          &ErrorObject::probableCauseDescription, &ErrorObject::errorSource, &ErrorObject::otherErrorSourceFormat,
          &ErrorObject::statusCodeDescription})
        if (from.*text) object->*text = copyOf(inside, *(from.*text));
    for (ArrayObject* ErrorObject::*list : {&ErrorObject::recommendedActions, &ErrorObject::messageArguments})
        if (from.*list) object->*list = copyOf(inside, *(from.*list));
    return object;
}

namespace {

template <StringObject* ErrorObject::*text>
CMPIString* getText(const CMPIError* self, CMPIStatus* status)
{
    return answer<ErrorObject, CMPIString*>(self, status, nullptr,
                                            [](ErrorObject& error, CMPIStatus&) { return error.*text; });
}

template <StringObject* ErrorObject::*text>
CMPIStatus setText(const CMPIError* self, const char* value)
{
    return change<ErrorObject>(self, [&](ErrorObject& error) {
        error.*text = value ? makeString(Placement::inside(error.head, error.memory), value) : nullptr;
        return ok();
    });
}

template <ArrayObject* ErrorObject::*list>
CMPIArray* getList(const CMPIError* self, CMPIStatus* status)
{
    return answer<ErrorObject, CMPIArray*>(self, status, nullptr,
                                           [](ErrorObject& error, CMPIStatus&) { return error.*list; });
}

template <ArrayObject* ErrorObject::*list>
CMPIStatus setList(const CMPIError* self, const CMPIArray* value)
{
    return change<ErrorObject>(self, [&](ErrorObject& error) {
        const ArrayObject* array = argument<ArrayObject>(value);
        if (!array) return failed(CMPI_RC_ERR_INVALID_PARAMETER);
        error.*list = copyOf(Placement::inside(error.head, error.memory), *array);
        return ok();
    });
}

template <auto member>
auto getCode(const CMPIError* self, CMPIStatus* status)
{
    using Code = std::remove_reference_t<decltype(std::declval<ErrorObject>().*member)>;
    return answer<ErrorObject, Code>(self, status, Code{},
                                     [](ErrorObject& error, CMPIStatus&) { return error.*member; });
}

CMPIStatus setErrorType(const CMPIError* self, CMPIErrorType type)
{
    return change<ErrorObject>(self, [&](ErrorObject& error) {
        error.errorType = type;
        return ok();
    });
}

CMPIStatus setErrorSourceFormat(const CMPIError* self, CMPIErrorSrcFormat format)
{
    return change<ErrorObject>(self, [&](ErrorObject& error) {
        error.sourceFormat = format;
        return ok();
    });
}

} // namespace

CMPIErrorFT errorTable(Profile profile)
{
    return {objectTableVersion(profile),
            release<ErrorObject, CMPIError>,
            cloneObject<ErrorObject, CMPIError>,
            getCode<&ErrorObject::errorType>,
            getText<&ErrorObject::otherErrorType>,
            getText<&ErrorObject::owningEntity>,
            getText<&ErrorObject::messageID>,
            getText<&ErrorObject::message>,
            getCode<&ErrorObject::severity>,
            getCode<&ErrorObject::probableCause>,
            getText<&ErrorObject::probableCauseDescription>,
            getList<&ErrorObject::recommendedActions>,
            getText<&ErrorObject::errorSource>,
            getCode<&ErrorObject::sourceFormat>,
            getText<&ErrorObject::otherErrorSourceFormat>,
            getCode<&ErrorObject::statusCode>,
            getText<&ErrorObject::statusCodeDescription>,
            getList<&ErrorObject::messageArguments>,
            setErrorType,
            setText<&ErrorObject::otherErrorType>,
            setText<&ErrorObject::probableCauseDescription>,
            setList<&ErrorObject::recommendedActions>,
            setText<&ErrorObject::errorSource>,
            setErrorSourceFormat,
            setText<&ErrorObject::otherErrorSourceFormat>,
            setText<&ErrorObject::statusCodeDescription>,
            setList<&ErrorObject::messageArguments>};
}

} // namespace KDV::Host
