// A CIM_Error as a provider builds it. Made by newCMPIError; texts and arrays inside belong to it.
#pragma once

#include "broker/Values.h"

namespace KDV::Host {

struct ErrorObject : CMPIError {
    ObjectHead head;
    Memory* memory;
    CMPIErrorType errorType;
    CMPIErrorSeverity severity;
    CMPIErrorProbableCause probableCause;
    CMPIErrorSrcFormat sourceFormat;
    CMPIrc statusCode;
    // Null until set.
    StringObject* otherErrorType;
    StringObject* owningEntity;
    StringObject* messageID;
    StringObject* message;
    StringObject* probableCauseDescription;
    StringObject* errorSource;
    StringObject* otherErrorSourceFormat;
    StringObject* statusCodeDescription;
    ArrayObject* recommendedActions;
    ArrayObject* messageArguments;

    static const ErrorObject& of(const CMPIError* error) noexcept { return *static_cast<const ErrorObject*>(error); }
};

} // namespace KDV::Host
