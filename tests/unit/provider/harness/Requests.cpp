#include "harness/Requests.h"

#include "broker/PathObject.h"
#include "broker/ResultObject.h"
#include "broker/Values.h"

namespace KDV::Test {

using namespace Host;

namespace {

PathObject& pathOf(RequestScope& scope, const ObjectName& name)
{
    PathObject& path = scope.path(name.nameSpace, name.className);
    for (const auto& [key, text] : name.keys)
        path.addTextKey(key, text);
    return path;
}

const char** listOf(std::vector<const char*>& properties)
{
    if (properties.empty()) return nullptr;
    properties.push_back(nullptr);
    return properties.data();
}

} // namespace

Reply Requests::run(const Call& call) const
{
    CollectingSink sink;
    Reply reply;
    {
        RequestScope scope(_broker, "root/vnr");
        ResultObject result(_broker, sink, ResultKind::Any);
        const CMPIStatus status = call(scope, scope.context(), result.cmpi());
        reply.rc = status.rc;
        if (status.msg) reply.message = StringObject::of(status.msg).text();
    }
    reply.instances = std::move(sink.instances);
    reply.paths = std::move(sink.paths);
    reply.values = std::move(sink.values);
    return reply;
}

Reply Requests::instanceNames(const char* className) const
{
    return run([&](RequestScope& scope, ContextObject& context, const CMPIResult* result) {
        return _tables.instance->ft->enumerateInstanceNames(_tables.instance, &context, result,
                                                            &scope.path("root/vnr", className));
    });
}

Reply Requests::instances(const char* className, std::vector<const char*> properties) const
{
    const char** list = listOf(properties);
    return run([&](RequestScope& scope, ContextObject& context, const CMPIResult* result) {
        return _tables.instance->ft->enumerateInstances(_tables.instance, &context, result,
                                                        &scope.path("root/vnr", className), list);
    });
}

Reply Requests::get(const ObjectName& name, std::vector<const char*> properties) const
{
    const char** list = listOf(properties);
    return run([&](RequestScope& scope, ContextObject& context, const CMPIResult* result) {
        return _tables.instance->ft->getInstance(_tables.instance, &context, result, &pathOf(scope, name), list);
    });
}

Reply Requests::create(const ObjectName& name) const
{
    return run([&](RequestScope& scope, ContextObject& context, const CMPIResult* result) {
        PathObject& path = pathOf(scope, name);
        return _tables.instance->ft->createInstance(_tables.instance, &context, result, &path, &scope.instance(path));
    });
}

Reply Requests::modify(const ObjectName& name) const
{
    return run([&](RequestScope& scope, ContextObject& context, const CMPIResult* result) {
        PathObject& path = pathOf(scope, name);
        return _tables.instance->ft->modifyInstance(_tables.instance, &context, result, &path, &scope.instance(path),
                                                    nullptr);
    });
}

Reply Requests::remove(const ObjectName& name) const
{
    return run([&](RequestScope& scope, ContextObject& context, const CMPIResult* result) {
        return _tables.instance->ft->deleteInstance(_tables.instance, &context, result, &pathOf(scope, name));
    });
}

Reply Requests::query() const
{
    return run([&](RequestScope& scope, ContextObject& context, const CMPIResult* result) {
        return _tables.instance->ft->execQuery(_tables.instance, &context, result,
                                               &scope.path("root/vnr", "KDV_SASDiskDrive"),
                                               "SELECT * FROM KDV_SASDiskDrive", "WQL");
    });
}

Reply Requests::associators(const ObjectName& name, const Filters& filters) const
{
    return run([&](RequestScope& scope, ContextObject& context, const CMPIResult* result) {
        return _tables.association->ft->associators(_tables.association, &context, result, &pathOf(scope, name),
                                                    filters.associationClass, filters.resultClass, filters.role,
                                                    filters.resultRole, nullptr);
    });
}

Reply Requests::associatorNames(const ObjectName& name, const Filters& filters) const
{
    return run([&](RequestScope& scope, ContextObject& context, const CMPIResult* result) {
        return _tables.association->ft->associatorNames(_tables.association, &context, result, &pathOf(scope, name),
                                                        filters.associationClass, filters.resultClass, filters.role,
                                                        filters.resultRole);
    });
}

Reply Requests::references(const ObjectName& name, const Filters& filters) const
{
    return run([&](RequestScope& scope, ContextObject& context, const CMPIResult* result) {
        return _tables.association->ft->references(_tables.association, &context, result, &pathOf(scope, name),
                                                   filters.resultClass, filters.role, nullptr);
    });
}

Reply Requests::referenceNames(const ObjectName& name, const Filters& filters) const
{
    return run([&](RequestScope& scope, ContextObject& context, const CMPIResult* result) {
        return _tables.association->ft->referenceNames(_tables.association, &context, result, &pathOf(scope, name),
                                                       filters.resultClass, filters.role);
    });
}

Reply Requests::invoke(const char* method, const char* className) const
{
    return run([&](RequestScope& scope, ContextObject& context, const CMPIResult* result) {
        return _tables.method->ft->invokeMethod(_tables.method, &context, result, &scope.path("root/vnr", className),
                                                method, &scope.args(), &scope.args());
    });
}

Reply Requests::authorizeFilter() const
{
    return run([&](RequestScope& scope, ContextObject& context, const CMPIResult*) {
        return _tables.indication->ft->authorizeFilter(_tables.indication, &context, nullptr, nullptr,
                                                       &scope.path("root/vnr", "KDV_SASIndication"), "nobody");
    });
}

Reply Requests::mustPoll() const
{
    return run([&](RequestScope& scope, ContextObject& context, const CMPIResult* result) {
        return _tables.indication->ft->mustPoll(_tables.indication, &context, result, nullptr, "KDV_SASIndication",
                                                &scope.path("root/vnr", "KDV_SASIndication"));
    });
}

Reply Requests::activateFilter() const
{
    return run([&](RequestScope& scope, ContextObject& context, const CMPIResult*) {
        return _tables.indication->ft->activateFilter(_tables.indication, &context, nullptr, nullptr,
                                                      &scope.path("root/vnr", "KDV_SASIndication"), 1);
    });
}

Reply Requests::deactivateFilter() const
{
    return run([&](RequestScope& scope, ContextObject& context, const CMPIResult*) {
        return _tables.indication->ft->deActivateFilter(_tables.indication, &context, nullptr, nullptr,
                                                        &scope.path("root/vnr", "KDV_SASIndication"), 1);
    });
}

Reply Requests::enableIndications() const
{
    return run([&](RequestScope&, ContextObject& context, const CMPIResult*) {
        return _tables.indication->ft->enableIndications(_tables.indication, &context);
    });
}

Reply Requests::disableIndications() const
{
    return run([&](RequestScope&, ContextObject& context, const CMPIResult*) {
        return _tables.indication->ft->disableIndications(_tables.indication, &context);
    });
}

} // namespace KDV::Test
