#include "hostserver/Call.h"

#include "hostserver/CimError.h"
#include "hostserver/RequestPaths.h"

#include <algorithm>
#include <charconv>

namespace KDV::Host {

namespace {

[[noreturn]] void refuse(std::string_view name, const std::string& what)
{
    throw CimError(CMPI_RC_ERR_INVALID_PARAMETER, "the parameter " + std::string(name) + " " + what);
}

} // namespace

Call::Call(const CimRequest& ofRequest, const Namespace& inNameSpace, RequestScope& inScope, CimReply& toReply,
           InstanceWriter& withWriter)
    : request(ofRequest), nameSpace(inNameSpace), scope(inScope), reply(toReply), writer(withWriter),
      context(inScope.context())
{
}

void Call::allow(std::initializer_list<std::string_view> names) const
{
    for (auto at = request.parameters.begin(); at != request.parameters.end(); ++at) {
        if (std::none_of(names.begin(), names.end(), [&](std::string_view name) { return sameName(name, at->name); }))
            refuse(at->name, "is not one of " + request.method);
        if (std::any_of(request.parameters.begin(), at,
                        [&](const auto& other) { return sameName(other.name, at->name); }))
            refuse(at->name, "is given twice");
    }
}

const RequestValue* Call::value(std::string_view name) const
{
    const RequestParameter* parameter = request.find(name);
    return parameter && parameter->value.kind != ValueKind::Null ? &parameter->value : nullptr;
}

std::optional<std::string> Call::text(std::string_view name) const
{
    const RequestValue* given = value(name);
    if (!given) return std::nullopt;
    if (given->kind != ValueKind::Text) refuse(name, "must be a single value");
    return given->text;
}

bool Call::flag(std::string_view name, bool otherwise) const
{
    const auto given = text(name);
    if (!given) return otherwise;
    if (!sameName(*given, "TRUE") && !sameName(*given, "FALSE")) refuse(name, "must be TRUE or FALSE");
    return sameName(*given, "TRUE");
}

std::optional<std::uint64_t> Call::number(std::string_view name) const
{
    const auto given = text(name);
    if (!given) return std::nullopt;
    std::uint32_t number = 0; // all of them are uint32
    const char* end = given->data() + given->size();
    const auto result = std::from_chars(given->data(), end, number);
    if (given->empty() || result.ec != std::errc() || result.ptr != end) refuse(name, "must be a number of 32 bits");
    return number;
}

std::optional<std::vector<std::string>> Call::list(std::string_view name) const
{
    const RequestValue* given = value(name);
    if (!given) return std::nullopt;
    if (given->kind != ValueKind::Texts) refuse(name, "must be a list");
    std::vector<std::string> names;
    for (const auto& each : given->texts)
        if (each) names.push_back(*each);
    return names;
}

const RequestPath& Call::objectName(std::string_view name) const
{
    const RequestValue* given = value(name);
    if (!given) refuse(name, "is missing");
    if (!given->path()) refuse(name, "must be a path");
    return *given->path();
}

const ClassInfo& Call::classOf(const RequestPath& path, int code) const
{
    const ClassInfo* found = nameSpace.find(path.className);
    if (!found) throw CimError(code, "there is no class \"" + path.className + "\" in namespace " + nameSpace.name());
    return *found;
}

const ClassInfo* Call::classInfo(std::string_view name, int code) const
{
    const RequestValue* given = value(name);
    if (!given) return nullptr;
    // Some clients send a class name as a plain value; an empty one stands for none.
    if (given->kind == ValueKind::Text && given->text.empty()) return nullptr;
    if (given->kind == ValueKind::Text) return &classOf({false, {}, {}, given->text, {}}, code);
    if (!given->path() || given->path()->isInstance) refuse(name, "must be the name of a class");
    return &classOf(*given->path(), code);
}

const ClassInfo& Call::requiredClass(std::string_view name) const
{
    const ClassInfo* found = classInfo(name, CMPI_RC_ERR_INVALID_CLASS);
    if (!found) refuse(name, "is missing");
    return *found;
}

PathObject& Call::instanceName(std::string_view name, int code) const
{
    const RequestPath& given = objectName(name);
    if (!given.isInstance) refuse(name, "must be the name of an instance");
    return makePath(scope, nameSpace, classOf(given, code), given, true);
}

void Call::shapeInstances()
{
    writer.setClassOrigin(flag("IncludeClassOrigin", false));
    _properties = list("PropertyList");
    if (!_properties) return;
    for (const std::string& name : *_properties)
        _names.push_back(name.c_str());
    _names.push_back(nullptr);
    // One of the servers leaves leaving out to the provider, and takes an empty list for none.
    if (scope.broker().profile() == Profile::Sfcb) {
        if (_properties->empty()) _properties.reset();
        return;
    }
    writer.setSelection(PropertySelection(*_properties));
}

} // namespace KDV::Host
