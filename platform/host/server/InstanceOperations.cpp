#include "hostserver/Operations.h"
#include "hostserver/RequestPaths.h"
#include "hostserver/XmlSink.h"

namespace KDV::Host {

namespace {

PathObject& classPath(Call& call, const ClassInfo& classInfo)
{
    return call.scope.path(call.nameSpace.name(), classInfo.name());
}

// LocalOnly and DeepInheritance are read and have no effect: both are deprecated, and an instance is given with all the
// properties that it has, as current servers do.
void enumerateInstances(Router& router, Call& call)
{
    call.allow(
        {"ClassName", "LocalOnly", "DeepInheritance", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"});
    const ClassInfo& classInfo = call.requiredClass("ClassName");
    call.flag("LocalOnly", true);
    call.flag("DeepInheritance", true);
    call.flag("IncludeQualifiers", false);
    call.shapeInstances();
    XmlSink sink(call, &InstanceWriter::namedInstance);
    streamResults(call, [&] {
        return router.enumerateInstances(&call.context, classPath(call, classInfo), call.propertyNames(), sink);
    });
}

void enumerateInstanceNames(Router& router, Call& call)
{
    call.allow({"ClassName"});
    const ClassInfo& classInfo = call.requiredClass("ClassName");
    XmlSink sink(call, &InstanceWriter::instanceName);
    streamResults(call, [&] { return router.enumerateInstanceNames(&call.context, classPath(call, classInfo), sink); });
}

// Of a provider that returns several, the first is the instance.
class FirstInstance : public ResultSink {
public:
    explicit FirstInstance(InstanceWriter& writer) : _writer(writer) {}
    bool found() const noexcept { return _found; }
    bool instance(const InstanceObject& instance) override
    {
        if (!_found) _writer.instance(instance);
        _found = true;
        return true;
    }
    bool objectPath(const PathObject&) override { return false; }
    bool data(const CMPIData&) override { return false; }

private:
    InstanceWriter& _writer;
    bool _found = false;
};

void getInstance(Router& router, Call& call)
{
    call.allow({"InstanceName", "LocalOnly", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"});
    const PathObject& path = call.instanceName("InstanceName", CMPI_RC_ERR_INVALID_CLASS);
    call.flag("LocalOnly", true);
    call.flag("IncludeQualifiers", false);
    call.shapeInstances();
    call.reply.openReturn();
    FirstInstance sink(call.writer);
    throwIfFailed(router.getInstance(&call.context, path, call.propertyNames(), sink));
    if (!sink.found()) throw CimError(CMPI_RC_ERR_NOT_FOUND, "there is no such instance: " + path.text());
    call.reply.closeReturn();
}

const RequestInstance& givenInstance(Call& call, std::string_view name)
{
    const RequestParameter* parameter = call.request.find(name);
    if (!parameter || parameter->value.kind != ValueKind::Instance)
        throw CimError(CMPI_RC_ERR_INVALID_PARAMETER, "the parameter " + std::string(name) + " must be an instance");
    return *parameter->value.instance;
}

// The path of a new instance: what the client set of its keys. The provider may add the rest.
PathObject& pathOfNew(Call& call, const ClassInfo& classInfo, const RequestInstance& given)
{
    RequestPath path;
    path.className = given.className;
    for (const RequestProperty& property : given.properties) {
        const PropertyInfo* info = classInfo.findProperty(property.name);
        if (!info || !info->key || property.value.kind == ValueKind::Null) continue;
        RequestKey key;
        key.name = property.name;
        key.text = property.value.text;
        if (property.value.kind == ValueKind::Path) {
            key.kind = KeyKind::Reference;
            key.reference = std::make_shared<const RequestPath>(*property.value.path());
        }
        path.keys.push_back(std::move(key));
    }
    return makePath(call.scope, call.nameSpace, classInfo, path, false);
}

void createInstance(Router& router, Call& call)
{
    call.allow({"NewInstance"});
    const RequestInstance& given = givenInstance(call, "NewInstance");
    const ClassInfo* classInfo = call.nameSpace.find(given.className);
    if (!classInfo) throw CimError(CMPI_RC_ERR_INVALID_CLASS, "there is no class \"" + given.className + "\"");
    const PathObject& path = pathOfNew(call, *classInfo, given);
    const InstanceObject& instance = makeInstance(call.scope, call.nameSpace, path, given);
    call.reply.openReturn();
    XmlSink sink(call, &InstanceWriter::instanceName);
    throwIfFailed(router.createInstance(&call.context, path, instance, sink));
    call.reply.closeReturn();
}

void modifyInstance(Router& router, Call& call)
{
    call.allow({"ModifiedInstance", "IncludeQualifiers", "PropertyList"});
    const RequestInstance& given = givenInstance(call, "ModifiedInstance");
    if (!given.path) throw CimError(CMPI_RC_ERR_INVALID_PARAMETER, "the parameter ModifiedInstance must have a path");
    const ClassInfo& classInfo = call.classOf(*given.path, CMPI_RC_ERR_INVALID_CLASS);
    const PathObject& path = makePath(call.scope, call.nameSpace, classInfo, *given.path, true);
    const InstanceObject& instance = makeInstance(call.scope, call.nameSpace, path, given);
    call.shapeInstances();
    throwIfFailed(router.modifyInstance(&call.context, path, instance, call.propertyNames()));
}

void deleteInstance(Router& router, Call& call)
{
    call.allow({"InstanceName"});
    const PathObject& path = call.instanceName("InstanceName", CMPI_RC_ERR_INVALID_CLASS);
    throwIfFailed(router.deleteInstance(&call.context, path));
}

} // namespace

void addInstanceOperations(OperationTable& table, Router& router)
{
    table.add("EnumerateInstances", [&router](Call& call) { enumerateInstances(router, call); });
    table.add("EnumerateInstanceNames", [&router](Call& call) { enumerateInstanceNames(router, call); });
    table.add("GetInstance", [&router](Call& call) { getInstance(router, call); });
    table.add("CreateInstance", [&router](Call& call) { createInstance(router, call); });
    table.add("ModifyInstance", [&router](Call& call) { modifyInstance(router, call); });
    table.add("DeleteInstance", [&router](Call& call) { deleteInstance(router, call); });
}

} // namespace KDV::Host
