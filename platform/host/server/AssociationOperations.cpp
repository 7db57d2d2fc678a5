#include "hostserver/Operations.h"
#include "hostserver/RequestPaths.h"
#include "hostserver/XmlSink.h"

namespace KDV::Host {

namespace {

// The filters of an association operation. Class names must exist: a wrong one would otherwise look like "no result".
struct Filters {
    std::string assocClass, resultClass, role, resultRole;

    static std::string className(const Call& call, std::string_view name)
    {
        const ClassInfo* classInfo = call.classInfo(name, CMPI_RC_ERR_INVALID_PARAMETER);
        return classInfo ? classInfo->name() : std::string();
    }
    Filters(const Call& call, bool references)
        : assocClass(references ? std::string() : className(call, "AssocClass")),
          resultClass(className(call, "ResultClass")), role(call.text("Role").value_or("")),
          resultRole(references ? std::string() : call.text("ResultRole").value_or(""))
    {
    }
    static const char* orNull(const std::string& text) { return text.empty() ? nullptr : text.c_str(); }
};

PathObject& source(Call& call)
{
    const RequestPath& given = call.objectName("ObjectName");
    const ClassInfo& classInfo = call.classOf(given, CMPI_RC_ERR_INVALID_PARAMETER);
    if (!given.isInstance)
        throw CimError(CMPI_RC_ERR_NOT_SUPPORTED, "associations of classes are not served, only those of instances");
    return makePath(call.scope, call.nameSpace, classInfo, given, true);
}

void associators(Router& router, Call& call)
{
    call.allow({"ObjectName", "AssocClass", "ResultClass", "Role", "ResultRole", "IncludeQualifiers",
                "IncludeClassOrigin", "PropertyList"});
    const PathObject& path = source(call);
    const Filters filters(call, false);
    call.flag("IncludeQualifiers", false);
    call.shapeInstances();
    XmlSink sink(call, &InstanceWriter::objectWithPath);
    streamResults(call, [&] {
        return router.associators(&call.context, path, Filters::orNull(filters.assocClass),
                                  Filters::orNull(filters.resultClass), Filters::orNull(filters.role),
                                  Filters::orNull(filters.resultRole), call.propertyNames(), sink);
    });
}

void associatorNames(Router& router, Call& call)
{
    call.allow({"ObjectName", "AssocClass", "ResultClass", "Role", "ResultRole"});
    const PathObject& path = source(call);
    const Filters filters(call, false);
    XmlSink sink(call, &InstanceWriter::objectPath);
    streamResults(call, [&] {
        return router.associatorNames(&call.context, path, Filters::orNull(filters.assocClass),
                                      Filters::orNull(filters.resultClass), Filters::orNull(filters.role),
                                      Filters::orNull(filters.resultRole), sink);
    });
}

void references(Router& router, Call& call)
{
    call.allow({"ObjectName", "ResultClass", "Role", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"});
    const PathObject& path = source(call);
    const Filters filters(call, true);
    call.flag("IncludeQualifiers", false);
    call.shapeInstances();
    XmlSink sink(call, &InstanceWriter::objectWithPath);
    streamResults(call, [&] {
        return router.references(&call.context, path, Filters::orNull(filters.resultClass),
                                 Filters::orNull(filters.role), call.propertyNames(), sink);
    });
}

void referenceNames(Router& router, Call& call)
{
    call.allow({"ObjectName", "ResultClass", "Role"});
    const PathObject& path = source(call);
    const Filters filters(call, true);
    XmlSink sink(call, &InstanceWriter::objectPath);
    streamResults(call, [&] {
        return router.referenceNames(&call.context, path, Filters::orNull(filters.resultClass),
                                     Filters::orNull(filters.role), sink);
    });
}

} // namespace

void addAssociationOperations(OperationTable& table, Router& router)
{
    table.add("Associators", [&router](Call& call) { associators(router, call); });
    table.add("AssociatorNames", [&router](Call& call) { associatorNames(router, call); });
    table.add("References", [&router](Call& call) { references(router, call); });
    table.add("ReferenceNames", [&router](Call& call) { referenceNames(router, call); });
}

} // namespace KDV::Host
