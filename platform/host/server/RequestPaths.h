// Makes broker objects of what a client wrote: paths with their keys, values by their type. They belong to the
// request's scope. What the schema does not allow is a CimError.
#pragma once

#include "broker/RequestScope.h"
#include "hostxml/CimRequest.h"

#include <string_view>

namespace KDV::Host {

// Numbers, booleans, texts, dates are checked against the type; a false result leaves `value` alone.
bool readScalar(RequestScope& scope, CMPIType type, std::string_view text, CMPIValue& value);

// The path of a class that exists, with the keys that the client gave. 4 if a key is not one of the class's, if it
// does not fit its type or, with `complete`, if one is missing. A reference among the keys may lack its namespace: it
// is then in that of the request.
PathObject& makePath(RequestScope& scope, const Namespace& nameSpace, const ClassInfo& classInfo,
                     const RequestPath& given, bool complete);

// The path of a reference: its class may be unknown here, its keys are taken as they are.
PathObject& makeReference(RequestScope& scope, const Namespace& nameSpace, const RequestPath& given);

// A value of the type that a property or parameter declares; null for none. 13 if it does not fit.
CMPIData makeValue(RequestScope& scope, const Namespace& nameSpace, CMPIType type, const RequestValue& given);

// An instance that a client sent. 12 for a property that the class lacks.
InstanceObject& makeInstance(RequestScope& scope, const Namespace& nameSpace, const PathObject& path,
                             const RequestInstance& given);

} // namespace KDV::Host
