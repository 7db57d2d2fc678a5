// One intrinsic or extrinsic operation while it is executed: the client's parameters, read by the rules of DSP0200, and
// everything that an operation works with. Made for each request on its thread; parameters that are missing, unknown,
// doubled or of another kind are a CimError with 4.
#pragma once

#include "broker/RequestScope.h"
#include "hostserver/CimReply.h"
#include "hostxml/CimRequest.h"
#include "hostxml/InstanceWriter.h"

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace KDV::Host {

class Call {
public:
    Call(const CimRequest& request, const Namespace& nameSpace, RequestScope& scope, CimReply& reply,
         InstanceWriter& writer);

    const CimRequest& request;
    const Namespace& nameSpace;
    RequestScope& scope;
    CimReply& reply;
    InstanceWriter& writer;
    ContextObject& context;

    // The parameters that the operation has; any other name is refused.
    void allow(std::initializer_list<std::string_view> names) const;

    bool flag(std::string_view name, bool otherwise) const;
    std::optional<std::uint64_t> number(std::string_view name) const;
    std::optional<std::string> text(std::string_view name) const;
    std::optional<std::vector<std::string>> list(std::string_view name) const;
    // A class name that may be left out or NULL; given, the class must exist (else `code`).
    const ClassInfo* classInfo(std::string_view name, int code) const;
    const ClassInfo& requiredClass(std::string_view name) const;
    // The path of an instance of an existing class (else `code`) with all its keys.
    PathObject& instanceName(std::string_view name, int code) const;
    const RequestPath& objectName(std::string_view name) const; // of a class or an instance
    const ClassInfo& classOf(const RequestPath& path, int code) const;

    // What shapes the instances of the reply: IncludeClassOrigin and PropertyList.
    void shapeInstances();
    // The property list as providers take it: null if there is none, else names and a null at the end.
    const char** propertyNames() noexcept { return _properties ? _names.data() : nullptr; }

private:
    const RequestValue* value(std::string_view name) const;

    std::optional<std::vector<std::string>> _properties;
    std::vector<const char*> _names;
};

} // namespace KDV::Host
